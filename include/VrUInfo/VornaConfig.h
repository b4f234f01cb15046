/// \file VornaConfig.h
/// The configuration object: the identity that the process started with, and the settings tree.
///
/// Conventions of this header:
///  1. Operations return a status number (ErrorStatus.h). `out` arguments are untouched unless it is 0, where
///  a comment
///     does not say otherwise.
///  2. A path buffer has room for kVornPathCapacity characters, terminator included. Where a signature
///  carries a
///     capacity, it counts characters and includes the terminator; lengths never do.
///  3. A key path is a text of item names with "/" or "\" between them; leading and trailing separators are
///  dropped, and
///     a path may hold at most 1022 characters with its root (bounds: each operation). An argument of
///     kVornPathCapacity characters or more is a broken promise of the caller and ends the process (abort,
///     one line on standard error).
///  4. Names and texts handed out stay the library's; nobody frees them. Names may be null where a comment
///  says so.
///  5. `InitVornConfig` runs once, on the start-up thread, before other threads use the library. After that
///  any thread
///     may call the store operations; one lock, held from opening a group to closing it, serialises them. An
///     iterator belongs to one thread.
///  6. Changes reach the settings file when the settings library writes them back (an event loop, or the end
///  of the
///     process); nothing here forces a write, and its late errors are not seen here.
///  7. Nothing is printed. Only values throw (VornVariant.h).
#pragma once

#include <atomic>
#include <string>

#include <QtCore/QList>
#include <QtCore/QString>

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/Diagnostics.h"
#include "VrUInfo/ErrorStatus.h"
#include "VrUInfo/Export.h"
#include "VrUInfo/VornVariant.h"
#include "VrUInfo/VornaLanguage.h"

class QIcon;
class QSettings;

namespace vruinfo::internal
{
struct RootBuilder;
}

/// Characters, terminator included, of every path and name buffer whose capacity a signature does not carry.
constexpr unsigned int kVornPathCapacity = 1024;

/// The one settings object that holds the tree; null until `VornaConfig::initRegObject` and after
/// `uinitRegObject`. Owned by the library. Hosts may look at it (its `sync` and `status`, for instance) but
/// leave its group as it was.
extern VRUINFO_API QSettings* g_globalSettings;

/// Qt resource prefix of the library that supplies the branding, such as ":/VrUInfoRes/VrUInfoRes". Set by
/// `VornaConfig::oemResourceDllHandle` on the start-up thread; hosts only read it.
extern VRUINFO_API QString g_strPrefix;

/// What a host program may throw about its configuration; nothing in this library throws it.
class VRUINFO_API VornaConfigException : public VrExceptionWithMsg
{
public:
    /// \param exitProcess whether the host should end; the others as VrExceptionWithMsg takes them
    VornaConfigException(const wchar_t* message, bool exitProcess, const wchar_t* file, int line);
    VornaConfigException(const VornaConfigException&) = default;            ///< A copy of its own.
    VornaConfigException& operator=(const VornaConfigException&) = default; ///< As above.
    ~VornaConfigException() override;
    bool isExitProcess() const { return m_exitProcess; } ///< The flag given.

private:
    bool m_exitProcess;
};

/// The one configuration object of the process (see `vornConfig`).
class VRUINFO_API VornaConfig
{
public:
    /// The roots of the settings tree. The numbers never change.
    enum Path : unsigned int {
        ProductNameRoot = 0,    ///< "Software/<company>/<product>"
        VersionRoot = 1,        ///< root 0, "/", version
        LanguageRoot = 2,       ///< root 1, "/", language short name
        ProfilesRoot = 3,       ///< root 2, "/Profiles"
        CurrentProfileRoot = 4, ///< root 3, "/", current profile name
        ApplicationsRoot = 5,   ///< root 2, "/Applications"
        RecentFileListRoot = 6, ///< root 2, "/Recent File List"
        SettingsRoot = 7,       ///< root 2, "/Settings"
        UserConfigRoot = 8      ///< root 7, "/UserConfig"
    };

    class ItemIterator;
    class ValueIterator;

    VornaConfig(const VornaConfig&) = delete;
    VornaConfig& operator=(const VornaConfig&) = delete;

    /// \name Start
    /// @{

    /// Resolves the identity, in this order, stopping at the first step that is not 0: settings object,
    /// company, product, language, check of the language's resource library, profile, branding. Each argument
    /// may be null or empty: the settings tree, the installation's "VORNA.ini" and built-in defaults fill the
    /// gap. Language resolution may ask the user in a message box and end the process with exit code 1.
    /// \return 0, also at once when the object is initialised already; 5 when the language's
    /// "libVrUInfoRes.so" is not
    ///   readable; 7 for a name that is refused, and for every call after one that failed behind the company
    ///   step (a failed start cannot be tried again); 5 or 8 of the profile step, after which the object is
    ///   initialised all the same, without branding.
    unsigned int initial(const wchar_t* company, const wchar_t* product, const wchar_t* language,
                         const wchar_t* profile);
    /// Always false, whatever the state; nobody may rely on it.
    bool isInitialized() const;

    /// The settings object for these names (null or empty: from "VORNA.ini", else the defaults), made once
    /// per process; a lock file that an earlier process left beside the settings file is removed. Later calls
    /// change nothing.
    void initRegObject(const wchar_t* company, const wchar_t* product);
    /// Writes back and deletes the settings object and deletes both icons. For the end of the process.
    void uinitRegObject();

    unsigned int initCompanyName(const wchar_t* company); ///< 0; 7 when set already, over 254 characters, or too long.
    unsigned int buildRootPathFromCompany();              ///< 0; 7 without a company name of 1 to 1014 characters.
    unsigned int initProductName(const wchar_t* product); ///< 0; 7 when set already, no company root, too long.
    unsigned int refreshProductName();                    ///< 1 when it recorded "CurProduct" in the tree, else 0.
    unsigned int buildRootPathFromProduct();              ///< 0; 7 without names, or root longer than 1023 characters.
    bool isInitVORNAProduct();                            ///< Company HALVIK and product VORNA, in any case.

    unsigned int
    initLanguageName(const wchar_t* language);        ///< 0; 7 without a product root; or the INI reader's status.
    unsigned int refreshLanguageName();               ///< 1 when it recorded "CurVer" in the tree, else 0.
    bool isLanguageExist(const wchar_t* shortName);   ///< Known to this product, and its folder counts.
    bool isLangFolderExist(const wchar_t* shortName); ///< A readable folder beside the executable with a "*.so".
    bool isLangVerExist(const wchar_t* shortName);    ///< Always true.
    bool isLangMatch(const wchar_t* shortName);       ///< Always true.
    int queryAInstalledLangInOrder();                 ///< English if installed, else the first by id; -1: none.
    /// Whether an older release in the tree has an item of the current language (for migration).
    bool isSameLanVersionExist() const;

    /// 0 when the current language's "libVrUInfoRes.so" is readable; 5 when not; 7 when its path cannot be
    /// had.
    unsigned int verifyResourcePath();

    /// 0 for null or empty; 8 for a path or the name of an existing ".ARG" file beside the executable (any
    /// case of the extension); else as `initProfileNamePart`.
    unsigned int initProfileName(const wchar_t* profile);
    /// Makes this the process's profile; recorded in the tree only if a current profile stands there already.
    /// \return 0 (also for null or empty, without doing anything); 5 without a settings object
    unsigned int initProfileNamePart(const wchar_t* profile);
    /// As `initProfileNamePart`.
    unsigned int updateProfileName(const wchar_t* name);
    /// The current profile recorded in a group (null or empty: ProfilesRoot); "Default" is recorded when
    /// there is none. \param name [out] kVornPathCapacity characters; empty on failure 7, untouched on
    /// failure 5 \return 0; 5 without a settings object; 7 when ProfilesRoot is not known
    unsigned int getCurrentProfileNameFromReg(wchar_t* name, const wchar_t* group) const;

    unsigned int initOemResource(); ///< Loads the branding once. Always 1.
    void loadOemIcons();            ///< Icon path and both icons, from the library that `g_strPrefix` names.
    /// Chooses the branding library (partner's if configured and loadable, else the language's) and sets
    /// `g_strPrefix`.
    static HMODULE oemResourceDllHandle();
    bool isNeedCheckOemPath(); ///< Whether the partner's library is in use.
    /// A text of the partner's library. \param text [in,out] made at least 1024 long, then cut to what was
    /// loaded \return whether a text was loaded; false, with `text` untouched, unless a partner's library is
    /// in use
    bool getOemResourceString(unsigned int id, std::wstring& text);
    /// @}

    /// \name Identity
    /// @{
    const VornaLanguage& language() const;    ///< id -1 until resolved.
    const wchar_t* productName() const;       ///< "VORNA" until resolved. Never null.
    const wchar_t* companyName() const;       ///< "HALVIK" until resolved. Never null.
    const wchar_t* profileName() const;       ///< Null until resolved.
    const wchar_t* version() const;           ///< "2026", also until resolved. Never null.
    const wchar_t* oemProductName() const;    ///< "VORNA" unless branded. Never null.
    const wchar_t* oemCompanyName() const;    ///< "HALVIK" unless branded. Never null.
    const wchar_t* oemCompanyLtdName() const; ///< "HALVIK CO., LTD.(Eastport)" unless branded. Never null.
    QIcon* oemAppIcon(bool large) const;      ///< The library's own; null until loaded, or when there is none.
    const wchar_t* oemAppIconPath() const;    ///< Qt resource path; null until loaded.
    /// @}

    /// \name INI files of the installation
    /// A file is named by its bare name and lies beside the executable.
    /// @{

    /// Its path. \param path [out] kVornPathCapacity characters \return 0; 7 with an empty or partial path
    unsigned int getIniFilePath(wchar_t* path, const wchar_t* fileName);
    /// Reads a text into a buffer. \param size capacity in characters; the reader itself is given one less,
    /// so at most
    ///   size - 2 characters arrive (a longer text is cut)
    /// \return 0; 1 for null or empty arguments, size below 2, no such file or key, or an empty text; 7 for
    /// no path
    unsigned int readIniString(const wchar_t* section, const wchar_t* key, wchar_t* buffer, unsigned int size,
                               const wchar_t* fileName);
    /// Reads an integer. \param value [out] overwritten whenever the file was read, with -1 for an absent key
    /// \return 0; 1 also for an absent or negative number; 7 for no path
    unsigned int readIniInt(const wchar_t* section, const wchar_t* key, int& value, const wchar_t* fileName);
    /// Reads a kVarString or a kVarInt32 into a variant. \return as the two readers; 2 for another type
    unsigned int getIniValue(const wchar_t* section, const wchar_t* key, VornVariant& value, VornVariant::VarType type,
                             const wchar_t* fileName);
    /// @}

    /// Lists this release in the user's products list ("VR2D.conf" in ".local/share/HALVIK" of the home), with the
    /// running program's directory, unless an entry of the same key, such as "VORNA_2026_Chs", is there: then nothing
    /// is written. A lock file found beside the list counts as left behind and is removed (nothing is listed where it
    /// cannot be, or where the list cannot be read in the memory there is). An entry's number is the count of entries
    /// plus one, also when one was deleted from the middle.
    /// \return false when the directory cannot be made (only its last level is); later failures are not seen
    bool createProductsConfigReg();

    /// \name Settings tree
    /// @{

    /// The key path of a root. \param out [out] kVornPathCapacity characters; empty before `initial`, for a
    /// selector
    ///   above 8, and when the path does not fit. Root 4 adopts the recorded profile if none was set.
    void getRegRootPath(Path path, wchar_t* out) const;

    /// Reads a value. \return 0; 1 when it is not there; 7 for null, a path over 1021 characters or no
    /// settings object. An empty key reads at the top level of the file.
    unsigned int getValue(const wchar_t* key, const wchar_t* name, VornVariant& out) const;
    /// Reads a value below a root; the part of the name before its last separator is a sub-path.
    /// \return 0; 1 not there; 5 no settings object; 7 unknown root or path too long (over 1021 with the
    /// root)
    unsigned int getValue(Path root, const wchar_t* name, VornVariant& out) const;
    /// Writes a value below a root, made if missing; the name may carry a sub-path. \return as
    /// `addValue(Path, ...)`
    unsigned int setValue(Path root, const wchar_t* name, const VornVariant& value);
    /// Overwrites a value that exists. \return 0; 7 when it does not exist (nothing is written), for null, a
    /// path over
    ///   1021 characters, or no settings object
    unsigned int addValue(const wchar_t* key, const wchar_t* name, const VornVariant& value);
    /// Writes a value of root/subkey, made if missing. \return 0; 5 for a null name or no settings object; 7
    unsigned int addValue(Path root, const wchar_t* subkey, const wchar_t* name, const VornVariant& value);
    /// Removes a value that exists. \return 0; 7 also when it does not exist
    unsigned int removeValue(const wchar_t* key, const wchar_t* name);
    /// Removes a value of root/subkey; an empty or null name removes everything in that item.
    /// \return 0 whether or not it existed; 7
    unsigned int removeValue(Path root, const wchar_t* subkey, const wchar_t* name);
    /// Checks an item path; makes nothing, since an item comes into being with its first value. \return 0 or
    /// 7
    unsigned int addItem(Path root, const wchar_t* subkey);
    /// Whether the item holds at least one value, at any depth.
    bool isItemExist(Path root, const wchar_t* subkey);
    /// Deletes key/subkey with everything below. \return 0; 7 also when there was nothing
    unsigned int removeItem(const wchar_t* key, const wchar_t* subkey);
    /// Deletes root/subkey (null or empty: the root itself) with everything below.
    /// \return 0 whatever was there; 1 for a subkey of separators only; 7
    unsigned int removeItem(Path root, const wchar_t* subkey);

    /// Snapshot of the sub-items or the values of an item, appended to the iterator's list.
    /// \return 0; 1 when there are none; 7 (the list is as it was, position and count 0)
    unsigned int findItem(const wchar_t* key, ItemIterator& iterator);
    unsigned int findItem(const wchar_t* key, ValueIterator& iterator); ///< As above.
    unsigned int findItem(Path root, const wchar_t* subkey,
                          ItemIterator& iterator); ///< As above, below a root.
    unsigned int findItem(Path root, const wchar_t* subkey,
                          ValueIterator& iterator); ///< As above, below a root.
    /// Reads a value of the sub-item at the iterator's position (at the base-path position: of the enumerated
    /// item). \return 0; 1 not there; 4 or 6 as `ItemIterator::name`; 5 no settings object or empty item name
    unsigned int getValue(const ItemIterator& iterator, const wchar_t* name, VornVariant& out) const;
    /// Writes a value of that sub-item. \return 0; 1 without a list; 4, 5 or 6
    unsigned int setValue(ItemIterator& iterator, const wchar_t* name, const VornVariant& value) const;
    /// @}

private:
    friend class VornaProduct;
    friend struct VornaLayout;
    friend struct vruinfo::internal::RootBuilder;
    friend VRUINFO_API VornaConfig* vornConfig();

    VRUINFO_LOCAL VornaConfig();
    VRUINFO_LOCAL ~VornaConfig();

    VRUINFO_LOCAL void takeArgumentLanguage(const wchar_t* language);
    VRUINFO_LOCAL unsigned int takeRememberedLanguage();
    VRUINFO_LOCAL unsigned int takeIniLanguage();
    VRUINFO_LOCAL unsigned int readIniPiece(const wchar_t* section, const wchar_t* key, wchar_t* text);
    VRUINFO_LOCAL void adoptIfInstalled(const wchar_t* shortName, VornOrigin origin, const std::wstring& place);
    VRUINFO_LOCAL void takeInstalledLanguage();
    VRUINFO_LOCAL void takeLanguage(const VornaLanguage& language);
    VRUINFO_LOCAL bool hasCurrentLanguage(const wchar_t* release) const;
    VRUINFO_LOCAL unsigned int readIniText(const wchar_t* section, const wchar_t* key, VornVariant& value,
                                           const wchar_t* fileName);
    VRUINFO_LOCAL unsigned int readIniNumber(const wchar_t* section, const wchar_t* key, VornVariant& value,
                                             const wchar_t* fileName);
    VRUINFO_LOCAL void loadOemTexts();
    VRUINFO_LOCAL void deleteIcons();
    VRUINFO_LOCAL static void deleteIconsAtExit();

    wchar_t* m_productName = nullptr;
    wchar_t* m_companyName = nullptr;
    std::atomic<wchar_t*> m_profileName = nullptr; // replaced while other threads read; former names stay valid
    VornaLanguage m_language{-1};
    wchar_t* m_companyRootPath = nullptr;
    wchar_t* m_productRootPath = nullptr;
    bool m_initialized = false;
    wchar_t* m_oemProductName = nullptr;
    wchar_t* m_oemCompanyName = nullptr;
    wchar_t* m_oemCompanyLtdName = nullptr;
    mutable QIcon* m_largeIcon = nullptr; // made when first asked for
    mutable QIcon* m_smallIcon = nullptr;
    wchar_t* m_oemAppIconPath = nullptr;
    wchar_t* m_version = nullptr;
    HMODULE m_oemResourceDll = nullptr;

    static VornaConfig _sg_vorna_config; // NOLINT(bugprone-reserved-identifier) fixed name
};

/// The sub-items of an item, as they were when `VornaConfig::findItem` was called. Construct, find, then use
/// the name at the position and `step` until that is not 0. After the last sub-item, the base path (the key
/// path that was enumerated) comes once as one more name.
class VRUINFO_API VornaConfig::ItemIterator
{
public:
    ItemIterator(); ///< An empty list, position -1.
    ~ItemIterator();
    ItemIterator(const ItemIterator&) = delete;
    ItemIterator& operator=(const ItemIterator&) = delete;

    /// Moves on. \return 0 as often as there are sub-items; then, and before `findItem`, 4
    unsigned int step() const;
    /// The name at the position. \param buffer [out] receives it, terminated \param length [in,out] capacity
    /// in
    ///   characters with the terminator; afterwards the capacity needed
    /// \return 0; 4 outside the snapshot; 6 when the buffer is null or too small (buffer untouched)
    unsigned int name(wchar_t* buffer, int& length) const;

private:
    friend class VornaConfig;
    friend struct VornaLayout;
    QList<QString>* m_list;
    mutable std::int32_t m_index = -1;
    std::int32_t m_count = 0;
};

/// The values of an item, in the same manner.
class VRUINFO_API VornaConfig::ValueIterator
{
public:
    ValueIterator(); ///< An empty list, position -1.
    ~ValueIterator();
    ValueIterator(const ValueIterator&) = delete;
    ValueIterator& operator=(const ValueIterator&) = delete;

    /// Moves on. \return 0 as often as there are values; then, and before `findItem`, 4
    unsigned int step() const;
    /// The value name at the position. No terminator is written: the caller clears the buffer beforehand.
    /// \param length [in,out] capacity; must exceed the name's length in UTF-16 units; afterwards that length
    /// plus 1 \return 0; 4 outside the snapshot; 6 when the buffer is null or too small
    unsigned int key(wchar_t* buffer, int& length) const;
    /// The value at the position, read now. \return 0; 1 when it is gone; 4; 5 without base path or settings
    /// object; 6
    unsigned int value(VornVariant& out) const;
    /// Writes the value at the position. \return 0; 4; 5; 6
    unsigned int setValue(const VornVariant& value);

private:
    friend class VornaConfig;
    friend struct VornaLayout;
    QList<QString>* m_list;
    mutable std::int32_t m_index = -1;
    std::int32_t m_count = 0;
};

/// The configuration object. Never null.
VRUINFO_API VornaConfig* vornConfig();

/// `vornConfig()->initial(...)`; 7 if there were no object.
VRUINFO_API unsigned int InitVornConfig(const wchar_t* company, const wchar_t* product, const wchar_t* language,
                                        const wchar_t* profile);

/// Reads "VORNA.ini" as `VornaConfig::getIniValue` does. \return whether the status was 0
VRUINFO_API bool GetVornIniConfigValue(const wchar_t* section, const wchar_t* key, VornVariant& value,
                                       VornVariant::VarType type);

/// Copies the settings file's path, in the local 8-bit encoding. \param capacity bytes, with the terminator
/// \return false, with the buffer unchanged, for no settings object, no buffer, or no room
VRUINFO_API bool getConfigPath(int capacity, char* buffer);

/// Deletes an item of the settings tree with everything below it, relative to the group that is open on the
/// settings object. \return whether it directly held a value or a sub-item; false for an empty key or without
/// a settings object
VRUINFO_API bool RegDeleteKeyAndAllSubkeys(QString key);
/// Deletes a key of the platform's registry with everything below it. \return also true when there is no such
/// key; false for an empty or null subkey, one of 2048 characters or more, or a tree that cannot be deleted
/// whole
VRUINFO_API bool RegDeleteKeyAndAllSubkeys(HKEY root, wchar_t* subkey);
