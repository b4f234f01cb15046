// A key path of the settings tree: bounded wide text with "/" between its components.
#pragma once

#include <cstddef>
#include <cwchar>

#include "text/wide_buffer.h"

namespace vruinfo::internal
{

/// Pure text: knows neither the settings object nor any root. Not zeroed beyond its length.
class KeyPath final
{
public:
    static constexpr std::size_t kLongest = 1022; ///< Characters that a joined path may have.

    /// What a path and one more part may add up to besides their own lengths, for the sum not to pass
    /// kLongest.
    enum class Slack : std::size_t { One = 1, Two = 2 };

    KeyPath() { m_text[0] = L'\0'; }
    KeyPath(const KeyPath& other) : m_length(other.m_length)
    {
        std::wmemcpy(m_text, other.m_text, m_length + 1);
    }
    KeyPath& operator=(const KeyPath&) = delete;
    ~KeyPath() = default;

    /// Backslashes become "/", leading and trailing separators go. Null counts as empty; a text that does not
    /// fit the work buffer ends the process.
    [[nodiscard]] static KeyPath normalised(const wchar_t* text);
    /// The text as it stands; a text that does not fit ends the process.
    [[nodiscard]] static KeyPath verbatim(const wchar_t* text);

    [[nodiscard]] const wchar_t* text() const { return m_text; }
    [[nodiscard]] std::size_t length() const { return m_length; }
    [[nodiscard]] bool isEmpty() const { return m_length == 0; }
    /// Whether the path may stand alone as a free key path.
    [[nodiscard]] bool fitsAlone() const { return m_length + 1 <= kLongest; }

    /// Appends "/" and a sub-path; false, with the path as it was, when the sum with the slack passes
    /// kLongest. An empty sub-path appends nothing, and fits.
    [[nodiscard]] bool join(const wchar_t* subPath, std::size_t length, Slack slack = Slack::One);
    [[nodiscard]] bool join(const KeyPath& subPath, Slack slack = Slack::One);

    /// A path split at its last "/": what lies before it, and the name behind it (the whole text where there
    /// is none; null for an empty path). Both stand in the path that was split.
    struct Split {
        const wchar_t* parent;
        std::size_t parentLength;
        const wchar_t* name;

        [[nodiscard]] KeyPath parentPath() const;
    };
    [[nodiscard]] Split split() const;

    /// The buffer of kPathCapacity characters, for a function that writes a path; `measure` must follow.
    [[nodiscard]] wchar_t* buffer() { return m_text; }
    void measure() { m_length = std::wcslen(m_text); }

private:
    wchar_t m_text[kPathCapacity]; // NOLINT(cppcoreguidelines-pro-type-member-init) zeroing would cost more
                                   // than a read
    std::size_t m_length = 0;
};

} // namespace vruinfo::internal
