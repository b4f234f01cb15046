#include "store/key_path.h"

#include <algorithm>
#include <cwchar>

#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

bool isSeparator(wchar_t c)
{
    return c == L'/' || c == L'\\';
}

std::wstring_view withoutTrailingSeparators(std::wstring_view text)
{
    while (!text.empty() && isSeparator(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace

std::wstring_view trimmedPath(const wchar_t* text)
{
    if (!text)
        return {};
    const std::size_t length = wcsnlen(text, kPathCapacity);
    if (length >= kPathCapacity)
        endProcessTooLong(kPathCapacity);
    std::wstring_view path = withoutTrailingSeparators({text, length});
    while (!path.empty() && isSeparator(path.front()))
        path.remove_prefix(1);
    return path;
}

ValuePath ValuePath::split(const wchar_t* text)
{
    const std::wstring_view path = trimmedPath(text);
    if (path.empty())
        return {};
    std::size_t name = path.size();
    while (name > 0 && !isSeparator(path[name - 1]))
        --name;
    return {path.substr(0, name == 0 ? 0 : name - 1), path.substr(name)};
}

std::wstring_view ValuePath::trimmedItem() const
{
    return withoutTrailingSeparators(item);
}

KeyPath::KeyPath(std::wstring_view text)
{
    if (!append(text))
        endProcessTooLong(kPathCapacity);
    replaceBackslashes();
}

KeyPath::KeyPath(const KeyPath& other) : m_unitCount(other.m_unitCount), m_length(other.m_length)
{
    std::copy_n(other.m_units.data, m_unitCount, m_units.data);
}

void KeyPath::assign(std::u16string_view units, std::size_t characters)
{
    units.copy(reinterpret_cast<char16_t*>(m_units.data), units.size());
    m_unitCount = units.size();
    m_length = characters;
}

bool KeyPath::assign(const QString& item, const QString& name)
{
    if (item.size() + 1 + name.size() > kUnits)
        return false;
    auto* const begin = reinterpret_cast<QChar*>(m_units.data);
    QChar* place = std::copy(item.cbegin(), item.cend(), begin);
    *place++ = QLatin1Char('/');
    m_unitCount = static_cast<std::size_t>(std::copy(name.cbegin(), name.cend(), place) - begin);
    m_length = m_unitCount;
    return true;
}

std::u16string_view KeyPath::units() const
{
    return {reinterpret_cast<const char16_t*>(m_units.data), m_unitCount};
}

bool KeyPath::append(std::wstring_view text)
{
    if (text.size() >= kPathCapacity - m_length)
        return false;
    m_unitCount += narrow(text, end());
    m_length += text.size();
    return true;
}

bool KeyPath::appendComponent(std::wstring_view text)
{
    if (text.size() + 1 >= kPathCapacity - m_length)
        return false;
    *end() = u'/';
    ++m_unitCount;
    ++m_length;
    return append(text);
}

bool KeyPath::join(std::wstring_view subPath, Slack slack)
{
    if (subPath.empty())
        return true;
    if (m_length + subPath.size() + static_cast<std::size_t>(slack) > kLongest)
        return false;
    const std::size_t before = m_unitCount;
    if (!appendComponent(subPath))
        return false;
    if (subPath.find(L'\\') != std::wstring_view::npos)
        replaceBackslashes(before);
    return true;
}

QString KeyPath::transient() const
{
    return literalString(m_units, m_unitCount);
}

QString KeyPath::copy() const
{
    return QString(reinterpret_cast<const QChar*>(m_units.data), static_cast<int>(m_unitCount));
}

void KeyPath::replaceBackslashes(std::size_t from)
{
    auto* const units = reinterpret_cast<char16_t*>(m_units.data);
    std::replace(units + from, units + m_unitCount, u'\\', u'/');
}

} // namespace vruinfo::internal
