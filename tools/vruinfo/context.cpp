#include "context.h"

#include "VrUInfo/ErrorStatus.h"
#include "VrUInfo/VornaConfig.h"
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

} // namespace

std::optional<QString> Context::option(const char* name) const
{
    const auto found = m_line.options.constFind(text(name));
    return found == m_line.options.constEnd() ? std::nullopt : std::optional<QString>(found.value());
}

std::optional<Problem> Context::start() const
{
    const Given company(option("company"));
    const Given product(option("product"));
    const Given language(option("language"));
    const Given profile(option("profile"));
    const unsigned int status = InitVornConfig(company.text(), product.text(), language.text(), profile.text());
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
