// A million operations on the settings tree: the process does not grow.
#include <array>
#include <cstddef>

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <malloc.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>

#include "VrUInfo/RootKeys.h"
#include "VrUInfo/VornaConfig.h"
#include "scarce_memory.h"
#include "started_store.h"
#include "store_values.h"

using namespace vrtest;

namespace
{

constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
constexpr int kOperations = kHasSanitizerAllocator ? 50000 : 1000000;
constexpr int kWarmUp = kOperations / 10;
// Bytes in use. What the allocator keeps at hand for each size counts as used, and settles after some hundred thousand
// operations at up to 30 KB; one forgotten string in a hundred operations would be more than 300 KB.
constexpr std::ptrdiff_t kTolerance = 64 << 10;
constexpr std::ptrdiff_t kResidentTolerance = 2 << 20;

/// Bytes that the process has allocated and not freed.
std::ptrdiff_t bytesInUse()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return static_cast<std::ptrdiff_t>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    return static_cast<std::ptrdiff_t>(info.uordblks + info.hblkhd);
#endif
}

/// Bytes of the process that are in memory.
std::ptrdiff_t residentBytes()
{
    std::ptrdiff_t pages = 0;
    std::ifstream statm("/proc/self/statm");
    statm >> pages >> pages;
    return pages * sysconf(_SC_PAGESIZE);
}

std::wstring nameOf(int i)
{
    return L"Item" + std::to_wstring(i % 7) + L"/Name" + std::to_wstring(i % 13);
}

} // namespace

class StoreMemory : public StartedStore
{
protected:
    /// Repeats an action and expects the process no larger than after the warm-up.
    template <typename Action>
    static void expectNoGrowth(const Action& action, int perAction = 1)
    {
        for (int i = 0; i < kWarmUp / perAction; ++i)
            action(i);
        const std::ptrdiff_t usedBefore = bytesInUse();
        const std::ptrdiff_t residentBefore = residentBytes();
        for (int i = 0; i < kOperations / perAction; ++i)
            action(i);
        EXPECT_LT(bytesInUse() - usedBefore, kTolerance);
        // The allocators of sanitizers keep what is freed, to watch it.
        EXPECT_TRUE(kHasSanitizerAllocator || residentBytes() - residentBefore < kResidentTolerance)
            << residentBytes() - residentBefore;
    }
};

TEST_F(StoreMemory, DoesNotGrowWithAMillionMixedOperations)
{
    expectNoGrowth(
        [](int i) {
            const std::wstring name = nameOf(i);
            VornVariant value = textValue(name);
            config().setValue(kRoot, name.c_str(), value);
            config().getValue(kRoot, name.c_str(), value);
            config().getValue(kRoot, L"Missing", value);
            config().isItemExist(kRoot, L"Item1");
            VornaConfig::ValueIterator values;
            if (config().findItem(kRoot, L"Item1", values) == 0)
                values.value(value);
            VornaConfig::ItemIterator items;
            if (config().findItem(kRoot, nullptr, items) == 0)
                config().getValue(items, L"Name1", value);
            config().removeValue(kRoot, L"Item2", L"Name1");
            if (i % 10 == 0)
                config().removeItem(kRoot, L"Item3");
        },
        10);
}

TEST_F(StoreMemory, DoesNotGrowWithAMillionReads)
{
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(config().setValue(kRoot, nameOf(i).c_str(), textValue(L"text " + std::to_wstring(i))), 0U);
    VornVariant value;
    expectNoGrowth([&value](int i) { config().getValue(kRoot, nameOf(i).c_str(), value); });
}

TEST_F(StoreMemory, DoesNotGrowWithAMillionWrites)
{
    expectNoGrowth([](int i) { config().setValue(kRoot, nameOf(i).c_str(), int32Value(i)); });
}

TEST_F(StoreMemory, DoesNotGrowWithAMillionConversions)
{
    const std::array<QString, 6> texts = {QStringLiteral("1$5"),      QStringLiteral("2$-5"),
                                          QStringLiteral("4$010203"), QStringLiteral("5$text"),
                                          QStringLiteral("4$"),       QStringLiteral("6$nothing")};
    VornVariant value;
    expectNoGrowth([&texts, &value](int i) {
        QVariant stored(texts[static_cast<std::size_t>(i) % texts.size()]);
        QVarToVVar(stored, value);
        if (i % 3 == 0)
            value.setString(L"text", i % 2 == 0 ? VornVariant::kVarString : VornVariant::kVarText6);
        const VornVariant copy(value);
        value = copy;
    });
}

TEST_F(StoreMemory, DoesNotGrowWithAMillionErrors)
{
    expectNoGrowth([](int) {
        try {
            VornVariant::allocateValue(VornVariant::kVarBinary, 0);
        } catch (VrErrorStatus* error) { // NOLINT(misc-throw-by-value-catch-by-reference) it is thrown so
            delete error;
        }
    });
}

TEST_F(StoreMemory, DoesNotGrowWithAMillionRoots)
{
    GuardedBuffer buffer(kCapacity);
    expectNoGrowth([&buffer](int i) {
        config().getRegRootPath(static_cast<VornaConfig::Path>(i % 9), buffer.data());
        unsigned int length = kCapacity;
        GetCurrentProfileName(buffer.data(), length);
    });
}

TEST_F(StoreMemory, DoesNotGrowWithADeletedTreeMadeAgainAndAgain)
{
    expectNoGrowth(
        [](int) {
            for (const wchar_t* const name : {L"Tree/1", L"Tree/Sub/2", L"Tree/Sub/Sub/3"})
                config().setValue(kRoot, name, int32Value(1));
            RegDeleteKeyAndAllSubkeys(QStringLiteral("Software/HALVIK/VORNA/2026/en-US/Settings/Tree"));
        },
        10);
}

TEST_F(StoreMemory, DoesNotGrowWhenTheEventLoopWritesBack)
{
    int argumentCount = 1;
    std::array<char, 5> name = {'h', 'o', 's', 't', '\0'};
    std::array<char*, 2> arguments = {name.data(), nullptr};
    const QCoreApplication application(argumentCount, arguments.data());
    int writtenBack = 0;
    expectNoGrowth(
        [&writtenBack](int i) {
            config().setValue(kRoot, i % 2 == 0 ? L"Even" : L"Odd", int32Value(i));
            config().removeValue(kRoot, nullptr, L"Removed");
            config().setValue(kRoot, L"Removed", int32Value(i));
            QCoreApplication::processEvents();
            const std::string file = readFile(Installation::here().settingsFile());
            writtenBack += file.find("=1$" + std::to_string(i) + "\n") != std::string::npos ? 1 : 0;
        },
        kOperations / 200);
    EXPECT_EQ(writtenBack, 200 + 20);
}
