#include "osbase_support.h"

#include <gtest/gtest.h>

#include <thread>

// The main program has a table, too.
extern "C" {
extern __attribute__((visibility("default"))) const VrResourceString VrResourceStrings[];
extern __attribute__((visibility("default"))) const std::uint32_t VrResourceStringCount;
const VrResourceString VrResourceStrings[] = {{7, L"main program"}};
const std::uint32_t VrResourceStringCount = 1;
}

namespace
{

using vrosbase::testing::GuardedBuffer;

class LoadedLibrary final
{
public:
    explicit LoadedLibrary(LPCWSTR path) : m_module(LoadLibraryW(path)) {}
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    LoadedLibrary(LoadedLibrary&&) = delete;
    LoadedLibrary& operator=(LoadedLibrary&&) = delete;
    ~LoadedLibrary() { FreeLibrary(m_module); }

    [[nodiscard]] HMODULE handle() const { return m_module; }

private:
    HMODULE m_module;
};

class StringTableTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_NE(m_library.handle(), nullptr); }

    std::wstring load(UINT id)
    {
        GuardedBuffer buffer(64);
        const int length = LoadStringW(m_library.handle(), id, buffer.data(), 64);
        return buffer.isUntouched() ? L"untouched" : buffer.first(static_cast<std::size_t>(length));
    }

    LoadedLibrary m_library{L"" VR_TEST_LIBRARIES "/VrOsBaseStrings.dll"};
};

TEST_F(StringTableTest, TextIsReadById)
{
    EXPECT_EQ(load(1), L"first");
    EXPECT_EQ(load(1001), L"Deutsch");
    EXPECT_EQ(load(1004), L"\x1F600!");
    EXPECT_EQ(load(65535), L"last");
}

TEST_F(StringTableTest, EmptyTextIsATextOfNoLength)
{
    EXPECT_EQ(load(1002), L"");
}

TEST_F(StringTableTest, MissingIdIsError1814AndLeavesTheBuffer)
{
    for (const UINT id : {0U, 2U, 1000U, 1003U, 1005U, 65534U, 65536U, 0xFFFFFFFFU}) {
        SetLastError(0);
        EXPECT_EQ(load(id), L"untouched") << id;
        EXPECT_EQ(GetLastError(), 1814U) << id;
    }
}

TEST_F(StringTableTest, TextIsCutToTheCapacity)
{
    for (const int capacity : {1, 2, 7, 8, 9}) {
        GuardedBuffer buffer(static_cast<std::size_t>(capacity));
        EXPECT_EQ(LoadStringW(m_library.handle(), 1001, buffer.data(), capacity), std::min(capacity - 1, 7));
        EXPECT_EQ(buffer.text(), std::wstring(L"Deutsch").substr(0, static_cast<std::size_t>(capacity - 1)));
        EXPECT_TRUE(buffer.guardsHold());
    }
}

TEST_F(StringTableTest, CapacityZeroGivesTheTextItself)
{
    LPCWSTR text = nullptr;
    EXPECT_EQ(LoadStringW(m_library.handle(), 1001, reinterpret_cast<LPWSTR>(&text), 0), 7);
    EXPECT_STREQ(text, L"Deutsch");
    LPCWSTR kept = text;
    EXPECT_EQ(LoadStringW(m_library.handle(), 1003, reinterpret_cast<LPWSTR>(&kept), 0), 0);
    EXPECT_EQ(kept, text);
}

TEST_F(StringTableTest, NullBufferAndNegativeCapacityAreError87)
{
    GuardedBuffer buffer(8);
    for (const int capacity : {0, 8}) {
        SetLastError(0);
        EXPECT_EQ(LoadStringW(m_library.handle(), 1, nullptr, capacity), 0);
        EXPECT_EQ(GetLastError(), 87U);
    }
    SetLastError(0);
    EXPECT_EQ(LoadStringW(m_library.handle(), 1, buffer.data(), -1), 0);
    EXPECT_EQ(GetLastError(), 87U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(StringTableTest, GarbageHandleIsError6)
{
    GuardedBuffer buffer(8);
    int memory = 0;
    for (HMODULE handle : {INVALID_HANDLE_VALUE, static_cast<HMODULE>(&memory)}) {
        SetLastError(0);
        EXPECT_EQ(LoadStringW(handle, 1, buffer.data(), 8), 0);
        EXPECT_EQ(GetLastError(), 6U);
    }
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(StringTableTest, ModuleWithoutATableHasNoTexts)
{
    const LoadedLibrary sample(L"" VR_TEST_LIBRARIES "/VrOsBaseSample.dll");
    ASSERT_NE(sample.handle(), nullptr);
    GuardedBuffer buffer(16);
    EXPECT_EQ(LoadStringW(sample.handle(), 1, buffer.data(), 16), 0);
    EXPECT_EQ(GetLastError(), 1814U);
}

TEST_F(StringTableTest, TableOfAnotherModuleIsNotTaken)
{
    const LoadedLibrary dependent(L"" VR_TEST_LIBRARIES "/VrOsBaseDependent.dll");
    ASSERT_NE(dependent.handle(), nullptr);
    GuardedBuffer buffer(16);
    EXPECT_EQ(LoadStringW(dependent.handle(), 1, buffer.data(), 16), 0);
    EXPECT_EQ(GetLastError(), 1814U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(StringTableTest, NullIsTheMainProgram)
{
    GuardedBuffer buffer(32);
    EXPECT_EQ(LoadStringW(nullptr, 7, buffer.data(), 32), 12);
    EXPECT_EQ(buffer.text(), L"main program");
    EXPECT_EQ(LoadStringW(GetModuleHandleW(nullptr), 7, buffer.data(), 32), 12);
    EXPECT_EQ(LoadStringW(nullptr, 1001, buffer.data(), 32), 0);
}

TEST_F(StringTableTest, FreedLibraryHasNoTexts)
{
    HMODULE handle = nullptr;
    {
        const LoadedLibrary sample(L"" VR_TEST_LIBRARIES "/VrOsBaseSample.dll");
        handle = sample.handle();
    }
    GuardedBuffer buffer(16);
    EXPECT_EQ(LoadStringW(handle, 1, buffer.data(), 16), 0);
    EXPECT_EQ(GetLastError(), 6U);
}

TEST_F(StringTableTest, ResourceHandleIsTheMainProgramUntilOneIsSet)
{
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleW(nullptr));
    AfxSetResourceHandle(m_library.handle());
    EXPECT_EQ(AfxGetResourceHandle(), m_library.handle());
    std::thread([this] { EXPECT_EQ(AfxGetResourceHandle(), m_library.handle()); }).join();
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleW(nullptr));
}

TEST_F(StringTableTest, ManyThreadsMayRead)
{
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    threads.reserve(wrong.size());
    for (int& count : wrong) {
        threads.emplace_back([&count, this] {
            for (int i = 0; i < 200; ++i) {
                wchar_t buffer[16] = {};
                count += LoadStringW(m_library.handle(), 1001, buffer, 16) == 7 ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

} // namespace
