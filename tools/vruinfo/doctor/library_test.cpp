#include "doctor/library_test.h"

#include <algorithm>

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <dlfcn.h>

#include "VrOsBase/VrOsBase.h"
#include "command.h"
#include "doctor/isolated.h"
#include "product/language_table.h"
#include "text.h"

namespace vruinfo::tool::doctor
{
namespace
{

// The readers' buffers, without the zero at the end and the character that the bound keeps free.
constexpr std::size_t kLongestLanguageName = 62;
constexpr std::size_t kLongestBrandName = 1022;
constexpr std::size_t kLongestBrandText = 1023;

Finding finding(const ResourceLibrary& library, Severity severity, const char* id, const QString& meaning)
{
    return {severity, text(library.idPrefix) + text(id), library.path, meaning, library.remedyOfLack};
}

Finding notLoadable(const ResourceLibrary& library, const QString& meaning)
{
    return {library.whenNotLoadable, text(library.idPrefix) + text("not-loadable"), library.path, meaning,
            reinstallLibrary()};
}

/// The length of a text, of which nothing is copied; 0 for one that is not there.
std::size_t lengthOf(HMODULE module, unsigned int id)
{
    const wchar_t* place = nullptr;
    return static_cast<std::size_t>(LoadStringW(module, id, reinterpret_cast<wchar_t*>(&place), 0));
}

std::vector<LibraryText> missingTexts(HMODULE module, const std::vector<LibraryText>& texts)
{
    std::vector<LibraryText> missing;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(missing),
                 [module](const LibraryText& text) { return lengthOf(module, text.id) == 0; });
    return missing;
}

Findings missingFindings(const ResourceLibrary& library, HMODULE module)
{
    QStringList ids;
    QStringList names;
    for (const LibraryText& missing : missingTexts(module, library.texts)) {
        ids.append(QString::number(missing.id));
        if (missing.name)
            names.append(text(missing.name));
    }
    if (ids.isEmpty())
        return {};
    const QString what = names.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(names.join(QStringLiteral(", ")));
    return {finding(library, Severity::Warning, "strings-missing",
                    QStringLiteral("It lacks the texts %1%2, so that built-in ones or none are shown.")
                        .arg(ids.join(QStringLiteral(", ")), what))};
}

std::optional<Finding> lengthFinding(const ResourceLibrary& library, HMODULE module, const LibraryText& text)
{
    const std::size_t length = lengthOf(module, text.id);
    if (length <= text.limit)
        return std::nullopt;
    return finding(library, Severity::Warning, "text-too-long",
                   QStringLiteral("Its text %1 has %2 characters, of which %3 are read and shown.")
                       .arg(text.id)
                       .arg(length)
                       .arg(text.limit));
}

std::optional<Finding> iconFinding(const ResourceLibrary& library)
{
    if (QFile::exists(text(library.icon)))
        return std::nullopt;
    return finding(
        library, Severity::Warning, "no-icon",
        QStringLiteral("It lacks the application's icon (%1), so that windows have none.").arg(text(library.icon)));
}

Findings examine(const ResourceLibrary& library, HMODULE module)
{
    Findings findings = missingFindings(library, module);
    for (const LibraryText& text : library.texts)
        append(findings, lengthFinding(library, module, text));
    append(findings, iconFinding(library));
    return findings;
}

/// The ids in the table that the loaded library itself has.
std::vector<unsigned int> idsIn(const QString& path)
{
    void* const handle = dlopen(QFile::encodeName(path).constData(), RTLD_LAZY | RTLD_NOLOAD);
    const auto* const rows =
        static_cast<const VrResourceString*>(handle ? dlsym(handle, "VrResourceStrings") : nullptr);
    const void* const count = rows ? dlsym(handle, "VrResourceStringCount") : nullptr;
    std::vector<unsigned int> ids;
    for (std::uint32_t n = 0; count && n < *static_cast<const std::uint32_t*>(count); ++n)
        ids.push_back(rows[n].id);
    return ids;
}

bool isAmong(const std::vector<LibraryText>& texts, unsigned int id)
{
    return std::any_of(texts.begin(), texts.end(), [id](const LibraryText& text) { return text.id == id; });
}

/// "5001 to 5004, 6000" for ascending ids.
QString rangesOf(const std::vector<unsigned int>& ids)
{
    QStringList ranges;
    for (auto first = ids.begin(); first != ids.end();) {
        auto last = first;
        while (std::next(last) != ids.end() && *std::next(last) == *last + 1)
            ++last;
        ranges.append(first == last ? QString::number(*first) : QStringLiteral("%1 to %2").arg(*first).arg(*last));
        first = std::next(last);
    }
    return ranges.join(QStringLiteral(", "));
}

Findings examineOthers(const ResourceLibrary& library, HMODULE module)
{
    Findings findings;
    std::vector<unsigned int> own;
    for (const unsigned int id : idsIn(library.path)) {
        if (isAmong(library.texts, id))
            continue;
        append(findings, lengthFinding(library, module, {id, kLongestBrandText, nullptr}));
        if (!isAmong(languageTexts(), id))
            own.push_back(id);
    }
    if (!own.empty())
        findings.push_back(
            {Severity::Note, text(library.idPrefix) + text("own-strings"), library.path,
             QStringLiteral("It has texts of its own (%1), which only a module that asks for them by number shows.")
                 .arg(rangesOf(own)),
             QStringLiteral("None is needed, unless a number is mistyped.")});
    return findings;
}

Findings checkLoaded(const ResourceLibrary& library, Findings (*look)(const ResourceLibrary& library, HMODULE module))
{
    const auto loadAndLook = [&library, look]() -> Findings {
        if (const HMODULE module = LoadLibraryW(toWide(library.path).c_str()))
            return look(library, module);
        return {notLoadable(library, QStringLiteral("It cannot be loaded, %1; the loader says: %2.")
                                         .arg(library.consequence, fromWide(VrGetLoaderMessage())))};
    };
    Finding broken = notLoadable(library, QStringLiteral("Loading it"));
    broken.severity = Severity::Error;
    return checkIsolated(loadAndLook, broken);
}

} // namespace

Findings checkResourceLibrary(const ResourceLibrary& library)
{
    return checkLoaded(library, examine);
}

Findings checkBrandLibrary(const ResourceLibrary& library)
{
    return checkLoaded(library, [](const ResourceLibrary& brand, HMODULE module) {
        Findings findings = examine(brand, module);
        append(findings, examineOthers(brand, module));
        return findings;
    });
}

QString reinstallLibrary()
{
    return QStringLiteral("Put the library of the installation package in its place.");
}

std::vector<LibraryText> brandTexts()
{
    return {{4091, kLongestBrandName, "company"},
            {4092, kLongestBrandName, "product"},
            {4095, kLongestBrandName, "full legal name"}};
}

std::vector<LibraryText> languageTexts()
{
    std::vector<LibraryText> texts;
    texts.reserve(vruinfo::internal::kLocalNameTexts.size() + 1);
    for (const std::uint32_t id : vruinfo::internal::kLocalNameTexts)
        texts.push_back({id, kLongestLanguageName, nullptr});
    texts.push_back({vruinfo::internal::kUnknownLanguageText, kLongestLanguageName, nullptr});
    return texts;
}

} // namespace vruinfo::tool::doctor
