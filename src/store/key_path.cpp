#include "store/key_path.h"

namespace vruinfo::internal
{
namespace
{

bool isSeparator(wchar_t c)
{
    return c == L'/' || c == L'\\';
}

std::size_t boundedLength(const wchar_t* text)
{
    const std::size_t length = wcsnlen(text, kPathCapacity);
    if (length >= kPathCapacity)
        endProcessTooLong(kPathCapacity);
    return length;
}

} // namespace

KeyPath KeyPath::normalised(const wchar_t* text)
{
    KeyPath path;
    if (!text)
        return path;
    std::size_t length = boundedLength(text);
    while (length > 0 && isSeparator(*text)) {
        ++text;
        --length;
    }
    while (length > 0 && isSeparator(text[length - 1]))
        --length;
    for (std::size_t i = 0; i < length; ++i)
        path.m_text[i] = text[i] == L'\\' ? L'/' : text[i];
    path.m_text[length] = L'\0';
    path.m_length = length;
    return path;
}

KeyPath KeyPath::verbatim(const wchar_t* text)
{
    KeyPath path;
    path.m_length = boundedLength(text);
    std::wmemcpy(path.m_text, text, path.m_length + 1);
    return path;
}

bool KeyPath::join(const wchar_t* subPath, std::size_t length, Slack slack)
{
    if (length == 0)
        return true;
    if (m_length + length + static_cast<std::size_t>(slack) > kLongest)
        return false;
    m_text[m_length] = L'/';
    std::wmemcpy(m_text + m_length + 1, subPath, length);
    m_length += length + 1;
    m_text[m_length] = L'\0';
    return true;
}

bool KeyPath::join(const KeyPath& subPath, Slack slack)
{
    return join(subPath.m_text, subPath.m_length, slack);
}

KeyPath KeyPath::Split::parentPath() const
{
    KeyPath path;
    std::wmemcpy(path.m_text, parent, parentLength);
    path.m_text[parentLength] = L'\0';
    path.m_length = parentLength;
    return path;
}

KeyPath::Split KeyPath::split() const
{
    if (m_length == 0)
        return {m_text, 0, nullptr};
    std::size_t name = m_length;
    while (name > 0 && m_text[name - 1] != L'/')
        --name;
    return {m_text, name == 0 ? 0 : name - 1, m_text + name};
}

} // namespace vruinfo::internal
