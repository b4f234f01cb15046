// Values of the settings tree, made and looked into byte by byte.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "VrUInfo/VornVariant.h"

namespace vrtest
{

using Bytes = std::vector<unsigned char>;

inline constexpr std::size_t kSizeWordBytes = 4;

/// The fields of a value, copied: they are packed, so nothing may refer to them.
inline int typeOf(const VornVariant& value)
{
    return value.type;
}

inline const void* dataOf(const VornVariant& value)
{
    return value.data;
}

/// The size word of a value; 0 without a block.
inline std::uint32_t sizeWordOf(const VornVariant& value)
{
    std::uint32_t size = 0;
    if (value.data)
        std::memcpy(&size, value.data, sizeof size);
    return size;
}

/// The whole block as its size word counts it, size word first.
inline Bytes blockOf(const void* block)
{
    if (!block)
        return {};
    std::uint32_t size = 0;
    std::memcpy(&size, block, sizeof size);
    const auto* const first = static_cast<const unsigned char*>(block);
    return {first, first + size};
}

/// The payload as the size word counts it.
inline Bytes payloadOf(const VornVariant& value)
{
    const Bytes block = blockOf(value.data);
    if (block.size() <= kSizeWordBytes)
        return {};
    return {block.begin() + kSizeWordBytes, block.end()};
}

template <typename Number>
Number numberIn(const VornVariant& value)
{
    Number number{};
    std::memcpy(&number, static_cast<const unsigned char*>(value.data) + kSizeWordBytes, sizeof number);
    return number;
}

/// The characters of the payload, every terminator included.
inline std::wstring charactersIn(const VornVariant& value)
{
    const Bytes bytes = payloadOf(value);
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

/// The text up to its terminator; empty without a block.
inline std::wstring textIn(const VornVariant& value)
{
    return value.data ? std::wstring(charactersIn(value).c_str()) : std::wstring();
}

template <typename Number>
VornVariant numberValue(VornVariant::VarType type, Number number)
{
    VornVariant value;
    value.data = VornVariant::allocateValue(type, 0);
    value.type = type;
    std::memcpy(static_cast<unsigned char*>(value.data) + kSizeWordBytes, &number, sizeof number);
    return value;
}

inline VornVariant int32Value(std::int32_t number)
{
    return numberValue(VornVariant::kVarInt32, number);
}

inline VornVariant int64Value(std::int64_t number)
{
    return numberValue(VornVariant::kVarInt64, number);
}

inline VornVariant doubleValue(double number)
{
    return numberValue(VornVariant::kVarDouble, number);
}

inline VornVariant textValue(const std::wstring& text)
{
    VornVariant value;
    value.setString(text.c_str(), VornVariant::kVarString);
    return value;
}

inline VornVariant binaryValue(const Bytes& bytes)
{
    VornVariant value;
    value.type = VornVariant::kVarBinary;
    value.data = VornVariant::allocateValue(VornVariant::kVarBinary, static_cast<std::int32_t>(bytes.size()));
    std::memcpy(static_cast<unsigned char*>(value.data) + kSizeWordBytes, bytes.data(), bytes.size());
    return value;
}

/// A value with a tag and no block.
inline VornVariant emptyValue(VornVariant::VarType type)
{
    VornVariant value;
    value.type = type;
    return value;
}

} // namespace vrtest
