// What the targets share: taking a fuzzer's bytes apart, and saying which rule does not hold.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <QtCore/QString>

namespace vrfuzz
{

[[noreturn]] inline void fail(const char* rule, const char* file, int line)
{
    std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, rule);
    std::abort();
}

/// Ends the process, which the fuzzer takes for a find, unless the condition holds.
#define VR_HOLDS(condition, rule)                     \
    do {                                              \
        if (!(condition))                             \
            ::vrfuzz::fail(rule, __FILE__, __LINE__); \
    } while (false)

/// UTF-8 to wide text; what is no UTF-8 becomes a character of the same number.
inline std::wstring wide(std::string_view utf8)
{
    const QString text = QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
    return text.toStdWString();
}

/// Bytes, taken from the front.
class Input final
{
public:
    Input(const std::uint8_t* data, std::size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

    [[nodiscard]] bool isEmpty() const { return m_rest.empty(); }
    unsigned int takeByte()
    {
        if (m_rest.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte;
    }
    /// Up to the next line's end, which goes.
    std::string_view takeLine()
    {
        const std::string_view line = m_rest.substr(0, m_rest.find('\n'));
        m_rest.remove_prefix(std::min(line.size() + 1, m_rest.size()));
        return line;
    }
    [[nodiscard]] std::string_view rest() const { return m_rest; }
    /// The rest as wide text: of four bytes a character, any number it may be, or UTF-8.
    [[nodiscard]] std::wstring wideRest(bool isRaw) const
    {
        if (!isRaw)
            return wide(m_rest);
        std::wstring text(m_rest.size() / sizeof(wchar_t), L'\0');
        std::memcpy(text.data(), m_rest.data(), text.size() * sizeof(wchar_t));
        return text;
    }
    /// The rest as UTF-16, well-formed or not, or from UTF-8.
    [[nodiscard]] QString stringRest(bool isRaw) const
    {
        if (!isRaw)
            return QString::fromUtf8(m_rest.data(), static_cast<int>(m_rest.size()));
        QString text(static_cast<int>(m_rest.size() / sizeof(QChar)), Qt::Uninitialized);
        std::memcpy(text.data(), m_rest.data(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
        return text;
    }

private:
    std::string_view m_rest;
};

/// The text up to its first zero, as a function sees it that takes zero-terminated text.
inline std::wstring terminated(const std::wstring& text)
{
    return text.c_str();
}

} // namespace vrfuzz

/// What a target does with one input; the fuzzer calls it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
/// Called once, before the first input.
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);
