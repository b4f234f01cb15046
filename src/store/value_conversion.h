// Between VornVariant and what the settings library stores.
#pragma once

#include <cstddef>
#include <cstdint>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include "VrUInfo/VornVariant.h"

namespace vruinfo::internal
{

/// \name Value blocks
/// @{
[[nodiscard]] std::uint32_t sizeWord(const VornVariant& value);       ///< 0 without a block.
[[nodiscard]] const unsigned char* payload(const VornVariant& value); ///< Behind the size word; a block must be there.
[[nodiscard]] std::int32_t int32Of(const VornVariant& value);         ///< 0 unless it is a kVarInt32 with a block.
void setInt32(VornVariant& value, std::int32_t number);               ///< Reuses the block of a kVarInt32.
void setText(VornVariant& value, const QChar* units, std::size_t count); ///< As kVarString.
/// The text of a kVarString with a block; else empty.
[[nodiscard]] const wchar_t* textOf(const VornVariant& value);
/// @}

/// What the settings library is to store; invalid for what the store does not write.
[[nodiscard]] QVariant toStored(const VornVariant& value);
/// Whether a value was read: the settings library gives a null or invalid one for what is not there.
[[nodiscard]] bool isStored(const QVariant& stored);
/// As `QVarToVVar`.
void fromStored(const QVariant& stored, VornVariant& out);

} // namespace vruinfo::internal
