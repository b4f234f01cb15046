/// \file Diagnostics.h
/// How the last start came to its identity: for tools and support, never needed to run.
///
/// The record is made by `VornaConfig::initial` on the start-up thread and does not change after it. Texts
/// are the library's.
#pragma once

#include <string>
#include <vector>

#include "VrUInfo/Export.h"

/// Where a piece of the identity came from. The numbers never change.
enum class VornOrigin : int {
    Argument = 0,       ///< The host passed it.
    Settings = 1,       ///< Remembered in the settings tree; the place is "<group>/<value name>".
    IniFile = 2,        ///< From an INI file; the place is "<file> [<section>] <key>".
    Default = 3,        ///< Built in.
    Asked = 4,          ///< The user agreed to it in a message box.
    ResourceLibrary = 5 ///< From a resource library; the place is "<library> string <id>".
};

/// One piece of the identity.
struct VornStartEntry {
    std::wstring piece; ///< "company", "product", "version", "language", "profile", "oem product", "oem
                        ///< company", "oem legal name"
    std::wstring value; ///< What was taken.
    VornOrigin origin = VornOrigin::Default; ///< Where it came from.
    std::wstring place;                      ///< As the origin says; empty for arguments, defaults and answers.
    std::vector<std::wstring> passedOver;    ///< What was looked at before, in order, each with the reason against it.
};

/// The record of the last start, in the order of resolution; the pieces that were not reached are missing.
VRUINFO_API const std::vector<VornStartEntry>& vornStartRecord();
