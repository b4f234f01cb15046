#include "commands.h"

#include <algorithm>
#include <array>
#include <vector>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include "VrUInfo/Diagnostics.h"
#include "VrUInfo/Oem.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaProduct.h"
#include "context.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr int kLabelWidth = 16;

struct PieceRow {
    const wchar_t* name; ///< As the record of the start has it.
    const char* key;     ///< In JSON.
    const wchar_t* (*value)();
};

constexpr std::array<PieceRow, 8> kPieces = {{
    {L"company", "company", [] { return vornConfig()->companyName(); }},
    {L"product", "product", [] { return vornConfig()->productName(); }},
    {L"version", "version", [] { return vornConfig()->version(); }},
    {L"language", "language", [] { return vornConfig()->language().shortName(); }},
    {L"profile", "profile", [] { return vornConfig()->profileName(); }},
    {L"oem product", "oemProduct", GetOemProductName},
    {L"oem company", "oemCompany", GetOemCompanyName},
    {L"oem legal name", "oemLegalName", GetOemCompanyLtdName},
}};

struct OriginRow {
    VornOrigin origin;
    const char* key;  ///< In JSON.
    const char* text; ///< "%1" stands for the place.
};

constexpr std::array<OriginRow, 6> kOrigins = {{
    {VornOrigin::Argument, "argument", "given on the command line"},
    {VornOrigin::Settings, "settings", "remembered in the settings: %1"},
    {VornOrigin::IniFile, "ini", "from the INI file: %1"},
    {VornOrigin::Default, "default", "built in"},
    {VornOrigin::Asked, "asked", "the application asks the user for it; here the answer was yes"},
    {VornOrigin::ResourceLibrary, "library", "from the resource library: %1"},
}};

constexpr OriginRow kUnrecorded{VornOrigin::Default, "unrecorded", "built in, since no branding library has it"};

const OriginRow& originRow(const VornStartEntry* entry)
{
    const auto found = std::find_if(kOrigins.begin(), kOrigins.end(),
                                    [entry](const OriginRow& row) { return entry && row.origin == entry->origin; });
    return found == kOrigins.end() ? kUnrecorded : *found;
}

const VornStartEntry* recordOf(const wchar_t* piece)
{
    const std::vector<VornStartEntry>& record = vornStartRecord();
    const auto found = std::find_if(record.begin(), record.end(),
                                    [piece](const VornStartEntry& entry) { return entry.piece == piece; });
    return found == record.end() ? nullptr : &*found;
}

QStringList passedOver(const VornStartEntry* entry)
{
    QStringList result;
    if (entry) {
        for (const std::wstring& reason : entry->passedOver)
            result.append(fromWide(reason));
    }
    return result;
}

QString placeOf(const VornStartEntry* entry)
{
    return entry ? fromWide(entry->place) : QString();
}

QString lcidText()
{
    return QString::number(vornConfig()->language().vornLanguage());
}

void printLabelled(Printer& printer, const QString& label, const QString& line)
{
    printer.line(padded(label, kLabelWidth) + line);
}

void printLanguage(Printer& printer)
{
    const VornaLanguage& language = vornConfig()->language();
    printLabelled(printer, {},
                  QStringLiteral("%1, in its own tongue %2, LCID %3")
                      .arg(fromWide(language.globalName()), fromWide(language.localName()), lcidText()));
}

void printPiece(Printer& printer, const PieceRow& piece)
{
    const VornStartEntry* const entry = recordOf(piece.name);
    const QString origin = text(originRow(entry).text);
    const wchar_t* const value = piece.value();
    printLabelled(printer, fromWide(piece.name), value ? fromWide(value) : QStringLiteral("(none)"));
    if (std::wstring(piece.name) == L"language")
        printLanguage(printer);
    printLabelled(printer, {}, origin.contains(QLatin1String("%1")) ? origin.arg(placeOf(entry)) : origin);
    for (const QString& reason : passedOver(entry))
        printLabelled(printer, {}, QStringLiteral("passed over: ") + reason);
}

void printLines(Printer& printer)
{
    for (const PieceRow& piece : kPieces)
        printPiece(printer, piece);
    printLabelled(printer, QStringLiteral("edition"), QString::number(vornGetProduct()->edition()));
    printLabelled(printer, {}, QStringLiteral("by the product's name"));
}

QJsonObject jsonOf(const PieceRow& piece)
{
    const VornStartEntry* const entry = recordOf(piece.name);
    const wchar_t* const value = piece.value();
    return {{QStringLiteral("value"), value ? QJsonValue(fromWide(value)) : QJsonValue()},
            {QStringLiteral("origin"), text(originRow(entry).key)},
            {QStringLiteral("place"), placeOf(entry)},
            {QStringLiteral("passedOver"), QJsonArray::fromStringList(passedOver(entry))}};
}

QJsonObject languageJson(QJsonObject piece)
{
    const VornaLanguage& language = vornConfig()->language();
    piece.insert(QStringLiteral("englishName"), fromWide(language.globalName()));
    piece.insert(QStringLiteral("ownName"), fromWide(language.localName()));
    piece.insert(QStringLiteral("lcid"), static_cast<qint64>(language.vornLanguage()));
    return piece;
}

void printJson(Printer& printer)
{
    QJsonObject answer;
    for (const PieceRow& piece : kPieces)
        answer.insert(text(piece.key), jsonOf(piece));
    const QString language = QStringLiteral("language");
    answer.insert(language, languageJson(answer.value(language).toObject()));
    answer.insert(QStringLiteral("edition"), QJsonObject{{QStringLiteral("value"), vornGetProduct()->edition()},
                                                         {QStringLiteral("origin"), QStringLiteral("product")}});
    printer.json(QJsonDocument(answer));
}

} // namespace

Exit runIdentity(Context& context)
{
    if (const auto problem = context.start(Purpose::Look))
        return context.fail(*problem);
    if (context.wantsJson())
        printJson(context.printer());
    else
        printLines(context.printer());
    return Exit::Done;
}

} // namespace vruinfo::tool
