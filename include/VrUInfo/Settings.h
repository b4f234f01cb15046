/// \file Settings.h
/// Settings with the types of C++: one line for each reading and each writing, over the exported calls of
/// VornaConfig.h. Header-only: a module that uses it binds to those calls and to nothing else.
///
/// \code{.cpp}
/// vorn::Settings grid(VornaConfig::SettingsRoot, L"Drawing/Grid");
/// grid.set(L"Step", 42);
/// std::optional<int> step = grid.get<int>(L"Step");
/// int angle = grid.get(L"Angle", 90);
/// std::printf("%d %d\n", *step, angle); // prints: 42 90
/// \endcode
///
/// A group is a Settings object of its own: it ends where its scope ends, and nothing is open or locked between calls.
///
/// \code{.cpp}
/// vorn::Settings grid(VornaConfig::SettingsRoot, L"Drawing/Grid");
/// {
///     auto colours = grid.group(L"Colours");
///     colours.set(L"Minor", L"grey");
///     colours.set(L"Major", QStringLiteral("black"));
/// }
/// std::wstring minor = grid.get(L"Colours/Minor", L"white");
/// std::printf("%ls\n", minor.c_str()); // prints: grey
/// \endcode
///
/// Sub-items and values are ranges over a snapshot, sorted by nothing but the settings library.
///
/// \code{.cpp}
/// vorn::Settings shape(VornaConfig::CurrentProfileRoot, L"Shape");
/// shape.set(L"Height", 1.5);
/// shape.group(L"Origin").set(L"X", std::int64_t{5000000000});
/// for (const std::wstring& name : shape.items())
///     std::printf("item %ls\n", name.c_str()); // prints: item Origin
/// for (const auto& value : shape.values())
///     std::printf("%ls = %g\n", value.name().c_str(), value.as<double>().value_or(0)); // prints: Height = 1.5
/// \endcode
///
/// What went wrong is said by the status of the last call; a value of another type is no value.
///
/// \code{.cpp}
/// vorn::Settings user(VornaConfig::UserConfigRoot);
/// user.set(L"Name", L"Ada");
/// if (!user.get<int>(L"Name") && user.status() == Vorn::eUnsupportedType)
///     std::printf("not a number\n"); // prints: not a number
/// user.remove(L"Name");
/// if (!user.contains(L"Name") && user.status() == Vorn::eNotFound)
///     std::printf("gone\n"); // prints: gone
/// \endcode
///
/// Bytes come back as they were given.
///
/// \code{.cpp}
/// vorn::Settings recent(VornaConfig::RecentFileListRoot);
/// recent.set(L"Stamp", vorn::Bytes{1, 2, 3});
/// std::printf("%zu bytes\n", recent.get<vorn::Bytes>(L"Stamp")->size()); // prints: 3 bytes
/// recent.removeAll();
/// std::printf("%s\n", recent.values().isEmpty() ? "empty" : "not empty"); // prints: empty
/// \endcode
///
/// Conventions of this header:
///  1. Types. `get` gives a value of the type asked for, or nothing with status eUnsupportedType. Nothing is converted,
///     but for a 32-bit integer, which is also read as a 64-bit one.
///     | C++ type                                         | what the tree keeps                                   |
///     | ------------------------------------------------ | ----------------------------------------------------- |
///     | `int` and other signed integers of 32 bits       | a 32-bit integer                                      |
///     | `std::int64_t` and other signed ones of 64 bits  | a 64-bit integer                                      |
///     | `bool`                                           | a 32-bit integer, 0 or 1; another number is no `bool` |
///     | `double`                                         | its 8 bytes: every bit survives, also those of a NaN  |
///     | `vorn::Bytes`, `QByteArray`                      | bytes                                                 |
///     | `std::wstring`, `QString`                        | text                                                  |
///     | `VornVariant`                                    | any value, raw: as the exported calls give and take it |
///     Every other type (unsigned, `float`, `char`) does not compile.
///  2. Bytes. The store writes four zero bytes behind each value of bytes, and gives them back with it. `get` drops the
///     last four bytes when all four are zero: what `set`, or the exported calls, wrote once comes back as it was
///     given. Bytes that a module read raw and wrote back raw have grown by four each time; one four is dropped. Bytes
///     that were put into the settings file by hand come back whole, unless they end in four zeros.
///     `get<VornVariant>` drops nothing.
///  3. Doubles. The tree gives a double back as 8 bytes and does not tell it from 4 bytes that were written as bytes:
///     either can be read as the other. 8 bytes that `set` wrote as bytes are 12 in the tree, and no double.
///  4. Names. A name may carry a sub-path, with "/" or "\" between its parts; separators at its ends do not count. An
///     empty name (also null, also separators only) names nothing, and a name or path with a zero in it neither.
///  5. Lengths. The path below the root, the value's name included, has at most 1023 characters (one less than
///     kVornPathCapacity); an item's path, its root included, at most 1022. Characters are those of wide text, also
///     beyond the BMP. A text or bytes longer than kLongestValue, or a text with a zero in it, are not written.
///  6. What conventions 4 and 5 refuse is status eFailed: nothing is read or written, and nothing ends the process.
///  7. Status. `status` is that of the last call on the object, as the exported calls tell it (ErrorStatus.h): eOk;
///     eNotFound for a value that is not there, and a list that is empty; eUnsupportedType; eMissing (`get`, `set`) or
///     eFailed without a settings object; eFailed before `InitVornConfig`. Removing what is not there is eOk.
///  8. Threads. An object belongs to one thread at a time; any number of objects, also on the same item, may be used by
///     any threads. Each reading, writing, removal and listing is one exported call under the store lock.
///  9. Nothing is thrown but for exhausted memory: `VrErrorStatus*` (VornVariant.h), or `std::bad_alloc`.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include "VrUInfo/ErrorStatus.h"
#include "VrUInfo/VornVariant.h"
#include "VrUInfo/VornaConfig.h"

namespace vorn
{

using Bytes = std::vector<unsigned char>;

/// Bytes, or characters (of a QString: UTF-16 units), of the longest value that is written.
constexpr std::size_t kLongestValue = std::size_t{1} << 27U;

/// A wide text for the time of one call; it need not be terminated, and null counts as empty. Made of what is given
/// where a name or a text is wanted.
class Text
{
public:
    Text(const wchar_t* text) noexcept : m_view(text ? std::wstring_view(text) : std::wstring_view()) {}
    Text(std::wstring_view text) noexcept : m_view(text) {}
    Text(const std::wstring& text) noexcept : m_view(text) {}

    std::wstring_view view() const noexcept { return m_view; }

private:
    std::wstring_view m_view;
};

/// What carries the classes below; not for use by itself.
namespace internal
{

constexpr VornaConfig::Path kNoRoot{~0U}; ///< The exported calls refuse it with eFailed.

inline bool isSeparator(wchar_t c) noexcept
{
    return c == L'/' || c == L'\\';
}

inline bool holdsZero(std::wstring_view text) noexcept
{
    return text.find(L'\0') != std::wstring_view::npos;
}

inline std::wstring_view withoutOuterSeparators(std::wstring_view text) noexcept
{
    while (!text.empty() && isSeparator(text.back()))
        text.remove_suffix(1);
    while (!text.empty() && isSeparator(text.front()))
        text.remove_prefix(1);
    return text;
}

/// An item's path below its root and a name behind it, terminated, on the stack. Empty when that names nothing.
class JoinedPath
{
public:
    JoinedPath(std::wstring_view item, Text name) noexcept
    {
        m_text[0] = L'\0';
        const std::wstring_view own = withoutOuterSeparators(name.view());
        const std::size_t begin = item.empty() ? 0 : item.size() + 1;
        if (own.empty() || own.size() >= m_text.size() - begin || holdsZero(own))
            return;
        if (begin > 0) {
            std::wmemcpy(m_text.data(), item.data(), item.size());
            m_text[begin - 1] = L'/';
        }
        std::wmemcpy(m_text.data() + begin, own.data(), own.size());
        m_length = begin + own.size();
        m_text[m_length] = L'\0';
    }

    bool isEmpty() const noexcept { return m_length == 0; }
    const wchar_t* text() const noexcept { return m_text.data(); }
    std::wstring_view view() const noexcept { return {m_text.data(), m_length}; }

    struct Parts {
        const wchar_t* item; ///< Empty where there is no separator.
        const wchar_t* name; ///< Behind the last separator.
    };
    /// Cuts the path at its last separator; from then on it is no longer whole.
    Parts split() noexcept
    {
        std::size_t name = m_length;
        while (name > 0 && !isSeparator(m_text[name - 1]))
            --name;
        if (name == 0)
            return {L"", text()};
        m_text[name - 1] = L'\0';
        return {text(), text() + name};
    }

private:
    std::array<wchar_t, kVornPathCapacity> m_text;
    std::size_t m_length = 0;
};

constexpr std::size_t kSizeWord = 4;  // bytes before a value's payload
constexpr std::size_t kZerosKept = 4; // bytes that the store adds behind bytes

inline std::size_t payloadSize(const VornVariant& value) noexcept
{
    std::uint32_t size = 0;
    if (value.data)
        std::memcpy(&size, value.data, sizeof size);
    return size > kSizeWord ? size - kSizeWord : 0;
}

inline const unsigned char* payload(const VornVariant& value) noexcept
{
    return static_cast<const unsigned char*>(value.data) + kSizeWord;
}

inline bool isStorable(std::size_t length) noexcept
{
    return length <= kLongestValue;
}

/// A value for the time of one write, its payload still to be filled. A small one takes no memory from the heap.
class LentValue
{
public:
    LentValue(VornVariant::VarType type, std::size_t size)
    {
        m_value.type = type;
        if (size > kSmall) {
            m_value.data = VornVariant::allocateValue(type, static_cast<std::int32_t>(size));
            return;
        }
        const auto sizeWord = static_cast<std::uint32_t>(size + kSizeWord);
        std::memcpy(m_block.data(), &sizeWord, sizeof sizeWord);
        std::memset(m_block.data() + sizeWord, 0, kZerosKept);
        m_value.data = m_block.data();
    }
    LentValue(const LentValue&) = delete;
    LentValue& operator=(const LentValue&) = delete;
    ~LentValue()
    {
        if (m_value.data == m_block.data())
            m_value.data = nullptr; // the variant would free it
    }

    unsigned char* payload() noexcept { return static_cast<unsigned char*>(m_value.data) + kSizeWord; }
    const VornVariant& value() const noexcept { return m_value; }

private:
    static constexpr std::size_t kSmall = 512;

    VornVariant m_value;
    alignas(std::max_align_t) std::array<unsigned char, kSizeWord + kSmall + kZerosKept> m_block;
};

/// How the tree keeps a C++ type: its tag, the payload's size, its filling, and the way back (nothing: another type).
template <typename T, typename = void>
struct Form {
    static constexpr bool kIsKept = false;
};

template <typename T, VornVariant::VarType type, typename Stored = T>
struct NumberForm {
    static constexpr bool kIsKept = true;
    static constexpr VornVariant::VarType kType = type;

    static bool isStorable(const T&) noexcept { return true; }
    static std::size_t size(const T&) noexcept { return sizeof(Stored); }
    static void fill(const T& number, unsigned char* target) noexcept
    {
        const auto stored = static_cast<Stored>(number);
        std::memcpy(target, &stored, sizeof stored);
    }
    static std::optional<Stored> stored(const VornVariant& value, VornVariant::VarType tag = type) noexcept
    {
        if (value.type != tag || payloadSize(value) != sizeof(Stored))
            return std::nullopt;
        Stored number;
        std::memcpy(&number, payload(value), sizeof number);
        return number;
    }
};

template <typename T, std::size_t size>
using IfInteger =
    std::enable_if_t<std::conjunction_v<std::is_integral<T>, std::is_signed<T>, std::negation<std::is_same<T, wchar_t>>,
                                        std::bool_constant<sizeof(T) == size>>>;

template <typename T>
struct Form<T, IfInteger<T, 4>> : NumberForm<T, VornVariant::kVarInt32> {
    static std::optional<T> from(const VornVariant& value) noexcept { return Form::stored(value); }
};

template <typename T>
struct Form<T, IfInteger<T, 8>> : NumberForm<T, VornVariant::kVarInt64> {
    static std::optional<T> from(const VornVariant& value) noexcept
    {
        if (const std::optional<std::int32_t> narrow = Form<std::int32_t>::from(value))
            return *narrow;
        return Form::stored(value);
    }
};

template <>
struct Form<bool> : NumberForm<bool, VornVariant::kVarInt32, std::int32_t> {
    static std::optional<bool> from(const VornVariant& value) noexcept
    {
        const std::optional<std::int32_t> number = stored(value);
        if (!number || *number < 0 || *number > 1)
            return std::nullopt;
        return *number == 1;
    }
};

template <>
struct Form<double> : NumberForm<double, VornVariant::kVarDouble> {
    static std::optional<double> from(const VornVariant& value) noexcept
    {
        return stored(value, VornVariant::kVarBinary);
    }
};

template <typename Container>
struct BytesForm {
    static constexpr bool kIsKept = true;
    static constexpr VornVariant::VarType kType = VornVariant::kVarBinary;

    static bool isStorable(const Container& bytes) noexcept { return internal::isStorable(size(bytes)); }
    static std::size_t size(const Container& bytes) noexcept { return static_cast<std::size_t>(bytes.size()); }
    static void fill(const Container& bytes, unsigned char* target) noexcept
    {
        if (size(bytes) > 0)
            std::memcpy(target, bytes.data(), size(bytes));
    }
    static std::optional<Container> from(const VornVariant& value)
    {
        if (value.type != kType)
            return std::nullopt;
        const std::size_t size = ownSize(value);
        return size > 0 ? copy(payload(value), size) : Container();
    }

private:
    /// Without the zeros that the store added.
    static std::size_t ownSize(const VornVariant& value) noexcept
    {
        const std::size_t size = payloadSize(value);
        if (size < kZerosKept)
            return size;
        std::uint32_t last = 0;
        static_assert(sizeof last == kZerosKept);
        std::memcpy(&last, payload(value) + size - kZerosKept, sizeof last);
        return last == 0 ? size - kZerosKept : size;
    }
    static Container copy(const unsigned char* bytes, std::size_t size)
    {
        using Byte = typename Container::value_type;
        const auto* const begin = reinterpret_cast<const Byte*>(bytes);
        if constexpr (std::is_same_v<Container, QByteArray>)
            return QByteArray(begin, static_cast<int>(size));
        else
            return Container(begin, begin + size);
    }
};

template <>
struct Form<Bytes> : BytesForm<Bytes> {
};

template <>
struct Form<QByteArray> : BytesForm<QByteArray> {
};

inline std::wstring_view textIn(const VornVariant& value) noexcept
{
    const std::size_t characters = payloadSize(value) / sizeof(wchar_t);
    if (characters == 0)
        return {};
    return {reinterpret_cast<const wchar_t*>(payload(value)), characters - 1};
}

/// The text's units; a QString made of them equals what the store keeps. (Qt's own conversion drops a leading U+FEFF.)
inline QString toQString(std::wstring_view text)
{
    const auto isPair = [](wchar_t c) { return c > 0xFFFF; };
    const auto pairs = std::count_if(text.begin(), text.end(), isPair);
    QString result(static_cast<int>(text.size() + static_cast<std::size_t>(pairs)), Qt::Uninitialized);
    QChar* target = result.data();
    for (const wchar_t c : text) {
        if (isPair(c)) {
            *target++ = QChar(QChar::highSurrogate(static_cast<uint>(c)));
            *target++ = QChar(QChar::lowSurrogate(static_cast<uint>(c)));
        } else {
            *target++ = QChar(static_cast<ushort>(c));
        }
    }
    return result;
}

inline bool beginsPair(const QString& text, int i) noexcept
{
    return text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
}

/// Calls `take` with each character of the text. (Qt's own conversion replaces half pairs.)
template <typename Take>
void forEachCharacter(const QString& text, Take take)
{
    for (int i = 0; i < text.size(); ++i) {
        if (!beginsPair(text, i)) {
            take(static_cast<wchar_t>(text.at(i).unicode()));
            continue;
        }
        take(static_cast<wchar_t>(QChar::surrogateToUcs4(text.at(i), text.at(i + 1))));
        ++i;
    }
}

template <>
struct Form<std::wstring> {
    static constexpr bool kIsKept = true;
    static constexpr VornVariant::VarType kType = VornVariant::kVarString;

    static bool isStorable(std::wstring_view text) noexcept
    {
        return internal::isStorable(text.size()) && !holdsZero(text);
    }
    static std::size_t size(std::wstring_view text) noexcept { return (text.size() + 1) * sizeof(wchar_t); }
    static void fill(std::wstring_view text, unsigned char* target) noexcept
    {
        const std::size_t bytes = text.size() * sizeof(wchar_t);
        if (bytes > 0)
            std::memcpy(target, text.data(), bytes);
        std::memset(target + bytes, 0, sizeof(wchar_t));
    }
    static std::optional<std::wstring> from(const VornVariant& value)
    {
        return value.type == kType ? std::optional<std::wstring>(textIn(value)) : std::nullopt;
    }
};

template <>
struct Form<QString> {
    static constexpr bool kIsKept = true;
    static constexpr VornVariant::VarType kType = VornVariant::kVarString;

    static bool isStorable(const QString& text) noexcept
    {
        return internal::isStorable(static_cast<std::size_t>(text.size())) && !text.contains(QChar(QChar::Null));
    }
    static std::size_t size(const QString& text)
    {
        std::size_t characters = 1;
        forEachCharacter(text, [&characters](wchar_t) { ++characters; });
        return characters * sizeof(wchar_t);
    }
    static void fill(const QString& text, unsigned char* target)
    {
        const auto put = [&target](wchar_t c) {
            std::memcpy(target, &c, sizeof c);
            target += sizeof c;
        };
        forEachCharacter(text, put);
        put(L'\0');
    }
    static std::optional<QString> from(const VornVariant& value)
    {
        return value.type == kType ? std::optional<QString>(toQString(textIn(value))) : std::nullopt;
    }
};

/// The types that `set` takes through their forms.
template <typename T>
using IfKept = std::enable_if_t<Form<T>::kIsKept>;

/// Gives the value that was read, in the type asked for. \param status [in,out] of the reading
template <typename T>
std::optional<T> converted(VornVariant&& value, unsigned int& status)
{
    static_assert(Form<T>::kIsKept || std::is_same_v<T, VornVariant>, "the settings tree does not keep this type");
    if (status != Vorn::eOk)
        return std::nullopt;
    std::optional<T> result;
    if constexpr (!std::is_same_v<T, VornVariant>)
        result = Form<T>::from(value);
    else if (value.type != VornVariant::kVarNone) // what the store cannot read leaves it as it was
        result = std::move(value);
    if (!result)
        status = Vorn::eUnsupportedType;
    return result;
}

inline unsigned int nameAt(const VornaConfig::ItemIterator& list, wchar_t* buffer, int& length)
{
    return list.name(buffer, length);
}

inline unsigned int nameAt(const VornaConfig::ValueIterator& list, wchar_t* buffer, int& length)
{
    return list.key(buffer, length);
}

/// The names of a snapshot, one at a time.
template <typename List>
class NameCursor
{
public:
    NameCursor(VornaConfig::Path root, const wchar_t* item, unsigned int& status)
    {
        status = vornConfig()->findItem(root, item, m_list);
        m_isAtEnd = status != Vorn::eOk || !readName();
    }

    bool isAtEnd() const noexcept { return m_isAtEnd; }
    const std::wstring& name() const noexcept { return m_name; }
    const List& list() const noexcept { return m_list; }
    void step() { m_isAtEnd = m_list.step() != Vorn::eOk || !readName(); }

private:
    /// False at the item's own path, which stands behind the names: alone in the list, it holds a separator.
    bool readName()
    {
        unsigned int status = readInto(std::max(m_name.capacity(), kUsualLength));
        if (status == Vorn::eBufferTooSmall)
            status = readInto(m_needed);
        m_name.resize(m_name.find_last_not_of(L'\0') + 1);
        return status == Vorn::eOk && m_name.find(L'/') == std::wstring::npos;
    }
    unsigned int readInto(std::size_t length)
    {
        m_name.assign(length, L'\0'); // not every list writes a terminator
        int capacity = static_cast<int>(length) + 1;
        const unsigned int status = nameAt(m_list, m_name.data(), capacity);
        m_needed = static_cast<std::size_t>(capacity);
        return status;
    }

    static constexpr std::size_t kUsualLength = 63;

    List m_list;
    std::wstring m_name;
    std::size_t m_needed = 0;
    bool m_isAtEnd = true;
};

/// An input iterator over a range that knows its position.
template <typename Range, typename Element>
class RangeIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using pointer = const Element*;
    using reference = const Element&;

    explicit RangeIterator(Range* range = nullptr) noexcept : m_range(range) {}

    reference operator*() const noexcept { return m_range->current(); }
    pointer operator->() const noexcept { return &m_range->current(); }
    RangeIterator& operator++()
    {
        m_range->step();
        return *this;
    }
    void operator++(int) { ++*this; }
    friend bool operator==(const RangeIterator& left, const RangeIterator& right) noexcept
    {
        return left.isAtEnd() == right.isAtEnd();
    }
    friend bool operator!=(const RangeIterator& left, const RangeIterator& right) noexcept { return !(left == right); }

private:
    bool isAtEnd() const noexcept { return !m_range || m_range->isEmpty(); }

    Range* m_range;
};

} // namespace internal

class Settings;

/// The names of an item's sub-items, as they were when it was made. To be walked once.
class Items
{
public:
    using iterator = internal::RangeIterator<Items, std::wstring>;

    Items(const Items&) = delete;
    Items& operator=(const Items&) = delete;

    iterator begin() noexcept { return iterator(this); }
    iterator end() noexcept { return iterator(); }
    bool isEmpty() const noexcept { return m_cursor.isAtEnd(); } ///< Whether no name is left.

private:
    friend class Settings;
    friend iterator;

    Items(VornaConfig::Path root, const wchar_t* item, unsigned int& status) : m_cursor(root, item, status) {}
    const std::wstring& current() const noexcept { return m_cursor.name(); }
    void step() { m_cursor.step(); }

    internal::NameCursor<VornaConfig::ItemIterator> m_cursor;
};

/// The values of an item, as they were when it was made; what each one holds is read when it is asked for. To be walked
/// once.
class Values
{
public:
    /// The value at the range's position.
    class Value
    {
    public:
        Value(const Value&) = delete;
        Value& operator=(const Value&) = delete;

        const std::wstring& name() const noexcept { return m_cursor.name(); }
        /// As `Settings::get`.
        template <typename T>
        std::optional<T> as() const
        {
            VornVariant value;
            m_status = m_cursor.list().value(value);
            return internal::converted<T>(std::move(value), m_status);
        }
        /// Of the last reading: as `Settings::get`; eBufferTooSmall for a name over 1023 characters.
        Vorn::ErrorStatus status() const noexcept { return Vorn::ErrorStatus{m_status}; }

    private:
        friend class Settings;
        friend class Values;

        Value(VornaConfig::Path root, const wchar_t* item, unsigned int& status) : m_cursor(root, item, status) {}

        internal::NameCursor<VornaConfig::ValueIterator> m_cursor;
        mutable unsigned int m_status = Vorn::eOk;
    };
    using iterator = internal::RangeIterator<Values, Value>;

    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;

    iterator begin() noexcept { return iterator(this); }
    iterator end() noexcept { return iterator(); }
    bool isEmpty() const noexcept { return m_current.m_cursor.isAtEnd(); } ///< Whether no value is left.

private:
    friend class Settings;
    friend iterator;

    Values(VornaConfig::Path root, const wchar_t* item, unsigned int& status) : m_current(root, item, status) {}
    const Value& current() const noexcept { return m_current; }
    void step() { m_current.m_cursor.step(); }

    Value m_current;
};

/// The settings of one item: a root, or an item below it. A value of C++: cheap to make, to copy and to move; the one
/// that was moved from names nothing (eFailed).
class Settings
{
public:
    /// \param root which of the nine roots
    /// \param item path below it; empty for the root itself. What is refused gives an object that names nothing.
    explicit Settings(VornaConfig::Path root, Text item = L"") : m_root(root)
    {
        if (!internal::withoutOuterSeparators(item.view()).empty())
            enter({}, item);
    }
    Settings(const Settings&) = default;
    Settings& operator=(const Settings&) = default;
    Settings(Settings&& other) noexcept :
        m_root(std::exchange(other.m_root, internal::kNoRoot)), m_item(std::move(other.m_item)),
        m_status(other.m_status)
    {
        other.m_item.clear();
    }
    Settings& operator=(Settings&& other) noexcept
    {
        if (this == &other)
            return *this;
        m_root = std::exchange(other.m_root, internal::kNoRoot);
        m_item = std::exchange(other.m_item, {});
        m_status = other.m_status;
        return *this;
    }
    ~Settings() = default;

    /// The settings of a sub-item, which need not be there yet. An empty name gives an object that names nothing.
    [[nodiscard]] Settings group(Text name) const
    {
        Settings below(m_root);
        below.enter(m_item, name);
        m_status = below.m_status;
        return below;
    }

    /// Reads a value. \return nothing when it is not there, or of another type (see the status)
    template <typename T>
    [[nodiscard]] std::optional<T> get(Text name) const
    {
        VornVariant value;
        m_status = read(name, value);
        return internal::converted<T>(std::move(value), m_status);
    }
    /// The same; what was not read is the fallback.
    template <typename T, typename = internal::IfKept<T>>
    [[nodiscard]] T get(Text name, const T& fallback) const
    {
        std::optional<T> value = get<T>(name);
        return value ? *std::move(value) : fallback;
    }
    [[nodiscard]] std::wstring get(Text name, Text fallback) const ///< As above.
    {
        std::optional<std::wstring> value = get<std::wstring>(name);
        return value ? *std::move(value) : std::wstring(fallback.view());
    }
    /// Whether the value is there, of whatever type.
    [[nodiscard]] bool contains(Text name) const
    {
        VornVariant value;
        m_status = read(name, value);
        return m_status == Vorn::eOk;
    }

    /// Writes a value, made if missing, whatever type it was of. \return whether the status is eOk
    template <typename T, typename = internal::IfKept<T>>
    bool set(Text name, const T& value)
    {
        return write<T>(name, value);
    }
    bool set(Text name, Text value) { return write<std::wstring>(name, value.view()); } ///< As above.
    /// Writes a raw value. eUnsupportedType for what the store does not keep: none, the kinds of text behind
    /// kVarString, and bytes without a block.
    bool set(Text name, const VornVariant& value)
    {
        const bool isKept = value.type > VornVariant::kVarNone && value.type <= VornVariant::kVarString;
        if (!isKept || (value.type == VornVariant::kVarBinary && !value.data))
            return finish(Vorn::eUnsupportedType);
        return writeStored(name, value);
    }

    /// Removes a value, and with it a sub-item of the same name, as the settings library does.
    /// \return whether the status is eOk, which it also is when nothing was there
    bool remove(Text name)
    {
        internal::JoinedPath path(m_item, name);
        if (path.isEmpty())
            return finish(Vorn::eFailed);
        const internal::JoinedPath::Parts parts = path.split();
        return finish(vornConfig()->removeValue(m_root, parts.item, parts.name));
    }
    /// Removes every value and sub-item of this item; and with them a value that its parent keeps under its name.
    /// \return as `remove`
    bool removeAll() { return finish(vornConfig()->removeValue(m_root, m_item.c_str(), nullptr)); }

    /// A snapshot of the sub-items' names.
    [[nodiscard]] Items items() const { return Items(m_root, m_item.c_str(), m_status); }
    /// A snapshot of the values.
    [[nodiscard]] Values values() const { return Values(m_root, m_item.c_str(), m_status); }

    Vorn::ErrorStatus status() const noexcept { return Vorn::ErrorStatus{m_status}; } ///< Of the last call.
    const std::wstring& path() const noexcept { return m_item; } ///< Below the root; empty for the root itself.

private:
    void enter(std::wstring_view item, Text name)
    {
        const internal::JoinedPath path(item, name);
        m_item = path.view();
        if (!path.isEmpty() && m_root != internal::kNoRoot)
            return;
        m_root = internal::kNoRoot;
        m_status = Vorn::eFailed;
    }
    bool finish(unsigned int status) noexcept
    {
        m_status = status;
        return status == Vorn::eOk;
    }
    unsigned int read(Text name, VornVariant& value) const
    {
        internal::JoinedPath path(m_item, name);
        if (path.isEmpty())
            return Vorn::eFailed;
        const unsigned int status = vornConfig()->getValue(m_root, path.text(), value);
        return status == Vorn::eFailed ? readListed(path, value) : status;
    }
    /// An item's path may be one character longer to be written and listed than the reading call takes: such a value is
    /// read from the list.
    unsigned int readListed(internal::JoinedPath& path, VornVariant& value) const
    {
        const internal::JoinedPath::Parts parts = path.split();
        unsigned int status = Vorn::eOk;
        for (const Values::Value& each : Values(m_root, parts.item, status)) {
            if (each.name() == parts.name)
                return each.m_cursor.list().value(value);
        }
        return status == Vorn::eOk ? static_cast<unsigned int>(Vorn::eNotFound) : status;
    }
    template <typename T, typename Given>
    bool write(Text name, const Given& value)
    {
        using Form = internal::Form<T>;
        if (!Form::isStorable(value))
            return finish(Vorn::eFailed);
        internal::LentValue lent(Form::kType, Form::size(value));
        Form::fill(value, lent.payload());
        return writeStored(name, lent.value());
    }
    bool writeStored(Text name, const VornVariant& value)
    {
        const internal::JoinedPath path(m_item, name);
        return finish(path.isEmpty() ? static_cast<unsigned int>(Vorn::eFailed)
                                     : vornConfig()->setValue(m_root, path.text(), value));
    }

    VornaConfig::Path m_root;
    std::wstring m_item;
    mutable unsigned int m_status = Vorn::eOk;
};

} // namespace vorn
