/// \file Oem.h
/// Branding: names, icons and texts of the partner's library, or of the language's where there is none.
///
/// Texts and icons are the library's own: nobody frees them; they live until it is unloaded. Start-up or
/// user-interface thread.
#pragma once

#include <string>

#include "VrOsBase/VrOsBase.h"
#include "VrUInfo/Export.h"

class QIcon;
class QString;

VRUINFO_API const wchar_t* GetOemProductName();    ///< "VORNA" unless branded. Never null.
VRUINFO_API const wchar_t* GetOemCompanyName();    ///< "HALVIK" unless branded. Never null.
VRUINFO_API const wchar_t* GetOemCompanyLtdName(); ///< "HALVIK CO., LTD.(Eastport)" unless branded. Never null.
VRUINFO_API QIcon* GetOemAppIcon(bool large);      ///< Null until loaded, or when there is none.
VRUINFO_API const wchar_t* GetOemAppIconPath();    ///< Qt resource path of the icon; null until loaded.
/// The branding library; runs the selection again and sets the resource prefix by its outcome. Null when
/// there is none.
VRUINFO_API HMODULE GetOemResourceDllHandle();
/// A text of the partner's library; see `VornaConfig::getOemResourceString`.
VRUINFO_API bool getOemResourceString(unsigned int id, std::wstring& text);

/// A new icon (the caller deletes it) that reads a Qt resource, or a file, when it is first painted; may be
/// called before there is an application object. Width and height are accepted and not used. \return null
/// when there is no such resource
VRUINFO_API QIcon* loadIcon(const QString& path, int width, int height);
