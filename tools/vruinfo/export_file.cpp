#include "export_file.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QtCore/QJsonDocument>

#include "input_file.h"
#include "json_position.h"
#include "saved_form.h"
#include "text.h"

namespace vruinfo::tool
{
namespace
{

constexpr char kFormat[] = "vruinfo-settings";
constexpr int kVersion = 1;
constexpr QLatin1Char kSeparator('/');

const std::array<const char*, 4> kMembers = {"format", "version", "path", "values"};
const std::array<const char*, 8> kValueMembers = {"path", "pathUnits", "type",        "value",
                                                  "bits", "stored",    "storedUnits", "storedVariant"};

QByteArray compact(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// Two objects as one, the members of the first in front. Neither is empty.
QByteArray inOrder(const QJsonObject& first, const QJsonObject& second)
{
    return compact(first).chopped(1) + ',' + compact(second).mid(1);
}

QByteArray valueLine(const QString& path, const StoredValue& value)
{
    QJsonObject name;
    insertText(name, text("path"), path);
    return inOrder(name, value.json());
}

QByteArray headLine(const Place& place)
{
    const QJsonObject format{{text("format"), text(kFormat)}};
    const QJsonObject version{{text("version"), kVersion}};
    const QJsonObject path{{text("path"), place.shown()}};
    return compact(format).chopped(1) + ',' + inOrder(version, path).mid(1).chopped(1) + ",\"values\":[\n";
}

template <typename Names>
std::optional<QString> unknownMember(const QJsonObject& object, const Names& names)
{
    for (auto member = object.constBegin(); member != object.constEnd(); ++member) {
        const auto isIt = [&member](const char* name) { return member.key() == QLatin1String(name); };
        if (std::none_of(names.begin(), names.end(), isIt))
            return member.key();
    }
    return std::nullopt;
}

bool hasEmptyPart(const QString& path)
{
    return path.startsWith(kSeparator) || path.endsWith(kSeparator) || path.contains(QLatin1String("//"));
}

/// What is wrong with the path of the place.
std::optional<QString> faultOfPlace(const QString& path)
{
    if (path == kSeparator)
        return std::nullopt;
    if (path.isEmpty() || hasEmptyPart(path))
        return QStringLiteral("the path %1 has an empty part; the top of the tree is \"/\"").arg(quoted(path));
    if (path.startsWith(QLatin1Char('@')))
        return QStringLiteral("%1 is no full path; to bring it to a root such as @settings, leave a full path here and "
                              "give --at")
            .arg(quoted(path));
    return std::nullopt;
}

/// The settings file has one group "General" however it is written, apart from the one of the values at the top level.
bool isOtherwiseWrittenGeneral(const QString& path)
{
    const QString group = path.section(kSeparator, 0, 0);
    const QString general = QStringLiteral("General");
    return group != path && group != general && group.compare(general, Qt::CaseInsensitive) == 0;
}

/// What is wrong with the path of a value.
std::optional<QString> faultOfPath(const QString& path, const Place& place)
{
    if (path.isEmpty() && place.isTop())
        return QStringLiteral("the path is empty, but no value stands at the top of the tree");
    if (hasEmptyPart(path))
        return QStringLiteral("the path has an empty part");
    const std::optional<Place> full = path.isEmpty() ? place : place.below(path);
    if (!full)
        return QStringLiteral("the path is longer than %1 characters, those of the place included")
            .arg(Place::kLongest);
    if (isOtherwiseWrittenGeneral(full->path()))
        return QStringLiteral("the settings file would name the group \"General\"; write it so");
    return std::nullopt;
}

struct Row {
    QString path;
    StoredValue value;
};

/// The problem's text is what is wrong.
Result<Row> rowFrom(const QJsonValue& value, const Place& place)
{
    const auto wrong = [](const QString& what) { return Problem{Exit::Failed, what}; };
    const QJsonObject object = value.toObject();
    const std::optional<QString> path = textFrom(object, text("path"));
    if (!path)
        return wrong(QStringLiteral("an object with a \"path\" is wanted"));
    const QString name = quoted(*path);
    if (const auto fault = faultOfPath(*path, place))
        return wrong(QStringLiteral("%1: %2").arg(name, *fault));
    if (const auto unknown = unknownMember(object, kValueMembers))
        return wrong(QStringLiteral("%1: %2 is no part of a value").arg(name, quoted(*unknown)));
    const Result<StoredValue> stored = StoredValue::fromJson(object);
    if (!stored)
        return wrong(QStringLiteral("%1: %2").arg(name, stored.problem().text));
    return Row{*path, *stored};
}

} // namespace

QByteArray exportText(const Place& place, const Snapshot& values)
{
    QByteArray result = headLine(place);
    for (auto row = values.cbegin(); row != values.cend(); ++row) {
        result += valueLine(row.key(), *row);
        result += std::next(row) == values.cend() ? "\n" : ",\n";
    }
    return result + "]}\n";
}

Result<ExportFile> ExportFile::read(const QString& name)
{
    const Result<QByteArray> content = readInput(name);
    if (!content)
        return content.problem();
    if (content->isEmpty())
        return Problem{Exit::Failed, QStringLiteral("%1 is empty").arg(shownInput(name))};
    ExportFile file(name, *content);
    const std::optional<Problem> problem = file.parse();
    return problem ? Result<ExportFile>(*problem) : Result<ExportFile>(file);
}

std::optional<Problem> ExportFile::parse()
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(m_text, &error);
    if (error.error != QJsonParseError::NoError)
        return at(offsetOf(m_text, error), QStringLiteral("this is no JSON: %1").arg(error.errorString()));
    if (!document.isObject())
        return at(0, QStringLiteral("this is no export: a JSON object is wanted"));
    return takeMembers(document.object());
}

std::optional<Problem> ExportFile::takeMembers(const QJsonObject& content)
{
    const QJsonValue format = content.value(text("format"));
    if (format.toString() != text(kFormat))
        return atMember(text("format"),
                        QStringLiteral("this is no export: \"format\" must be \"%1\"").arg(text(kFormat)));
    if (content.value(text("version")) != QJsonValue(kVersion))
        return atMember(text("version"),
                        QStringLiteral("this version of exports is unknown: \"version\" must be %1").arg(kVersion));
    if (const auto unknown = unknownMember(content, kMembers))
        return atMember(*unknown, QStringLiteral("%1 is no part of an export").arg(quoted(*unknown)));
    const QJsonValue path = content.value(text("path"));
    if (!path.isString())
        return atMember(text("path"), QStringLiteral("\"path\" must be a text: the full path of the place"));
    if (const auto fault = faultOfPlace(path.toString()))
        return atMember(text("path"), *fault);
    if (!content.value(text("values")).isArray())
        return atMember(text("values"), QStringLiteral("\"values\" must be an array"));
    m_place = Place(path.toString() == kSeparator ? QString() : path.toString());
    m_values = content.value(text("values")).toArray();
    return std::nullopt;
}

Result<Snapshot> ExportFile::valuesAt(const Place& place) const
{
    Snapshot values;
    QMap<QString, int> others; // those that are no plain texts, and may not come back as they are
    for (int i = 0; i < m_values.size(); ++i) {
        const Result<Row> row = rowFrom(m_values.at(i), place);
        if (!row)
            return atValue(i, row.problem().text);
        if (values.contains(row->path))
            return atValue(i, QStringLiteral("%1 is there twice").arg(quoted(row->path)));
        values.insert(row->path, row->value);
        if (row->value.stored().userType() != QMetaType::QString)
            others.insert(row->path, i);
    }
    const Result<QStringList> changed = changedBySaving(values);
    if (!changed)
        return changed.problem();
    if (!changed->isEmpty())
        return atValue(others.value(changed->constFirst()),
                       QStringLiteral("%1: the settings file cannot hold this value; no export of it has it")
                           .arg(quoted(changed->constFirst())));
    return values;
}

Problem ExportFile::at(int offset, const QString& what) const
{
    return {Exit::Failed,
            shownInput(m_name) + QLatin1Char(':') + lineAndColumn(m_text, offset) + QStringLiteral(": ") + what};
}

Problem ExportFile::atMember(const QString& member, const QString& what) const
{
    return at(memberOffset(m_text, member), what);
}

Problem ExportFile::atValue(int index, const QString& what) const
{
    const int array = memberOffset(m_text, text("values"));
    return at(elementOffset(m_text, array, index), QStringLiteral("value %1: %2").arg(index + 1).arg(what));
}

} // namespace vruinfo::tool
