// The format of exports: one JSON object with a value in each line. It never changes but by a new version number.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonArray>
#include <QtCore/QString>

#include "result.h"
#include "tree_path.h"
#include "tree_snapshot.h"

namespace vruinfo::tool
{

/// Everything that is known about the values, in the same bytes for the same values.
[[nodiscard]] QByteArray exportText(const Place& place, const Snapshot& values);

/// An export that was read. Problems name the file, with line and column where there are such.
class ExportFile final
{
public:
    /// \param name "-" for standard input
    [[nodiscard]] static Result<ExportFile> read(const QString& name);

    [[nodiscard]] const QString& name() const { return m_name; }
    /// Where it was exported from.
    [[nodiscard]] const Place& place() const { return m_place; }
    /// The values, each of them one that the settings can have below a place.
    [[nodiscard]] Result<Snapshot> valuesAt(const Place& place) const;

private:
    ExportFile(QString name, QByteArray text) : m_name(std::move(name)), m_text(std::move(text)), m_place(QString()) {}

    [[nodiscard]] std::optional<Problem> parse();
    [[nodiscard]] std::optional<Problem> takeMembers(const QJsonObject& content);
    [[nodiscard]] Problem at(int offset, const QString& what) const;
    [[nodiscard]] Problem atMember(const QString& member, const QString& what) const;
    [[nodiscard]] Problem atValue(int index, const QString& what) const;

    QString m_name;
    QByteArray m_text;
    Place m_place;
    QJsonArray m_values;
};

} // namespace vruinfo::tool
