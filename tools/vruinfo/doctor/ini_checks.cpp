#include <array>

#include <QtCore/QFileInfo>

#include "VrUInfo/Naming.h"
#include "VrUInfo/VornaConfig.h"
#include "config/identity_names.h"
#include "doctor/checks.h"
#include "doctor/file_state.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

namespace names = vruinfo::internal;

constexpr wchar_t kReleaseIni[] = L"product.ini";
constexpr qint64 kMostBytes = qint64{64} * 1024 * 1024; // the INI reader takes no more
constexpr unsigned int kShortSize = 7;                  // given to the reader for a number and a short name

struct IniFile {
    const wchar_t* name;
    const char* consequence; ///< Of its not being read.
    const char* content;     ///< What to write into a new one.
};

constexpr IniFile kFiles[] = {
    {names::kProductIni, "so that the start takes built-in names and has to ask for a language",
     "Make it, with the company's language under LocaleId: [Product] LocaleId=1033 and [LocaleIdLangName] 1033=en-US."},
    {kReleaseIni, "so that the prefix of the application's commands cannot be built",
     "Make it, with the release's numbers: [Product] MajorVer=26 and ProductId=1."},
};

QString pathOf(const Patient& patient, const wchar_t* name)
{
    return patient.inInstallation(fromWide(name));
}

bool isUtf16(const QByteArray& bytes)
{
    return bytes.startsWith("\xFF\xFE");
}

bool isDecodable(const QByteArray& bytes)
{
    if (isUtf16(bytes))
        return bytes.size() % 2 == 0;
    const std::optional<QString> decoded = fromUtf8(bytes.constData()); // up to a zero, which ends what is read
    return decoded.has_value() && !bytes.contains('\0');
}

std::optional<Finding> contentFinding(const QString& path)
{
    if (FileState::of(path).size > kMostBytes)
        return error("ini.too-big", path, QStringLiteral("It has more than 64 MiB and is not read at all."),
                     QStringLiteral("Put the file of the installation package in its place."));
    const std::optional<QByteArray> bytes = bytesOf(path, kMostBytes);
    if (!bytes || isDecodable(*bytes))
        return std::nullopt;
    return warning(
        "ini.encoding", path,
        QStringLiteral("It is neither UTF-8 nor UTF-16LE with a byte-order mark, so that names are read wrong "
                       "or not at all."),
        QStringLiteral("Save it as UTF-8 in a text editor."));
}

bool isRead(const QString& path)
{
    const FileState state = FileState::of(path);
    return state.isReadableFile() && state.size <= kMostBytes;
}

/// What a start reads; nothing where it gets nothing.
std::optional<QString> shortText(const wchar_t* section, const QString& key)
{
    std::array<wchar_t, kShortSize + 1> value{};
    const unsigned int status =
        vornConfig()->readIniString(section, toWide(key).c_str(), value.data(), kShortSize, names::kProductIni);
    return status == Vorn::eOk ? std::optional<QString>(fromWide(value.data())) : std::nullopt;
}

Finding unknownLanguage(const QString& path, const QString& number, const QString& name)
{
    return warning(
        "ini.unknown-language", path,
        QStringLiteral("[LocaleIdLangName] %1 is \"%2\", which is the short name of no language, so that a first "
                       "start has to ask.")
            .arg(number, name),
        QStringLiteral("Write a short name there that `vruinfo languages` lists."));
}

Findings languageFindings(const QString& path, const QString& number)
{
    const std::optional<QString> name = shortText(names::kLocaleSection, number);
    if (!name)
        return {warning("ini.unknown-locale", path,
                        QStringLiteral("[Product] LocaleId is %1, for which [LocaleIdLangName] has no entry, so that a "
                                       "first start has to ask for a language.")
                            .arg(number),
                        QStringLiteral("Add a line for %1 to [LocaleIdLangName], or correct LocaleId.").arg(number))};
    const VornaLanguage language(toWide(*name).c_str());
    if (language.id() < 0)
        return {unknownLanguage(path, number, *name)};
    if (vornConfig()->isLangFolderExist(language.shortName()))
        return {};
    return {
        warning("ini.language-not-installed", path,
                QStringLiteral("LocaleId %1 stands for %2, which is not installed, so that a first start has to ask.")
                    .arg(number, *name),
                QStringLiteral("Install %1, or write the number of an installed language.").arg(*name))};
}

} // namespace

Findings checkIniFiles(const Patient& patient)
{
    Findings findings;
    for (const IniFile& file : kFiles) {
        const QString path = pathOf(patient, file.name);
        append(findings,
               faultFinding(path, {"ini.", Severity::Warning, Severity::Error, file.consequence, text(file.content)}));
        append(findings, contentFinding(path));
    }
    return findings;
}

Findings checkLocale(const Patient& patient)
{
    const QString path = pathOf(patient, names::kProductIni);
    if (!isRead(path))
        return {};
    const std::optional<QString> number = shortText(names::kProductSection, fromWide(names::kLocaleIdKey));
    if (number)
        return languageFindings(path, *number);
    return {warning("ini.no-locale-id", path,
                    QStringLiteral("[Product] LocaleId is not there, so that a first start has to ask for a language."),
                    QStringLiteral("Write LocaleId=1033 (English) or another number into section [Product]."))};
}

Findings checkCommandPrefix(const Patient& patient)
{
    const QString path = pathOf(patient, kReleaseIni);
    Findings findings;
    if (!isRead(path))
        return findings;
    for (const wchar_t* const key : {L"MajorVer", L"ProductId"}) {
        int number = 0;
        if (vornConfig()->readIniInt(names::kProductSection, key, number, kReleaseIni) != Vorn::eOk)
            findings.push_back(
                warning("ini.no-command-prefix", path,
                        QStringLiteral("[Product] %1 is not there or negative, so that the prefix of the "
                                       "application's commands cannot be built.")
                            .arg(fromWide(key)),
                        QStringLiteral("Write %1 with the release's number.").arg(fromWide(key))));
    }
    return findings;
}

Findings checkProductPrefix(const Patient& patient)
{
    std::array<wchar_t, kVornPathCapacity> prefix{};
    if (GetVornProductPreName(prefix.data()) != 0)
        return {};
    const QString ini = patient.inInstallation(QFileInfo(patient.program).completeBaseName() + QStringLiteral(".ini"));
    return {note("ini.no-prefix", ini,
                 QStringLiteral("It gives no [Product] PreStr, so that the prefix \"Vr\" is used for this program."),
                 QStringLiteral("None is needed, unless this program belongs to a product with a prefix of its own."))};
}

} // namespace vruinfo::tool::doctor
