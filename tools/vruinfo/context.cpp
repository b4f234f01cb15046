#include "context.h"

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/ErrorStatus.h"
#include "VrUInfo/VornaConfig.h"
#include "settings_names.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

/// A text for the library, which takes null for "not given".
class Given final
{
public:
    explicit Given(const std::optional<QString>& text) :
        m_isGiven(text.has_value()), m_text(toWide(text.value_or(QString())))
    {
    }
    [[nodiscard]] const wchar_t* text() const { return m_isGiven ? m_text.c_str() : nullptr; }

private:
    bool m_isGiven;
    std::wstring m_text;
};

QString meaning(unsigned int status)
{
    switch (status) {
    case Vorn::eMissing:
        return QStringLiteral(
                   "libVrUInfoRes.so of the language %1 is missing or not readable; install it, or give another "
                   "--language")
            .arg(fromWide(GetCurrentLanguageShortName()));
    case Vorn::eFailed:
        return QStringLiteral(
            "a name is refused: company, product or a path made of them is empty or too long (a name may "
            "have 254 characters)");
    case Vorn::eNotBareName:
        return QStringLiteral("the profile is not a bare name: it is a path, or names a profile file (.ARG) beside the "
                              "program");
    default:
        return QStringLiteral("the start could not be carried out");
    }
}

/// The identity that the options give.
struct Identity {
    explicit Identity(const Context& context) :
        company(context.option("company")), product(context.option("product")), language(context.option("language")),
        profile(context.option("profile"))
    {
    }
    Given company;
    Given product;
    Given language;
    Given profile;
};

bool isQuestion(unsigned int style)
{
    constexpr unsigned int kButtons = 0xF;
    return (style & kButtons) == MB_YESNO;
}

void tell(const wchar_t* text)
{
    Printer().error(QStringLiteral("the start says: ") + fromWide(text));
}

int sayYes(HWND, const wchar_t* text, const wchar_t*, unsigned int style)
{
    tell(text);
    return isQuestion(style) ? IDYES : IDOK;
}

int sayNo(HWND, const wchar_t* text, const wchar_t*, unsigned int style)
{
    tell(text);
    return isQuestion(style) ? IDNO : IDOK;
}

} // namespace

std::optional<QString> Context::option(const char* name) const
{
    const auto found = m_line.options.constFind(text(name));
    return found == m_line.options.constEnd() ? std::nullopt : std::optional<QString>(found.value());
}

void Context::openSettings(Purpose purpose) const
{
    if (purpose == Purpose::Look && !g_globalSettings)
        openSettingsUntouched(SettingsNames::of(*this));
    const Identity identity(*this);
    vornConfig()->initRegObject(identity.company.text(), identity.product.text());
}

std::optional<Problem> Context::start(Purpose purpose) const
{
    VrSetMessageBoxHandler(purpose == Purpose::Look ? sayYes : sayNo);
    openSettings(purpose);
    const Identity identity(*this);
    const unsigned int status = InitVornConfig(identity.company.text(), identity.product.text(),
                                               identity.language.text(), identity.profile.text());
    if (status == Vorn::eOk)
        return std::nullopt;
    return Problem{Exit::Failed,
                   QStringLiteral("the start failed with status %1: %2").arg(status).arg(meaning(status))};
}

Exit Context::fail(const Problem& problem) const
{
    m_printer.error(problem.text);
    return problem.exit;
}

} // namespace vruinfo::tool
