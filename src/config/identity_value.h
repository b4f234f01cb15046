// The values of the settings tree that remember the identity: "CurProduct", "CurVer", "Profiles".
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "store/tagged_text.h"

namespace vruinfo::internal
{

/// One of them, in its group. Reading and writing take the store lock; the settings object must be there.
class IdentityValue final
{
public:
    IdentityValue(const wchar_t* group, const wchar_t* name) : m_group(group), m_name(name) {}

    /// Its text, if there is one to take.
    [[nodiscard]] std::optional<std::wstring> read(Marks marks) const;
    /// The same for a step that looks for a piece of the identity here: when there is none, the start record is told
    /// why.
    [[nodiscard]] std::optional<std::wstring> resolve(Marks marks) const;
    /// Writes mark 5 and the text.
    void write(const wchar_t* text) const;
    /// How the start record names it: "<group>/<name>".
    [[nodiscard]] std::wstring place() const;

private:
    [[nodiscard]] IdentityText lookUp(Marks marks) const;

    const wchar_t* m_group;
    const wchar_t* m_name;
};

} // namespace vruinfo::internal
