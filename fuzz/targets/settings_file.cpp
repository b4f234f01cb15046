// A start, every read and every listing over a settings file of the fuzzer's bytes, and the file that is left behind.
//
// Kept out by design are files whose remembered product, language or profile is longer than the buffer it is copied to:
// a start on such a file ends the process, which is the rule. The question about the language is answered with yes,
// since any other answer ends the process, too; English is installed.
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QSettings>

#include "VrUInfo/Lookups.h"
#include "VrUInfo/VornaConfig.h"
#include "fuzz_input.h"
#include "provision/bounded_values.h"
#include "store/tagged_text.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

/// The configuration object's friend: makes it anew, so that a process can start more than once.
struct VornaLayout {
    static void renew()
    {
        VornaConfig* const config = vornConfig();
        config->~VornaConfig();
        new (config) VornaConfig;
    }
};

namespace
{

namespace fs = std::filesystem;

using Values = std::map<QString, QVariant>;

fs::path home;

fs::path settingsFile()
{
    return home / ".config/HALVIK/VORNA/2026/VORNA.conf";
}

/// The settings library keeps a file's content in memory until the file's time or size changes: each file is a second
/// younger than the one before.
void writeFile(const fs::path& file, std::string_view bytes)
{
    static time_t second = 1000000000;
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const std::array<timespec, 2> times = {{{++second, 0}, {second, 0}}};
    utimensat(AT_FDCWD, file.c_str(), times.data(), 0);
}

/// What the settings library itself reads from the bytes; nothing where that takes all the memory there is.
Values plainValues(std::string_view bytes)
{
    const fs::path file = home / "plain.conf";
    writeFile(file, bytes);
    const QSettings settings(QString::fromStdString(file), QSettings::NativeFormat);
    Values values;
    if (!canTakeValuesApart(settings))
        return values;
    for (const QString& key : settings.allKeys())
        values[key] = settings.value(key);
    return values;
}

struct Limit {
    const char* name;
    std::size_t characters;
};

bool isTooLong(const QVariant& stored, const Limit& limit)
{
    return toWide(IdentityText::parse(stored, Marks::Any).text).size() > limit.characters;
}

/// Whether a start on these values could end the process because a remembered name is too long.
bool endsProcess(const Values& values)
{
    constexpr std::array<Limit, 3> kLimits = {{{"CurProduct", 255}, {"CurVer", 7}, {"Profiles", 1023}}};
    for (const auto& [key, value] : values) {
        for (const Limit& limit : kLimits) {
            if (key.section(QLatin1Char('/'), -1) == QLatin1String(limit.name) && isTooLong(value, limit))
                return true;
        }
    }
    return false;
}

bool isRemembered(const QString& key)
{
    const QString name = key.section(QLatin1Char('/'), -1);
    return name == QLatin1String("CurProduct") || name == QLatin1String("CurVer") || name == QLatin1String("Profiles");
}

/// A key that the library takes as it stands.
bool isAddressable(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(QLatin1Char('/')) && !key.endsWith(QLatin1Char('/')) &&
           !key.contains(QLatin1String("//")) && !key.contains(QLatin1Char('\\')) && !key.contains(QChar(0)) &&
           toWide(key).size() < 1000;
}

std::string bytesOf(const VornVariant& value)
{
    std::uint32_t size = 0;
    if (value.data)
        std::memcpy(&size, value.data, sizeof size);
    return std::to_string(value.type) + ':' + std::string(static_cast<const char*>(value.data), size);
}

void checkRead(const QString& key, const QVariant& stored)
{
    QVariant in = stored;
    VornVariant expected;
    if (!stored.isNull())
        QVarToVVar(in, expected);
    const int slash = key.lastIndexOf(QLatin1Char('/'));
    if (slash < 1)
        return;
    VornVariant read;
    const unsigned int status =
        vornConfig()->getValue(toWide(key.left(slash)).c_str(), toWide(key.mid(slash + 1)).c_str(), read);
    VR_HOLDS(status == Vorn::eOk || status == Vorn::eNotFound, "a read finds a value or says that there is none");
    VR_HOLDS(bytesOf(read) == bytesOf(expected), "a value reads as the settings library has it");
}

template <typename Iterator>
QStringList namesFrom(Iterator& iterator, unsigned int (Iterator::*nameOf)(wchar_t*, int&) const)
{
    QStringList names;
    int steps = 0;
    for (;;) {
        std::array<wchar_t, 4096> buffer{};
        int length = static_cast<int>(buffer.size());
        if ((iterator.*nameOf)(buffer.data(), length) != Vorn::eOk || iterator.step() != Vorn::eOk)
            return names;
        names.append(toQString(buffer.data()));
        VR_HOLDS(++steps < 100000, "a listing ends");
    }
}

void checkListing(const QString& item)
{
    VornaConfig::ItemIterator items;
    VornaConfig::ValueIterator values;
    const std::wstring path = toWide(item);
    if (vornConfig()->findItem(path.c_str(), items) == Vorn::eOk)
        namesFrom(items, &VornaConfig::ItemIterator::name);
    if (vornConfig()->findItem(path.c_str(), values) != Vorn::eOk)
        return;
    VornVariant value;
    for (int i = 0; i < 1000; ++i) {
        static_cast<void>(values.value(value));
        if (values.step() != Vorn::eOk)
            return;
    }
}

void checkRoots()
{
    std::array<wchar_t, kVornPathCapacity> path{};
    for (unsigned int root = 0; root <= VornaConfig::UserConfigRoot; ++root) {
        vornConfig()->getRegRootPath(static_cast<VornaConfig::Path>(root), path.data());
        VR_HOLDS(wcsnlen(path.data(), path.size()) < path.size(), "a root path ends in its buffer");
        VornaConfig::ItemIterator items;
        vornConfig()->findItem(static_cast<VornaConfig::Path>(root), L"", items);
    }
}

void checkStart(const Values& values)
{
    const unsigned int status = InitVornConfig(nullptr, nullptr, nullptr, nullptr);
    VR_HOLDS(status == Vorn::eOk || status == Vorn::eFailed, "a start works, or refuses a name");
    // The settings library takes a file's groups apart when they are asked for, and does not look for "A/b" among the
    // keys before the first group, where it never writes one: only after a listing are these found.
    g_globalSettings->allKeys();
    for (const auto& [key, stored] : values) {
        if (!isAddressable(key))
            continue;
        if (!isRemembered(key))
            checkRead(key, stored);
        for (int level = 1; level < 6 && key.count(QLatin1Char('/')) >= level; ++level)
            checkListing(key.section(QLatin1Char('/'), 0, level - 1));
    }
    checkRoots();
}

/// What a start leaves behind has every value that could be read before.
void checkLeft(const Values& before)
{
    std::ifstream stream(settingsFile(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    const Values after = plainValues(bytes);
    for (const auto& [key, stored] : before) {
        if (!isAddressable(key) || isRemembered(key) || stored.userType() != QMetaType::QString)
            continue;
        const auto found = after.find(key);
        VR_HOLDS(found != after.end() && found->second == stored, "a start keeps every value");
    }
}

int sayYes(HWND, const wchar_t*, const wchar_t*, unsigned int)
{
    return IDYES;
}

void installEnglish()
{
    std::array<char, 4096> program{};
    VR_HOLDS(readlink("/proc/self/exe", program.data(), program.size() - 1) > 0, "a program has a path");
    const fs::path language = fs::path(program.data()).parent_path() / "en-US";
    fs::create_directories(language);
    std::ofstream(language / "libVrUInfoRes.so") << "";
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::string place = "/dev/shm/vrfuzz-settings-XXXXXX";
    VR_HOLDS(mkdtemp(place.data()) != nullptr, "a home can be made");
    home = place;
    setenv("HOME", place.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    setenv("XDG_CONFIG_DIRS", place.c_str(), 1);
    fs::create_directories(settingsFile().parent_path());
    std::atexit([] { fs::remove_all(home); });
    installEnglish();
    VrSetMessageBoxHandler(sayYes);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const Values values = plainValues(bytes);
    if (endsProcess(values))
        return -1;
    writeFile(settingsFile(), bytes);
    checkStart(values);
    vornConfig()->uinitRegObject();
    VornaLayout::renew();
    checkLeft(values);
    return 0;
}
