// A value as a thread of the stress programs writes it, and as the tree and the file must have it.
#pragma once

#include <cstdint>
#include <string>

#include "VrUInfo/VornVariant.h"

namespace stress
{

/// Told from every other one by its number, in whichever of the store's five types that comes.
class KeptValue
{
public:
    KeptValue() = default;
    explicit KeptValue(std::int64_t number) : m_number(number) {}

    [[nodiscard]] VornVariant variant() const;
    /// Whether a read of it gave this: a double and bytes come back as the store documents it.
    [[nodiscard]] bool isIn(const VornVariant& value) const;
    [[nodiscard]] std::u16string inFile() const;

private:
    enum class Kind { Int32, Int64, Double, Bytes, Text };

    [[nodiscard]] Kind kind() const { return static_cast<Kind>(m_number % 5); }
    [[nodiscard]] std::string bytes() const; ///< Of a double, or of bytes.
    [[nodiscard]] std::wstring text() const;

    std::int64_t m_number = 0;
};

} // namespace stress
