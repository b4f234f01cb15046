// Bounded wide text: the one place that knows what happens when a text is too long.
#pragma once

#include <cstddef>
#include <cwchar>
#include <string_view>

namespace vruinfo::internal
{

/// Characters, terminator included, of the interface's path and name buffers.
constexpr std::size_t kPathCapacity = 1024;

/// Says on standard error, in one line, that a text was too long for its buffer, and aborts.
[[noreturn]] void endProcessTooLong(std::size_t capacity);

/// Copies a text with its terminator. Ends the process when it does not fit.
void copyBounded(wchar_t* target, std::size_t capacity, const wchar_t* source);

/// Appends to a caller's buffer of known capacity; refuses what does not fit, and then leaves the text as it
/// was.
class WideWriter final
{
public:
    /// Begins with an empty text in the buffer.
    WideWriter(wchar_t* buffer, std::size_t capacity) : m_buffer(buffer), m_capacity(capacity) { m_buffer[0] = L'\0'; }

    [[nodiscard]] bool append(std::wstring_view text)
    {
        if (text.size() >= m_capacity - m_length)
            return false;
        std::wmemcpy(m_buffer + m_length, text.data(), text.size());
        m_length += text.size();
        m_buffer[m_length] = L'\0';
        return true;
    }
    /// "/" and the text.
    [[nodiscard]] bool appendComponent(std::wstring_view text)
    {
        if (text.size() + 1 >= m_capacity - m_length)
            return false;
        m_buffer[m_length] = L'/';
        ++m_length;
        return append(text);
    }
    void clear()
    {
        m_length = 0;
        m_buffer[0] = L'\0';
    }
    [[nodiscard]] std::size_t length() const { return m_length; }
    [[nodiscard]] const wchar_t* text() const { return m_buffer; }

private:
    wchar_t* m_buffer;
    std::size_t m_capacity;
    std::size_t m_length = 0;
};

} // namespace vruinfo::internal
