// Values whose stored form asks for more memory than there is.
#pragma once

#include <new>

#include <QtCore/QSettings>

namespace vruinfo::internal
{

/// To be called on a settings object that was just opened: takes all its values apart. One byte of damage in the size
/// of a list that another program stored lets the settings library ask for all the memory there is, and throw each time
/// that anything near it is read or the file is written: such a file cannot be used.
[[nodiscard]] inline bool canTakeValuesApart(const QSettings& settings)
{
    try {
        settings.allKeys();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace vruinfo::internal
