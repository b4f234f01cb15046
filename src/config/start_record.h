// What `initial` notes about each piece of the identity while it resolves it.
#pragma once

#include <string>
#include <vector>

#include "VrUInfo/Diagnostics.h"

namespace vruinfo::internal
{

/// The record of the last start. Written on the start-up thread, and only while a `Recording` lives:
/// resolution steps that are called at other times leave it alone.
class StartRecord final
{
public:
    class Recording;

    [[nodiscard]] static StartRecord& instance();

    /// Something that the next piece taken was looked for in, and why it was not taken from there.
    void passOver(std::wstring place, const wchar_t* reason);
    /// A piece is settled; what was passed over since the last one belongs to it.
    void take(const wchar_t* piece, const wchar_t* value, VornOrigin origin, std::wstring place = {});

    [[nodiscard]] const std::vector<VornStartEntry>& entries() const { return m_entries; }

private:
    bool m_isRecording = false;
    std::vector<VornStartEntry> m_entries;
    std::vector<std::wstring> m_passedOver;
};

/// Begins a new record; ends it with its scope.
class [[nodiscard]] StartRecord::Recording final
{
public:
    Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording();
};

/// How the record names a key of an INI file: "VORNA.ini [Product] ProductName".
[[nodiscard]] std::wstring iniPlace(const wchar_t* file, const wchar_t* section, const wchar_t* key);

} // namespace vruinfo::internal
