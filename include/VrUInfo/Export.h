/// \file Export.h
/// The export macros of libVrUInfo.so.
#pragma once

#if defined(VRUINFO_STATIC)
#define VRUINFO_API
#else
/// What stands before each function that leaves the library.
#define VRUINFO_API __attribute__((visibility("default")))
#endif

/// A member of an exported class that is the library's own business.
#define VRUINFO_LOCAL __attribute__((visibility("hidden")))
