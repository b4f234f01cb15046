#include "tree_path.h"

#include <algorithm>
#include <array>

#include "text.h"

namespace vruinfo::tool
{
namespace
{

struct Root {
    const char* selector;
    VornaConfig::Path path;
};

constexpr std::array<Root, 9> kRoots = {{
    {"@product", VornaConfig::ProductNameRoot},
    {"@version", VornaConfig::VersionRoot},
    {"@language", VornaConfig::LanguageRoot},
    {"@profiles", VornaConfig::ProfilesRoot},
    {"@profile", VornaConfig::CurrentProfileRoot},
    {"@applications", VornaConfig::ApplicationsRoot},
    {"@recent", VornaConfig::RecentFileListRoot},
    {"@settings", VornaConfig::SettingsRoot},
    {"@userconfig", VornaConfig::UserConfigRoot},
}};

constexpr QLatin1Char kSeparator('/');

Problem unknownRoot(const QString& selector)
{
    QStringList known;
    for (const Root& root : kRoots)
        known.append(text(root.selector));
    return {Exit::Misuse,
            QStringLiteral("unknown root '%1'; the roots are %2").arg(selector, known.join(QStringLiteral(", ")))};
}

Problem emptyName(const QString& path)
{
    return {Exit::Misuse, QStringLiteral("'%1' has an empty part; a name that is empty or holds a separator cannot be "
                                         "addressed")
                              .arg(path)};
}

Problem tooLong()
{
    return {Exit::Misuse,
            QStringLiteral("the path is longer than %1 characters, its root included").arg(Place::kLongest)};
}

bool fits(const QString& path)
{
    return toWide(path).size() <= Place::kLongest;
}

QString withoutLeadingSeparators(QString path)
{
    while (path.startsWith(kSeparator))
        path.remove(0, 1);
    return path;
}

QString withoutTrailingSeparators(QString path)
{
    while (path.endsWith(kSeparator))
        path.chop(1);
    return path;
}

/// The root's key path; empty when it cannot be had.
QString rootText(VornaConfig::Path root)
{
    std::array<wchar_t, kVornPathCapacity> key{};
    vornConfig()->getRegRootPath(root, key.data());
    return fromWide(key.data());
}

} // namespace

QStringList rootSelectors()
{
    QStringList selectors;
    for (const Root& root : kRoots)
        selectors.append(text(root.selector) + kSeparator);
    return selectors;
}

std::wstring Place::wideName() const
{
    return toWide(name());
}

std::wstring Place::wideGroup() const
{
    return toWide(m_path.left(std::max(0, m_path.lastIndexOf(kSeparator))));
}

std::wstring Place::widePath() const
{
    return toWide(m_path);
}

std::optional<Place> Place::below(const QString& name) const
{
    const QString path = isTop() ? name : m_path + kSeparator + name;
    return fits(path) ? std::optional<Place>(path) : std::nullopt;
}

Result<TreePath> TreePath::parse(const QString& text, Kind kind)
{
    QString path = withoutLeadingSeparators(QString(text).replace(QLatin1Char('\\'), kSeparator));
    if (kind != Kind::Value)
        path = withoutTrailingSeparators(path);
    if (path.isEmpty() && kind == Kind::Item)
        return TreePath(std::nullopt, {});
    if (path.isEmpty())
        return Problem{Exit::Misuse, QStringLiteral("'%1' names nothing in the settings tree").arg(text)};
    QStringList names = path.split(kSeparator);
    if (names.contains(QString()))
        return emptyName(text);
    if (!names.constFirst().startsWith(QLatin1Char('@')))
        return TreePath(std::nullopt, names);
    const QString selector = names.takeFirst();
    const auto root = std::find_if(kRoots.begin(), kRoots.end(), [&selector](const Root& candidate) {
        return vruinfo::tool::text(candidate.selector) == selector;
    });
    if (root == kRoots.end())
        return unknownRoot(selector);
    if (names.isEmpty() && kind == Kind::Value)
        return Problem{Exit::Misuse, QStringLiteral("'%1' names no value; write %2/NAME").arg(text, selector)};
    return TreePath(root->path, names);
}

Result<Place> TreePath::resolve() const
{
    QStringList parts = m_names;
    if (m_root) {
        const QString root = rootText(*m_root);
        if (root.isEmpty())
            return Problem{Exit::Failed, QStringLiteral("the root's path cannot be had: a name in it is too long")};
        parts.prepend(root);
    }
    const QString path = parts.join(kSeparator);
    return fits(path) ? Result<Place>(Place(path)) : Result<Place>(tooLong());
}

} // namespace vruinfo::tool
