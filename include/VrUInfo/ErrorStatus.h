/// \file ErrorStatus.h
/// The status numbers that configuration and store operations return. They never change: modules compare with
/// the plain numbers.
#pragma once

namespace Vorn
{

/// Every status operation returns one of these as an `unsigned int`.
enum ErrorStatus : unsigned int {
    eOk = 0,              ///< Done.
    eNotFound = 1,        ///< Invalid argument, or the file, key, value or entry is not there.
    eUnsupportedType = 2, ///< A value type that the operation does not know.
    eBadSize = 3,         ///< Thrown (VrErrorStatus) for an impossible size of a value; never returned.
    eBadPosition = 4,     ///< An iterator without a snapshot, or past its end.
    eMissing = 5,         ///< A required file or object is missing; a value writer got no name.
    eBufferTooSmall = 6,  ///< The caller's buffer is too small, the size needed is written back; thrown: no memory.
    eFailed = 7,          ///< Could not be carried out: a name or path too long or empty, already set, no object.
    eNotBareName = 8      ///< The profile argument is not a bare profile name.
};

} // namespace Vorn
