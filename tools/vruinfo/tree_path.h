// A place in the settings tree, as the user writes it and as the library knows it.
#pragma once

#include <optional>
#include <string>

#include <QtCore/QStringList>

#include "VrUInfo/VornaConfig.h"
#include "result.h"

namespace vruinfo::tool
{

/// A place that is known to fit: names between "/", none of them empty. No name at all is the top of the tree.
class Place final
{
public:
    /// Characters that a path may have for every operation of the library to take it.
    static constexpr std::size_t kLongest = 1021;

    explicit Place(QString path) : m_path(std::move(path)) {}

    [[nodiscard]] const QString& path() const { return m_path; }
    [[nodiscard]] QString shown() const { return isTop() ? QStringLiteral("/") : m_path; }
    [[nodiscard]] bool isTop() const { return m_path.isEmpty(); }
    [[nodiscard]] QString name() const { return m_path.mid(m_path.lastIndexOf(QLatin1Char('/')) + 1); }
    [[nodiscard]] std::wstring wideName() const;  ///< The last part, which names a value.
    [[nodiscard]] std::wstring wideGroup() const; ///< What lies before it; empty at the top level.
    [[nodiscard]] std::wstring widePath() const;
    /// A place right below; nothing when its path is too long.
    [[nodiscard]] std::optional<Place> below(const QString& name) const;

private:
    QString m_path;
};

/// The words that a path may begin with.
[[nodiscard]] QStringList rootSelectors();

/// A path argument: an optional root, and names.
class TreePath final
{
public:
    enum class Kind {
        Value, ///< The last name is that of a value: there must be one.
        Item,  ///< Separators at the end do not matter; "/" is the top of the tree.
        Named, ///< The same without the top.
    };

    [[nodiscard]] static Result<TreePath> parse(const QString& text, Kind kind);
    /// Whether it begins with a root, which only a start makes known.
    [[nodiscard]] bool needsStart() const { return m_root.has_value(); }
    [[nodiscard]] QString lastName() const { return m_names.isEmpty() ? QString() : m_names.constLast(); }
    /// Needs a started library where it begins with a root.
    [[nodiscard]] Result<Place> resolve() const;

private:
    TreePath(std::optional<VornaConfig::Path> root, QStringList names) : m_root(root), m_names(std::move(names)) {}

    std::optional<VornaConfig::Path> m_root;
    QStringList m_names;
};

} // namespace vruinfo::tool
