#include "installation.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <unistd.h>

#include "VrUInfo/VornaConfig.h"

namespace fs = std::filesystem;

namespace vrtest
{
namespace
{

fs::path ownExecutable()
{
    return fs::read_symlink("/proc/self/exe");
}

/// Whether others than root can come to a place, as far as the directories above it go.
bool isOpenToOthers(const fs::path& place)
{
    for (fs::path above = place; above != above.root_path(); above = above.parent_path()) {
        if ((fs::status(above).permissions() & fs::perms::others_exec) == fs::perms::none)
            return false;
    }
    return true;
}

/// Where the loader finds what was built: nothing for its own places, or a copy where everybody can come to, which the
/// processes of a test hand on.
std::string openLibraries()
{
    const char* const handedOn = std::getenv("LD_LIBRARY_PATH");
    if (!isBuildClosed() || handedOn)
        return handedOn ? handedOn : "";
    static const QTemporaryDir kDirectory;
    static const std::string kLibraries = [] {
        const std::string libraries = kDirectory.path().toStdString();
        fs::permissions(libraries, fs::perms(0755));
        fs::copy(BUILT_LIBRARIES, libraries, fs::copy_options::recursive);
        return libraries;
    }();
    return kLibraries;
}

/// A new folder beside the test program that was built, so that a hard link can reach it from there.
fs::path newRoot()
{
    const fs::path parent = isBuildClosed() ? fs::temp_directory_path() : ownExecutable().parent_path();
    std::string pattern = parent / "stage-XXXXXX";
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("cannot make " + pattern);
    fs::permissions(pattern, fs::perms(0755));
    return pattern;
}

void linkOrCopy(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    fs::create_hard_link(from, to, error);
    if (error)
        fs::copy_file(from, to, fs::copy_options::overwrite_existing);
}

/// What stands on disk. A settings object on the file itself would share the memory of the library's own one
/// in this process, and show what was never written.
class DiskCopy final
{
public:
    explicit DiskCopy(const fs::path& file) { QFile::copy(QString::fromStdString(file), path()); }
    QString path() const { return m_directory.filePath(QStringLiteral("copy.conf")); }

private:
    QTemporaryDir m_directory;
};

} // namespace

bool isBuildClosed()
{
    static const bool kIsClosed = geteuid() == 0 && !isOpenToOthers(BUILT_LIBRARIES);
    return kIsClosed;
}

std::wstring wide(const std::string& utf8)
{
    return QString::fromUtf8(utf8.c_str(), static_cast<int>(utf8.size())).toStdWString();
}

std::wstring wideOf(std::size_t length, wchar_t c)
{
    return std::wstring(length, c);
}

std::string utf8(const std::wstring& text)
{
    return QString::fromStdWString(text).toStdString();
}

Installation& Installation::here()
{
    static Installation installation(Adopt(), std::getenv("VR_INSTALLED"), ownExecutable());
    return installation;
}

Installation::Installation(Adopt, fs::path root, fs::path executable) :
    m_root(std::move(root)), m_program(executable.parent_path()), m_executable(executable.filename()), m_isOwned(false)
{
}

Installation::Installation(const std::string& directory, const std::string& executable) :
    m_root(newRoot()), m_program(m_root / directory), m_executable(executable), m_isOwned(true)
{
    fs::create_directories(m_program);
    fs::create_directories(configDir());
    linkOrCopy(ownExecutable(), this->executable());
}

Installation::~Installation()
{
    if (!m_isOwned)
        return;
    std::error_code ignored;
    // Tests take permissions away; give them back so that everything can go.
    for (auto entry = fs::recursive_directory_iterator(m_root, fs::directory_options::skip_permission_denied, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored))
            fs::permissions(entry->path(), fs::perms(0755), ignored);
    }
    fs::remove_all(m_root, ignored);
}

fs::path Installation::settingsFile(const std::string& company, const std::string& product,
                                    const std::string& version) const
{
    return configDir() / company / product / version / (product + ".conf");
}

void Installation::write(const std::string& name, const std::string& bytes) const
{
    fs::create_directories((m_program / name).parent_path());
    std::ofstream(m_program / name, std::ios::binary) << bytes;
}

void Installation::installLanguage(const std::string& shortName) const
{
    fs::create_directories(m_program / shortName);
    fs::copy_file(fs::path(VR_RESOURCES_DIR) / shortName / "libVrUInfoRes.so",
                  m_program / shortName / "libVrUInfoRes.so", fs::copy_options::overwrite_existing);
}

void Installation::installEmptyLanguage(const std::string& folder) const
{
    write(folder + "/libNothing.so", "this is no library\n");
}

fs::path Installation::installPartner(const std::string& folder) const
{
    fs::create_directories(m_program / folder);
    const fs::path target = m_program / folder / "VrCustomRes.so";
    fs::copy_file(fs::path(VR_RESOURCES_DIR) / "partner" / "VrCustomRes.so", target,
                  fs::copy_options::overwrite_existing);
    return target;
}

void Installation::writeSetting(const std::string& key, const std::string& text) const
{
    QSettings settings(QString::fromStdString(settingsFile()), QSettings::NativeFormat);
    settings.setValue(QString::fromStdString(key), QString::fromStdString(text));
}

ProcessResult Installation::run(const std::string& probe, const std::vector<std::string>& arguments,
                                const Environment& environment, const std::string& workingDirectory) const
{
    Environment all = this->environment();
    for (const auto& [name, value] : environment)
        all[name] = value;
    all["VR_PROBE"] = probe;
    std::vector<std::string> command{executable()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProcess(command, all, workingDirectory);
}

Environment Installation::environment() const
{
    return {{"HOME", home()},
            {"XDG_CONFIG_HOME", ""},
            {"XDG_DATA_HOME", ""},
            {"XDG_CONFIG_DIRS", "/nonexistent"},
            {"DISPLAY", ""},
            {"WAYLAND_DISPLAY", ""},
            {"VR_PROBE", ""},
            {"VR_INSTALLED", m_root},
            {"LD_LIBRARY_PATH", openLibraries()}};
}

std::string readFile(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

QString textInFile(const fs::path& settingsFile, const std::string& key)
{
    const DiskCopy copy(settingsFile);
    const QSettings settings(copy.path(), QSettings::NativeFormat);
    return settings.value(QString::fromStdString(key)).toString();
}

std::vector<std::string> keysInFile(const fs::path& settingsFile)
{
    const DiskCopy copy(settingsFile);
    const QSettings settings(copy.path(), QSettings::NativeFormat);
    std::vector<std::string> keys;
    for (const QString& key : settings.allKeys())
        keys.push_back(key.toStdString());
    std::sort(keys.begin(), keys.end());
    return keys;
}

void flush()
{
    g_globalSettings->sync();
}

} // namespace vrtest
