/// \file VornVariant.h
/// The tagged value of the settings tree, and its text form in the settings file.
///
/// Conventions of this header:
///  1. A value is a type tag and one heap block: a 32-bit size word, then the payload in host byte order. The
///  size word
///     counts the whole block, itself included. Four zero bytes always stand behind the block and are not
///     counted.
///  2. A variant owns its block (malloc, free). Copying is deep. A variant is not shared between threads.
///  3. Exhausted memory (status 6) and impossible sizes (status 3) throw a `VrErrorStatus*`, after handing it
///  to the
///     process's crash recorder; whoever catches it deletes it. Nothing else is thrown.
///  4. The members are inline on purpose: every module that links the library compiles the same code.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/Export.h"

class QVariant;

#pragma pack(push, 1)
/// A value of the settings tree.
class VRUINFO_API VornVariant
{
public:
    /// What a value holds. The numbers stand in settings files and never change.
    enum VarType : std::int32_t {
        kVarNone = 0,   ///< Nothing; no block.
        kVarInt32 = 1,  ///< 32-bit signed integer; size word 8.
        kVarInt64 = 2,  ///< 64-bit signed integer; size word 12.
        kVarDouble = 3, ///< IEEE 754 double; size word 12. Read back from a file it is a kVarBinary of its 8 bytes.
        kVarBinary = 4, ///< n bytes; size word n + 4. Written and read back it is four bytes longer each time.
        kVarString = 5, ///< Wide text with its terminator; size word 4 x (length + 1) + 4.
        kVarText6 = 6,  ///< Wide text, double-terminated; the store neither writes nor reads it.
        kVarText7 = 7,  ///< Wide text; the store neither writes nor reads it.
        kVarText8 = 8   ///< Wide text; the store neither writes nor reads it.
    };

    VarType type = kVarNone; ///< What it holds.
    void* data = nullptr;    ///< The block, at its size word; null when there is none. Owned.

    VornVariant() noexcept = default;
    /// A deep copy.
    VornVariant(const VornVariant& other) : type(other.type), data(duplicate(other.data)) {}
    /// Takes the block over; the other one holds nothing then.
    VornVariant(VornVariant&& other) noexcept : type(other.type), data(other.data)
    {
        other.type = kVarNone;
        other.data = nullptr;
    }
    /// A deep copy, of itself, too.
    VornVariant& operator=(const VornVariant& other)
    {
        if (this != &other)
            *this = VornVariant(other);
        return *this;
    }
    /// Takes the block over, and frees the former one.
    VornVariant& operator=(VornVariant&& other) noexcept
    {
        if (this == &other)
            return *this;
        std::free(data);
        type = other.type;
        data = other.data;
        other.type = kVarNone;
        other.data = nullptr;
        return *this;
    }
    ~VornVariant() { std::free(data); }

    /// Makes a value block; touches no variant. The caller owns it (free).
    /// \param valueType consulted only when size is below 1
    /// \param size      payload bytes; below 1 the type decides: kVarNone no block, kVarInt32 4, kVarInt64
    /// and
    ///                  kVarDouble 8 bytes, every other type is status 3
    /// \return the block with its size word set and its payload uninitialised, or null for kVarNone
    VRUINFO_API static void* allocateValue(VarType valueType, std::int32_t size)
    {
        if (size >= 1)
            return allocateBlock(static_cast<std::uint32_t>(size) + kSizeWord);
        switch (valueType) {
        case kVarNone:
            return nullptr;
        case kVarInt32:
            return allocateBlock(kSizeWord + 4);
        case kVarInt64:
        case kVarDouble:
            return allocateBlock(kSizeWord + 8);
        default:
            VrRaiseErrorStatus(3, L"\"\"", 0);
        }
    }

    /// Replaces the content with text under a tag.
    /// \param text may be null and may lie in this variant's own block
    /// \param valueType kVarString, kVarText7 and kVarText8 take the text as it is; every other tag takes the
    ///   double-terminated form: all characters but the last (at most 2001 of them), then two zeros
    VRUINFO_API void setString(const wchar_t* text, VarType valueType)
    {
        void* const former = data;
        type = valueType;
        data = nullptr;
        FreeLater guard{former};
        const bool single = valueType == kVarString || valueType == kVarText7 || valueType == kVarText8;
        data = single ? singleText(valueType, text) : doubleTerminatedText(text);
    }

private:
    static constexpr std::uint32_t kSizeWord = 4; // bytes
    static constexpr std::uint32_t kSpare = 4;    // zero bytes behind each block
    static constexpr std::size_t kCharacter = sizeof(wchar_t);
    static constexpr std::size_t kDoubleTerminatedMax = 2001; // characters counted

    struct FreeLater {
        void* block;
        ~FreeLater() { std::free(block); }
    };

    static void* allocateBlock(std::uint32_t sizeWord)
    {
        void* const block = std::malloc(static_cast<std::size_t>(sizeWord) + kSpare);
        if (!block)
            VrRaiseErrorStatus(6, L"\"\"", 0);
        std::memcpy(block, &sizeWord, sizeof sizeWord);
        std::memset(static_cast<char*>(block) + sizeWord, 0, kSpare);
        return block;
    }

    static void* duplicate(const void* block)
    {
        if (!block)
            return nullptr;
        std::uint32_t sizeWord = 0;
        std::memcpy(&sizeWord, block, sizeof sizeWord);
        const std::uint32_t bytes = sizeWord < kSizeWord ? kSizeWord : sizeWord;
        void* const copy = allocateBlock(bytes);
        std::memcpy(copy, block, bytes);
        return copy;
    }

    static void* singleText(VarType valueType, const wchar_t* text)
    {
        const std::size_t bytes = (text ? std::wcslen(text) + 1 : 1) * kCharacter;
        const bool fits = bytes <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
        void* const block = allocateValue(valueType, fits ? static_cast<std::int32_t>(bytes) : 0);
        std::memcpy(static_cast<char*>(block) + kSizeWord, text ? text : L"", bytes);
        return block;
    }

    static void* doubleTerminatedText(const wchar_t* text)
    {
        const std::size_t kept = text && text[0] ? wcsnlen(text + 1, kDoubleTerminatedMax) : 0;
        char* const block = static_cast<char*>(allocateBlock(static_cast<std::uint32_t>((kept + 3) * kCharacter)));
        std::memset(block + kSizeWord, 0, (kept + 2) * kCharacter);
        if (kept > 0)
            std::memcpy(block + kSizeWord, text, kept * kCharacter);
        return block;
    }
};
#pragma pack(pop)

/// Converts what the settings library read back. A text whose first "$" is its second character is typed by
/// the digit before it: 1 and 2 are integers (text that is no number reads as 0; 1 keeps the low 32 bits), 3
/// and 4 arrive as kVarBinary (bytes from hexadecimal digits, none: no block), 5 is text; any other tag
/// leaves `out` as it was. A text of another shape is taken whole, as kVarString. \param out [in,out] its
/// block is reused where an integer of the same tag stands in it, else replaced \throws VrErrorStatus* as the
/// header says
VRUINFO_API void QVarToVVar(QVariant& in, VornVariant& out);

/// Writes one value into a group of the settings tree, replacing what stands there. The text form is the
/// tag's digit,
/// "$" and the payload; kVarNone, kVarText6 to 8 and a kVarBinary without a block write an invalid value,
/// which reads back as absent. \param key  group path, taken as it stands \param name value name; an empty
/// one writes nothing \return 0; 5 when `key` or `name` is null or there is no settings object (nothing is
/// locked then). What happens on
///   the way to the file later is not known here. Any thread.
VRUINFO_API unsigned int WriteValueToReg(const wchar_t* key, const wchar_t* name, const VornVariant& value);
