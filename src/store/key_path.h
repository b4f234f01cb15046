// A key path of the settings tree: bounded wide text with "/" between its components.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include <QtCore/QString>

#include "text/wide_buffer.h"

namespace vruinfo::internal
{

/// An argument that names an item, without the separators ("/" or "\") at its ends.
/// Null counts as empty; a text that does not fit a work buffer of kPathCapacity ends the process.
[[nodiscard]] std::wstring_view trimmedPath(const wchar_t* text);

/// An argument that names a value below an item, split at its last separator.
struct ValuePath {
    std::wstring_view item;                ///< Before it; empty where there is none.
    std::optional<std::wstring_view> name; ///< Behind it; nothing for an argument without a name.

    [[nodiscard]] static ValuePath split(const wchar_t* text);
    /// The item without separators at its end.
    [[nodiscard]] std::wstring_view trimmedItem() const;
};

/// A path as the settings object takes it (UTF-16), bounded in characters of the wide text that it was made of. Pure
/// text: knows neither the settings object nor any root. No heap; not zeroed beyond its length.
class KeyPath final
{
public:
    static constexpr std::size_t kLongest = 1022; ///< Characters that a joined path may have.

    /// What a path and one more part may add up to besides their own lengths, for the sum not to pass kLongest.
    enum class Slack : std::size_t { One = 1, Two = 2 };

    KeyPath() = default;
    /// The text, with "/" for each backslash. It must be shorter than kPathCapacity.
    explicit KeyPath(std::wstring_view text);
    KeyPath(const KeyPath& other);
    KeyPath& operator=(const KeyPath&) = delete;
    ~KeyPath() = default;

    [[nodiscard]] std::size_t length() const { return m_length; } ///< In characters.
    [[nodiscard]] bool isEmpty() const { return m_length == 0; }
    /// Whether the path may stand alone as a free key path.
    [[nodiscard]] bool fitsAlone() const { return m_length + 1 <= kLongest; }

    /// The path of a value below an item, for transient() only; false when there is no room for it.
    [[nodiscard]] bool assign(const QString& item, const QString& name);
    /// Takes over a path's units, and the characters that they stand for.
    void assign(std::u16string_view units, std::size_t characters);
    [[nodiscard]] std::u16string_view units() const;
    /// Appends the text as it stands; false, with the path as it was, when it would not fit a path buffer.
    [[nodiscard]] bool append(std::wstring_view text);
    /// The same with "/" before the text.
    [[nodiscard]] bool appendComponent(std::wstring_view text);
    /// Appends "/" and a sub-path, with "/" for each backslash of it; false, with the path as it was, when the sum with
    /// the slack passes kLongest. An empty sub-path appends nothing, and fits.
    [[nodiscard]] bool join(std::wstring_view subPath, Slack slack = Slack::One);
    /// From here on the backslashes in the whole path are separators.
    void replaceBackslashes() { replaceBackslashes(0); }

    /// The path for one call of the settings object: shares this object's characters (see TransientString).
    [[nodiscard]] QString transient() const;
    /// A copy that may be kept.
    [[nodiscard]] QString copy() const;

private:
    static constexpr int kUnits = 2 * static_cast<int>(kPathCapacity); // a character has at most two

    [[nodiscard]] char16_t* end() { return reinterpret_cast<char16_t*>(m_units.data) + m_unitCount; }
    void replaceBackslashes(std::size_t from);

    mutable QStaticStringData<kUnits> m_units;
    std::size_t m_unitCount = 0;
    std::size_t m_length = 0;
};

} // namespace vruinfo::internal
