// The library beside what one would use instead: the settings library itself (QSettings), KConfig, GLib's GKeyFile,
// GSettings over dconf, and the dconf client. All in one process and on the same tree, in turn, round by round; every
// answer is checked.
//
// A tree of N values has N / 100 items of 100 values, each the number 42. Times are wall-clock times, because dconf has
// another process write; those of each round are the mean of a batch. Home and session bus are its own.
//
//   rivals_bench RESULTS [rounds] [values...]
//
// RESULTS gets lines of "operation values side median-ns low-quartile high-quartile" (memory: bytes a value, three
// times).
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <dconf.h>
#include <gio/gio.h>
#include <malloc.h>
#include <unistd.h>

#include <KConfig>
#include <KConfigGroup>
#include <QtCore/QCoreApplication>
#include <QtCore/QSettings>
#include <QtCore/QString>

#include "VrUInfo/VrUInfo.h"
#include "staged.h"

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kValuesPerItem = 100;
constexpr int kNumber = 42; ///< Every value is this or more.
constexpr char kColdVariable[] = "VR_BENCH_COLD";
constexpr char kBusVariable[] = "VR_BENCH_BUS";
constexpr std::chrono::milliseconds kBatch(20);

[[noreturn]] void fail(const std::string& what)
{
    std::fprintf(stderr, "rivals_bench: %s\n", what.c_str());
    std::_Exit(1);
}

void expect(bool isAsExpected, const char* side, const char* what)
{
    if (!isAsExpected)
        fail(std::string(side) + ": " + what);
}

/// A value of the tree: which item, which name in it.
struct Position {
    int item;
    int value;
};

std::size_t placeOf(Position at)
{
    return static_cast<std::size_t>(at.item * kValuesPerItem + at.value);
}

/// One library, with a tree of its own. What it does not have it says by `has`.
class Side
{
public:
    Side() = default;
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;
    virtual ~Side() = default;
    [[nodiscard]] virtual const char* name() const = 0;
    virtual void open(int items) = 0; ///< Everything that is made ready before an access.
    virtual void fill(int item) = 0;  ///< Writes an item with its values.
    virtual int read(Position at) = 0;
    virtual bool isMissing(int item) = 0; ///< Asks for a value that is not there.
    virtual void write(Position at, int number) = 0;
    virtual int countValues(int item) = 0;
    virtual int countItems() = 0;
    virtual void removeItem(int item) = 0;
    virtual void flush() = 0;
    virtual void filled() {}                                        ///< Behind the last of many `fill`s.
    [[nodiscard]] virtual int mostWrites() const { return 100000; } ///< In a row, before it is settled.
    virtual void settle() {}                                        ///< Waits for what another process has yet to do.
    [[nodiscard]] virtual bool canList() const { return true; }
    [[nodiscard]] virtual bool isCold() const { return true; } ///< Whether a cold start of it is measured.
};

class Ours final : public Side
{
    template <typename Iterator>
    static int steps(const Iterator& iterator)
    {
        int count = 0;
        while (iterator.step() == Vorn::eOk)
            ++count;
        return count;
    }

public:
    [[nodiscard]] const char* name() const override { return "ours"; }
    void open(int items) override
    {
        InitVornConfig(nullptr, nullptr, L"en-US", L"Default");
        m_names.clear();
        for (int i = 0; i <= items; ++i) {
            m_items.push_back(L"Bench/Item" + std::to_wstring(i));
            m_missing.push_back(m_items.back() + L"/Nowhere");
            for (int k = 0; k < kValuesPerItem; ++k)
                m_names.push_back(m_items.back() + L"/Value" + std::to_wstring(k));
        }
    }
    void fill(int item) override
    {
        for (int k = 0; k < kValuesPerItem; ++k)
            write({item, k}, kNumber);
    }
    int read(Position at) override
    {
        const bool isThere = vornConfig()->getValue(VornaConfig::SettingsRoot, nameOf(at), m_value) == Vorn::eOk;
        int number = 0;
        if (isThere && m_value.type == VornVariant::kVarInt32)
            std::memcpy(&number, static_cast<char*>(m_value.data) + 4, sizeof number);
        return number;
    }
    bool isMissing(int item) override
    {
        const wchar_t* const asked = m_missing[static_cast<std::size_t>(item)].c_str();
        return vornConfig()->getValue(VornaConfig::SettingsRoot, asked, m_value) == Vorn::eNotFound;
    }
    void write(Position at, int number) override
    {
        VornVariant value;
        value.type = VornVariant::kVarInt32;
        value.data = VornVariant::allocateValue(VornVariant::kVarInt32, 0);
        std::memcpy(static_cast<char*>(value.data) + 4, &number, sizeof number);
        vornConfig()->setValue(VornaConfig::SettingsRoot, nameOf(at), value);
    }
    int countValues(int item) override
    {
        VornaConfig::ValueIterator values;
        vornConfig()->findItem(VornaConfig::SettingsRoot, m_items[static_cast<std::size_t>(item)].c_str(), values);
        return steps(values);
    }
    int countItems() override
    {
        VornaConfig::ItemIterator items;
        vornConfig()->findItem(VornaConfig::SettingsRoot, L"Bench", items);
        return steps(items);
    }
    void removeItem(int item) override
    {
        vornConfig()->removeItem(VornaConfig::SettingsRoot, m_items[static_cast<std::size_t>(item)].c_str());
    }
    void flush() override { g_globalSettings->sync(); }

private:
    [[nodiscard]] const wchar_t* nameOf(Position at) const { return m_names[placeOf(at)].c_str(); }

    std::vector<std::wstring> m_items;
    std::vector<std::wstring> m_names;
    std::vector<std::wstring> m_missing;
    VornVariant m_value;
};

class Direct final : public Side
{
public:
    [[nodiscard]] const char* name() const override { return "QSettings"; }
    void open(int items) override
    {
        m_settings = std::make_unique<QSettings>(QString::fromStdString(stageDir() + "/home/direct.conf"),
                                                 QSettings::NativeFormat);
        for (int i = 0; i <= items; ++i)
            for (int k = 0; k < kValuesPerItem; ++k) {
                m_groups.push_back(QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings/Bench/Item%1").arg(i));
                m_keys.push_back(QStringLiteral("Value%1").arg(k));
            }
    }
    void fill(int item) override
    {
        for (int k = 0; k < kValuesPerItem; ++k)
            write({item, k}, kNumber);
    }
    int read(Position at) override
    {
        m_settings->beginGroup(m_groups[placeOf(at)]);
        const QVariant value = m_settings->value(m_keys[placeOf(at)]);
        m_settings->endGroup();
        return value.toInt();
    }
    bool isMissing(int item) override
    {
        m_settings->beginGroup(m_groups[placeOf({item, 0})]);
        const bool isValid = m_settings->value(QStringLiteral("Nowhere")).isValid();
        m_settings->endGroup();
        return !isValid;
    }
    void write(Position at, int number) override
    {
        m_settings->beginGroup(m_groups[placeOf(at)]);
        m_settings->setValue(m_keys[placeOf(at)], QString::number(number));
        m_settings->endGroup();
    }
    int countValues(int item) override
    {
        m_settings->beginGroup(m_groups[placeOf({item, 0})]);
        const int count = m_settings->childKeys().size();
        m_settings->endGroup();
        return count;
    }
    int countItems() override
    {
        m_settings->beginGroup(QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings/Bench"));
        const int count = m_settings->childGroups().size();
        m_settings->endGroup();
        return count;
    }
    void removeItem(int item) override { m_settings->remove(m_groups[placeOf({item, 0})]); }
    void flush() override { m_settings->sync(); }

private:
    std::unique_ptr<QSettings> m_settings;
    std::vector<QString> m_groups; // one for each value, as ours has names
    std::vector<QString> m_keys;
};

/// With the item's group made ready before.
class KConfigGroups : public Side
{
public:
    [[nodiscard]] const char* name() const override { return "KConfig, ready group"; }
    void open(int items) override
    {
        m_config =
            std::make_unique<KConfig>(QString::fromStdString(stageDir() + "/home/" + file()), KConfig::SimpleConfig);
        for (int i = 0; i <= items; ++i) {
            m_names.push_back(QStringLiteral("Item%1").arg(i));
            m_groups.push_back(made(i));
        }
        for (int k = 0; k < kValuesPerItem; ++k)
            m_keys.push_back(QStringLiteral("Value%1").arg(k));
    }
    void fill(int item) override
    {
        for (int k = 0; k < kValuesPerItem; ++k)
            group(item).writeEntry(key(k), kNumber);
    }
    int read(Position at) override { return group(at.item).readEntry(key(at.value), 0); }
    bool isMissing(int item) override { return group(item).readEntry("Nowhere", -1) == -1; }
    void write(Position at, int number) override { group(at.item).writeEntry(key(at.value), number); }
    int countValues(int item) override { return group(item).keyList().size(); }
    int countItems() override { return top().groupList().size(); }
    void removeItem(int item) override { group(item).deleteGroup(); }
    void flush() override { m_config->sync(); }

protected:
    [[nodiscard]] virtual const char* file() const { return "kconfigrc"; }
    [[nodiscard]] const QString& key(int value) const { return m_keys[static_cast<std::size_t>(value)]; }
    [[nodiscard]] KConfigGroup top()
    {
        return m_config->group("Software")
            .group("HALVIK")
            .group("VORNA")
            .group("2026")
            .group("en-US")
            .group("Settings")
            .group("Bench");
    }
    [[nodiscard]] KConfigGroup made(int item) { return top().group(m_names[static_cast<std::size_t>(item)]); }

private:
    [[nodiscard]] KConfigGroup& group(int item) { return m_groups[static_cast<std::size_t>(item)]; }

    std::unique_ptr<KConfig> m_config;
    std::vector<QString> m_names;
    std::vector<KConfigGroup> m_groups;
    std::vector<QString> m_keys;
};

/// With the group made for each access, as ours makes its path.
class KConfigPaths final : public KConfigGroups
{
public:
    [[nodiscard]] const char* name() const override { return "KConfig, whole path"; }
    int read(Position at) override { return made(at.item).readEntry(key(at.value), 0); }
    bool isMissing(int item) override { return made(item).readEntry("Nowhere", -1) == -1; }
    void write(Position at, int number) override { made(at.item).writeEntry(key(at.value), number); }
    [[nodiscard]] bool isCold() const override { return false; }

protected:
    [[nodiscard]] const char* file() const override { return "kconfigpathrc"; }

private:
    void fill(int item) override
    {
        for (int k = 0; k < kValuesPerItem; ++k)
            made(item).writeEntry(key(k), kNumber);
    }
    int countValues(int item) override { return made(item).keyList().size(); }
    void removeItem(int item) override { made(item).deleteGroup(); }
};

class KeyFile final : public Side
{
public:
    ~KeyFile() override
    {
        if (m_file)
            g_key_file_free(m_file);
    }
    [[nodiscard]] const char* name() const override { return "GKeyFile"; }
    void open(int items) override
    {
        m_file = g_key_file_new();
        m_path = stageDir() + "/home/keyfile.ini";
        g_key_file_load_from_file(m_file, m_path.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
        for (int i = 0; i <= items; ++i)
            m_items.push_back("Software/HALVIK/VORNA/2026/en-US/Settings/Bench/Item" + std::to_string(i));
        for (int k = 0; k < kValuesPerItem; ++k)
            m_keys.push_back("Value" + std::to_string(k));
    }
    void fill(int item) override
    {
        for (int k = 0; k < kValuesPerItem; ++k)
            write({item, k}, kNumber);
    }
    int read(Position at) override { return g_key_file_get_integer(m_file, group(at.item), key(at.value), nullptr); }
    bool isMissing(int item) override
    {
        GError* error = nullptr;
        g_key_file_get_integer(m_file, group(item), "Nowhere", &error);
        const bool isMissing = error != nullptr;
        g_clear_error(&error);
        return isMissing;
    }
    void write(Position at, int number) override
    {
        g_key_file_set_integer(m_file, group(at.item), key(at.value), number);
    }
    int countValues(int item) override
    {
        gsize count = 0;
        g_strfreev(g_key_file_get_keys(m_file, group(item), &count, nullptr));
        return static_cast<int>(count);
    }
    int countItems() override
    {
        gsize count = 0;
        g_strfreev(g_key_file_get_groups(m_file, &count));
        return static_cast<int>(count);
    }
    void removeItem(int item) override { g_key_file_remove_group(m_file, group(item), nullptr); }
    void flush() override { expect(g_key_file_save_to_file(m_file, m_path.c_str(), nullptr), name(), "no file"); }

private:
    [[nodiscard]] const char* group(int item) const { return m_items[static_cast<std::size_t>(item)].c_str(); }
    [[nodiscard]] const char* key(int value) const { return m_keys[static_cast<std::size_t>(value)].c_str(); }

    GKeyFile* m_file = nullptr;
    std::string m_path;
    std::vector<std::string> m_items;
    std::vector<std::string> m_keys;
};

/// One tree for all that stand on dconf, which keeps everything of a user in one file.
constexpr char kDConfTop[] = "/software/halvik/vorna/2026/en-us/settings/bench/";

/// Names of a tree of dconf, which wants them small and plain.
class DConfTree
{
public:
    DConfTree(const char* top, int items) : m_top(top)
    {
        for (int i = 0; i <= items; ++i)
            m_items.push_back(m_top + "item" + std::to_string(i) + "/");
        for (int k = 0; k < kValuesPerItem; ++k)
            m_keys.push_back("value" + std::to_string(k));
    }
    [[nodiscard]] const std::string& top() const { return m_top; }
    [[nodiscard]] const std::string& item(int item) const { return m_items[static_cast<std::size_t>(item)]; }
    [[nodiscard]] const std::string& key(int value) const { return m_keys[static_cast<std::size_t>(value)]; }
    [[nodiscard]] std::string path(Position at) const { return item(at.item) + key(at.value); }

private:
    std::string m_top;
    std::vector<std::string> m_items;
    std::vector<std::string> m_keys;
};

class DConf final : public Side
{
public:
    ~DConf() override
    {
        if (m_client)
            g_object_unref(m_client);
    }
    [[nodiscard]] const char* name() const override { return "dconf client"; }
    void open(int items) override
    {
        m_client = dconf_client_new();
        m_tree = std::make_unique<DConfTree>(kDConfTop, items);
        for (int i = 0; i <= items; ++i) {
            m_missing.push_back(m_tree->item(i) + "nowhere");
            for (int k = 0; k < kValuesPerItem; ++k)
                m_paths.push_back(m_tree->path({i, k}));
        }
    }
    void fill(int item) override
    {
        if (!m_changes)
            m_changes = dconf_changeset_new();
        for (int k = 0; k < kValuesPerItem; ++k)
            dconf_changeset_set(m_changes, path({item, k}), g_variant_new_int32(kNumber));
    }
    void filled() override
    {
        if (m_changes) {
            expect(dconf_client_change_sync(m_client, m_changes, nullptr, nullptr, nullptr), name(), "no writing");
            dconf_changeset_unref(m_changes);
            m_changes = nullptr;
        }
        flush();
    }
    int read(Position at) override
    {
        GVariant* const value = dconf_client_read(m_client, path(at));
        const int number = value ? g_variant_get_int32(value) : 0;
        if (value)
            g_variant_unref(value);
        return number;
    }
    bool isMissing(int item) override
    {
        return dconf_client_read(m_client, m_missing[static_cast<std::size_t>(item)].c_str()) == nullptr;
    }
    void write(Position at, int number) override
    {
        dconf_client_write_fast(m_client, path(at), g_variant_new_int32(number), nullptr);
    }
    int countValues(int item) override { return countBelow(m_tree->item(item)); }
    int countItems() override { return countBelow(m_tree->top()); }
    void removeItem(int item) override
    {
        dconf_client_write_fast(m_client, m_tree->item(item).c_str(), nullptr, nullptr);
    }
    void flush() override { dconf_client_sync(m_client); }
    void settle() override { flush(); }
    [[nodiscard]] int mostWrites() const override { return 20; }

private:
    [[nodiscard]] const char* path(Position at) const { return m_paths[placeOf(at)].c_str(); }
    int countBelow(const std::string& directory)
    {
        gint count = 0;
        g_strfreev(dconf_client_list(m_client, directory.c_str(), &count));
        return count;
    }

    DConfClient* m_client = nullptr;
    DConfChangeset* m_changes = nullptr;
    std::unique_ptr<DConfTree> m_tree;
    std::vector<std::string> m_paths;
    std::vector<std::string> m_missing;
};

/// Keys are what a schema says, so that there is nothing to list.
class Schema : public Side
{
public:
    ~Schema() override
    {
        for (GSettings* const item : m_items)
            g_object_unref(item);
    }
    [[nodiscard]] const char* name() const override { return "GSettings, ready object"; }
    void open(int items) override
    {
        m_tree = std::make_unique<DConfTree>(kDConfTop, items);
        for (int i = 0; i <= items; ++i)
            m_items.push_back(g_settings_new_with_path("vr.bench", m_tree->item(i).c_str()));
    }
    void fill(int item) override
    {
        if (!m_client)
            m_client = dconf_client_new();
        if (!m_changes)
            m_changes = dconf_changeset_new();
        for (int k = 0; k < kValuesPerItem; ++k)
            dconf_changeset_set(m_changes, m_tree->path({item, k}).c_str(), g_variant_new_int32(kNumber));
    }
    void filled() override
    {
        expect(dconf_client_change_sync(m_client, m_changes, nullptr, nullptr, nullptr), name(), "no writing");
        dconf_changeset_unref(m_changes);
        m_changes = nullptr;
    }
    int read(Position at) override { return g_settings_get_int(settings(at.item), key(at.value)); }
    bool isMissing(int item) override { return g_settings_get_int(settings(item), "nowhere") == -1; }
    void write(Position at, int number) override { g_settings_set_int(settings(at.item), key(at.value), number); }
    int countValues(int) override { return 0; }
    int countItems() override { return 0; }
    void removeItem(int item) override
    {
        for (int k = 0; k < kValuesPerItem; ++k)
            g_settings_reset(settings(item), key(k));
    }
    void flush() override { g_settings_sync(); }
    void settle() override { flush(); }
    [[nodiscard]] int mostWrites() const override { return 20; }
    [[nodiscard]] bool canList() const override { return false; }

protected:
    [[nodiscard]] const char* key(int value) const { return m_tree->key(value).c_str(); }
    [[nodiscard]] const DConfTree& tree() const { return *m_tree; }

private:
    [[nodiscard]] GSettings* settings(int item) const { return m_items[static_cast<std::size_t>(item)]; }

    std::unique_ptr<DConfTree> m_tree;
    std::vector<GSettings*> m_items;
    DConfClient* m_client = nullptr;
    DConfChangeset* m_changes = nullptr;
};

/// With the object made for each access.
class SchemaPaths final : public Schema
{
public:
    [[nodiscard]] const char* name() const override { return "GSettings, whole path"; }
    int read(Position at) override { return g_settings_get_int(made(at.item).get(), key(at.value)); }
    bool isMissing(int item) override { return g_settings_get_int(made(item).get(), "nowhere") == -1; }
    void write(Position at, int number) override { g_settings_set_int(made(at.item).get(), key(at.value), number); }
    [[nodiscard]] bool isCold() const override { return false; }

private:
    using Made = std::unique_ptr<GSettings, decltype(&g_object_unref)>;

    [[nodiscard]] Made made(int item) const
    {
        return {g_settings_new_with_path("vr.bench", tree().item(item).c_str()), g_object_unref};
    }
};

std::vector<std::unique_ptr<Side>> allSides()
{
    std::vector<std::unique_ptr<Side>> sides;
    sides.push_back(std::make_unique<Ours>());
    sides.push_back(std::make_unique<Direct>());
    sides.push_back(std::make_unique<KConfigGroups>());
    sides.push_back(std::make_unique<KConfigPaths>());
    sides.push_back(std::make_unique<KeyFile>());
    sides.push_back(std::make_unique<Schema>());
    sides.push_back(std::make_unique<SchemaPaths>());
    sides.push_back(std::make_unique<DConf>());
    return sides;
}

/// Positions that jump through the whole tree, the same ones for every side.
class Walk
{
public:
    explicit Walk(int items) : m_items(static_cast<unsigned int>(items)) {}
    Position next()
    {
        m_state = m_state * 1664525U + 1013904223U;
        const unsigned int place = (m_state >> 8U) % (m_items * kValuesPerItem);
        return {static_cast<int>(place / kValuesPerItem), static_cast<int>(place % kValuesPerItem)};
    }

private:
    unsigned int m_items;
    unsigned int m_state = 12345;
};

double nanosecondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
}

/// Says when there were rounds enough: as many as are asked for, or fewer where they take long.
class Rounds
{
public:
    explicit Rounds(int most) : m_most(most) {}
    [[nodiscard]] bool next()
    {
        constexpr int kLeast = 5;
        constexpr double kLong = 4e9;
        const bool isLong = m_done >= kLeast && nanosecondsSince(m_begin) > kLong;
        return m_done++ < m_most && !isLong;
    }

private:
    int m_most;
    int m_done = 0;
    Clock::time_point m_begin = Clock::now();
};

/// One operation of all sides.
struct Operation {
    const char* name;
    std::function<void(Side&, Walk&)> once;
    std::function<void(Side&)> before; ///< Before each batch, not timed.
    int most;                          ///< Most that a batch does of it.
    bool isWrite = false;
};

class Results
{
public:
    explicit Results(const char* path) : m_file(path) {}
    void add(const std::string& operation, int values, const char* side, std::vector<double> times)
    {
        std::sort(times.begin(), times.end());
        const std::size_t count = times.size();
        m_file << operation << '\t' << values << '\t' << side << '\t' << times[count / 2] << '\t' << times[count / 4]
               << '\t' << times[count * 3 / 4] << std::endl;
    }

private:
    std::ofstream m_file;
};

/// How many a batch does, so that it takes about kBatch.
int batchSize(Side& side, const Operation& operation, Walk walk)
{
    if (operation.before)
        operation.before(side);
    operation.once(side, walk);
    if (operation.before)
        operation.before(side);
    const auto begin = Clock::now();
    operation.once(side, walk);
    const double taken = std::max(nanosecondsSince(begin), 50.0);
    const double fitting = std::chrono::duration<double, std::nano>(kBatch).count() / taken;
    const int most = operation.isWrite ? side.mostWrites() : operation.most;
    return std::clamp(static_cast<int>(fitting), 1, most);
}

double timeOf(Side& side, const Operation& operation, int size, Walk& walk)
{
    if (operation.before)
        operation.before(side);
    const auto begin = Clock::now();
    for (int i = 0; i < size; ++i)
        operation.once(side, walk);
    return nanosecondsSince(begin) / size;
}

bool takesPart(const Side& side, const std::string& operation)
{
    return side.canList() || (operation != "values" && operation != "items");
}

void compare(const Operation& operation, std::vector<std::unique_ptr<Side>>& sides, int values, int rounds,
             Results& out)
{
    std::vector<std::vector<double>> times(sides.size());
    std::vector<Walk> walks(sides.size(), Walk(values / kValuesPerItem));
    std::vector<int> sizes;
    for (auto& side : sides)
        sizes.push_back(takesPart(*side, operation.name) ? batchSize(*side, operation, Walk(values / kValuesPerItem))
                                                         : 0);
    for (Rounds round(rounds); round.next();) {
        for (std::size_t i = 0; i < sides.size(); ++i) {
            if (sizes[i] > 0)
                times[i].push_back(timeOf(*sides[i], operation, sizes[i], walks[i]));
        }
    }
    for (std::size_t i = 0; i < sides.size(); ++i) {
        if (sizes[i] > 0)
            out.add(operation.name, values, sides[i]->name(), times[i]);
    }
    std::fprintf(stderr, "%s of %d values\n", operation.name, values);
}

/// Never the same, since some libraries pass over a value that is there already.
int newNumber()
{
    static int number = kNumber;
    return ++number;
}

void settle(Side& side)
{
    side.settle();
}

std::vector<Operation> operations(int values)
{
    const int items = values / kValuesPerItem;
    return {
        {"read",
         [](Side& s, Walk& w) { expect(s.read(w.next()) >= kNumber, s.name(), "a value is wrong"); },
         {},
         100000},
        {"miss",
         [](Side& s, Walk& w) { expect(s.isMissing(w.next().item), s.name(), "a value is there"); },
         {},
         100000},
        {"values",
         [](Side& s, Walk& w) { expect(s.countValues(w.next().item) == kValuesPerItem, s.name(), "values"); },
         {},
         10000},
        {"items", [items](Side& s, Walk&) { expect(s.countItems() == items, s.name(), "items"); }, {}, 10000},
        {"write", [](Side& s, Walk& w) { s.write(w.next(), newNumber()); }, settle, 0, true},
        {"delete", [items](Side& s, Walk&) { s.removeItem(items); },
         [items](Side& s) {
             s.settle();
             s.fill(items);
             s.filled();
             expect(s.read({items, 7}) == kNumber, s.name(), "nothing to delete");
         },
         1},
        {"flush", [](Side& s, Walk&) { s.flush(); },
         [](Side& s) {
             s.write({0, 0}, newNumber());
         },
         1},
    };
}

/// In a fresh process: what it takes to open, and to read one value; and what is on the heap when all values were read.
[[noreturn]] void answerCold(const std::string& name, int values)
{
    for (auto& side : allSides()) {
        if (side->name() != name)
            continue;
        const auto begin = Clock::now();
        side->open(0);
        const int number = side->read({0, 7});
        const double taken = nanosecondsSince(begin);
        expect(number >= kNumber, side->name(), "the first value is wrong");
        const struct mallinfo2 info = mallinfo2();
        std::printf("%.0f %.1f\n", taken, static_cast<double>(info.uordblks + info.hblkhd) / values);
        std::fflush(stdout);
        std::_Exit(0);
    }
    std::_Exit(1);
}

struct Cold {
    double nanoseconds;
    double bytesPerValue;
};

Cold askCold(const Side& side, int values)
{
    setenv(kColdVariable, (std::string(side.name()) + ":" + std::to_string(values)).c_str(), 1);
    FILE* const child = popen(("'" + stageDir() + "/program/bench'").c_str(), "r");
    Cold cold{};
    if (!child || std::fscanf(child, "%lf %lf", &cold.nanoseconds, &cold.bytesPerValue) != 2)
        fail(std::string(side.name()) + ": no cold start");
    pclose(child);
    return cold;
}

void compareCold(int values, int rounds, Results& out)
{
    auto sides = allSides();
    std::vector<std::vector<double>> times(sides.size());
    std::vector<std::vector<double>> bytes(sides.size());
    for (Rounds round(rounds); round.next();) {
        for (std::size_t i = 0; i < sides.size(); ++i) {
            if (!sides[i]->isCold())
                continue;
            const Cold cold = askCold(*sides[i], values);
            times[i].push_back(cold.nanoseconds);
            bytes[i].push_back(cold.bytesPerValue);
        }
    }
    for (std::size_t i = 0; i < sides.size(); ++i) {
        if (times[i].empty())
            continue;
        out.add("cold", values, sides[i]->name(), times[i]);
        out.add("memory", values, sides[i]->name(), bytes[i]);
    }
    std::fprintf(stderr, "cold starts with %d values\n", values);
}

void writeSchema(const std::string& directory)
{
    std::ofstream file(directory + "/vr.bench.gschema.xml");
    file << "<schemalist><schema id='vr.bench'>\n<key name='nowhere' type='i'><default>-1</default></key>\n";
    for (int k = 0; k < kValuesPerItem; ++k)
        file << "<key name='value" << k << "' type='i'><default>0</default></key>\n";
    file << "</schema></schemalist>\n";
    file.close();
    if (std::system(("glib-compile-schemas --strict '" + directory + "'").c_str()) != 0)
        fail("the schema cannot be compiled");
    setenv("GSETTINGS_SCHEMA_DIR", directory.c_str(), 1);
    setenv("GSETTINGS_BACKEND", "dconf", 1);
}

/// The same again in a session bus that was started in this home, as dconf's writing process is.
[[noreturn]] void startInBus(int argc, char** argv)
{
    const std::string runtime = stageDir() + "/home/run";
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms(0700));
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    setenv(kBusVariable, "1", 1);
    std::vector<char*> words = {const_cast<char*>("dbus-run-session"), const_cast<char*>("--")};
    words.insert(words.end(), argv, argv + argc);
    words.push_back(nullptr);
    execvp(words[0], words.data());
    fail("dbus-run-session cannot be started");
}

/// All sizes in one tree that grows: a smaller one is the beginning of a bigger one.
void run(const std::vector<int>& sizes, int rounds, Results& out)
{
    auto sides = allSides();
    int filled = 0;
    for (auto& side : sides)
        side->open(*std::max_element(sizes.begin(), sizes.end()) / kValuesPerItem);
    for (const int values : sizes) {
        for (auto& side : sides) {
            for (int item = filled; item < values / kValuesPerItem; ++item)
                side->fill(item);
            side->filled();
        }
        filled = values / kValuesPerItem;
        for (const Operation& operation : operations(values))
            compare(operation, sides, values, rounds, out);
        for (auto& side : sides)
            side->flush();
        compareCold(values, rounds, out);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const int code = runStaged(argc, argv);
    if (code >= 0)
        return code;
    if (const char* const cold = std::getenv(kColdVariable)) {
        const std::string text = cold;
        const std::size_t colon = text.rfind(':');
        answerCold(text.substr(0, colon), std::atoi(text.c_str() + colon + 1));
    }
    if (argc < 2)
        fail("usage: rivals_bench RESULTS [rounds] [values...]");
    if (!std::getenv(kBusVariable))
        startInBus(argc, argv);
    writeSchema(stageDir() + "/program");
    std::vector<int> sizes;
    for (int i = 3; i < argc; ++i)
        sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty())
        sizes = {100, 10000, 100000};
    Results results(argv[1]);
    run(sizes, argc > 2 ? std::atoi(argv[2]) : 15, results);
    std::fflush(nullptr);
    std::_Exit(0);
}
