#include "osbase/registry_tree.h"

#include "osbase/directory.h"
#include "osbase/immortal.h"
#include "osbase/key_name.h"
#include "osbase/text_case.h"

#include <QFile>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <mutex>

namespace vrosbase::internal
{
namespace
{

constexpr LSTATUS kDone = ERROR_SUCCESS;
constexpr LSTATUS kMissing = ERROR_FILE_NOT_FOUND;
constexpr LSTATUS kDenied = ERROR_ACCESS_DENIED;
constexpr LSTATUS kInvalid = ERROR_INVALID_PARAMETER;

/// Held while a key is made, so that two threads do not make the same name in two cases.
std::mutex& makingMutex()
{
    return immortal<std::mutex>();
}

std::string treeDirectory()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QFile::encodeName(data).toStdString() + "/VrOsBase/Registry/";
}

std::string childPath(std::string directory, const std::string& fileName)
{
    return directory.append(1, '/').append(fileName);
}

LSTATUS statusOf(int error)
{
    if (error == 0) {
        return kDone;
    }
    return error == ENOENT || error == ENOTDIR ? kMissing : kDenied;
}

struct KeyEntries {
    LSTATUS status;
    std::vector<std::string> fileNames;
};

/// The directories right below a directory, without those that lead out of it.
KeyEntries keyEntries(const std::string& directory)
{
    DirectoryNames listing = readDirectory(directory);
    const auto isNoKey = [&](const std::string& entry) {
        return entry == "." || entry == ".." || !isDirectory(childPath(directory, entry));
    };
    auto& names = listing.names;
    names.erase(std::remove_if(names.begin(), names.end(), isNoKey), names.end());
    return {statusOf(listing.error), std::move(names)};
}

/// A child key by a name in another case. When there are several, the first by name.
KeyResult findChildInAnyCase(const std::string& directory, std::wstring_view name)
{
    KeyEntries entries = keyEntries(directory);
    std::sort(entries.fileNames.begin(), entries.fileNames.end());
    const auto found = std::find_if(entries.fileNames.begin(), entries.fileNames.end(), [&](const std::string& entry) {
        return compareFolded(decodeKeyName(entry), name) == 0;
    });
    if (found != entries.fileNames.end()) {
        return {kDone, childPath(directory, *found), REG_OPENED_EXISTING_KEY};
    }
    return {entries.status == kDone ? kMissing : entries.status, {}, 0};
}

KeyResult findChild(const std::string& directory, std::wstring_view name)
{
    const auto fileName = encodeKeyName(name);
    if (!fileName) {
        return {kInvalid, {}, 0};
    }
    std::string exact = childPath(directory, *fileName);
    if (isDirectory(exact)) {
        return {kDone, std::move(exact), REG_OPENED_EXISTING_KEY};
    }
    return findChildInAnyCase(directory, name);
}

KeyResult makeChild(const std::string& directory, std::wstring_view name)
{
    KeyResult found = findChild(directory, name);
    if (found.status != kMissing) {
        return found;
    }
    std::string made = childPath(directory, encodeKeyName(name).value_or(""));
    // Another process may have been quicker; then the key exists already.
    if (::mkdir(made.c_str(), 0777) == 0) {
        return {kDone, std::move(made), REG_CREATED_NEW_KEY};
    }
    return errno == EEXIST && isDirectory(made) ? KeyResult{kDone, std::move(made), REG_OPENED_EXISTING_KEY}
                                                : KeyResult{kDenied, {}, 0};
}

using ChildStep = KeyResult (*)(const std::string& directory, std::wstring_view name);

KeyResult walk(const std::string& directory, std::wstring_view path, ChildStep step)
{
    KeyResult result{kDone, directory, REG_OPENED_EXISTING_KEY};
    for (const std::wstring& name : splitKeyPath(path)) {
        result = step(result.directory, name);
        if (result.status != kDone) {
            break;
        }
    }
    return result;
}

} // namespace

std::string predefinedDirectory(HKEY key)
{
    if (key == HKEY_CURRENT_USER) {
        return treeDirectory() + "HKEY_CURRENT_USER";
    }
    return key == HKEY_LOCAL_MACHINE ? treeDirectory() + "HKEY_LOCAL_MACHINE" : std::string();
}

KeyResult findKey(const std::string& directory, std::wstring_view path)
{
    return walk(directory, path, findChild);
}

KeyResult makeKey(const std::string& directory, std::wstring_view path)
{
    const std::lock_guard<std::mutex> lock(makingMutex());
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    return error ? KeyResult{kDenied, {}, 0} : walk(directory, path, makeChild);
}

LSTATUS removeKey(const std::string& directory)
{
    return ::rmdir(directory.c_str()) == 0 ? kDone : statusOf(errno);
}

KeyNames childKeys(const std::string& directory)
{
    const KeyEntries entries = keyEntries(directory);
    KeyNames result{entries.status == kMissing ? kDone : entries.status, {}};
    std::transform(entries.fileNames.begin(), entries.fileNames.end(), std::back_inserter(result.names),
                   [](const std::string& entry) { return decodeKeyName(entry); });
    std::sort(result.names.begin(), result.names.end());
    return result;
}

} // namespace vrosbase::internal
