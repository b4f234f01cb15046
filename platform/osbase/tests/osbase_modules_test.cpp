#include "osbase_support.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <thread>

namespace
{

using vrosbase::testing::DirectoryGuard;
using vrosbase::testing::GuardedBuffer;
using vrosbase::testing::run;
using vrosbase::testing::TempDir;
using vrosbase::testing::wide;

const std::string kSample = VR_TEST_LIBRARIES "/libVrOsBaseSample.so";
const std::string kUnresolved = VR_TEST_LIBRARIES "/libVrOsBaseUnresolved.so";

bool isLoaded(const std::string& path)
{
    void* const module = ::dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (module != nullptr) {
        ::dlclose(module);
    }
    return module != nullptr;
}

std::wstring fileNameOf(HMODULE module)
{
    GuardedBuffer buffer(4096);
    const DWORD length = GetModuleFileNameW(module, buffer.data(), buffer.capacity());
    return buffer.first(length);
}

/// Values that look like handles: small numbers, our own memory, the reserved ones.
std::vector<HMODULE> garbageHandles()
{
    static std::array<std::byte, 2048> memory{};
    return {nullptr, INVALID_HANDLE_VALUE, HKEY_CURRENT_USER, reinterpret_cast<HMODULE>(std::uintptr_t{4}),
            memory.data()};
}

/// Loads, asks and frees again and again. Gives the number of steps that went wrong.
int useRepeatedly(const std::wstring& path)
{
    int wrong = 0;
    for (int i = 0; i < 200; ++i) {
        HMODULE module = LoadLibraryW(path.c_str());
        wrong += module != nullptr && GetModuleHandleW(path.c_str()) == module ? 0 : 1;
        wrong += fileNameOf(module) == path ? 0 : 1;
        wrong += FreeLibrary(module) == TRUE ? 0 : 1;
    }
    return wrong;
}

class ModulesTest : public ::testing::Test
{
protected:
    /// A copy of the sample library of the test's own.
    std::string copySample(const std::string& name = "libVrOsBaseSample.so")
    {
        std::filesystem::copy_file(kSample, m_dir.at(name));
        return m_dir.at(name);
    }

    TempDir m_dir;
};

TEST_F(ModulesTest, LibraryIsLoadedByPathAndGoesWithItsLastReference)
{
    const std::string path = copySample();
    HMODULE module = LoadLibraryW(wide(path).c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(LoadLibraryW(wide(path).c_str()), module);
    EXPECT_TRUE(isLoaded(path));
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_TRUE(isLoaded(path));
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_FALSE(isLoaded(path));
}

TEST_F(ModulesTest, HandleIsUnknownBehindItsLastReference)
{
    HMODULE module = LoadLibraryW(wide(copySample()).c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(DisableThreadLibraryCalls(module), TRUE);
    EXPECT_EQ(FreeLibrary(module), TRUE);
    SetLastError(0);
    EXPECT_EQ(FreeLibrary(module), FALSE);
    EXPECT_EQ(GetLastError(), 6U);
    EXPECT_EQ(DisableThreadLibraryCalls(module), FALSE);
    EXPECT_EQ(fileNameOf(module), L"");
}

TEST_F(ModulesTest, HandleThatWasOnlyFoundIsUnknownWhenTheModuleIsGone)
{
    const std::wstring path = wide(copySample());
    HMODULE module = LoadLibraryW(path.c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetModuleHandleW(path.c_str()), module);
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_EQ(DisableThreadLibraryCalls(module), FALSE);
    EXPECT_EQ(GetModuleHandleW(path.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), 126U);
}

TEST_F(ModulesTest, WindowsNameIsFoundInTheSamePlace)
{
    copySample();
    for (const char* name : {"VrOsBaseSample.dll", "VrOsBaseSample.DLL", "VrOsBaseSample.dLl"}) {
        HMODULE module = LoadLibraryW(m_dir.wideAt(name).c_str());
        ASSERT_NE(module, nullptr) << name;
        EXPECT_EQ(GetModuleHandleW(m_dir.wideAt(name).c_str()), module);
        EXPECT_EQ(fileNameOf(module), m_dir.wideAt("libVrOsBaseSample.so"));
        EXPECT_EQ(FreeLibrary(module), TRUE);
    }
}

TEST_F(ModulesTest, OnlyAWindowsNameIsMapped)
{
    copySample("libX.dll.so");
    copySample(".dll");
    HMODULE first = LoadLibraryW(m_dir.wideAt("libX.dll.so").c_str());
    HMODULE second = LoadLibraryW(m_dir.wideAt(".dll").c_str());
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(FreeLibrary(first), TRUE);
    EXPECT_EQ(FreeLibrary(second), TRUE);
}

TEST_F(ModulesTest, BareNameIsSearchedByTheSystem)
{
    HMODULE module = LoadLibraryW(L"libc.so.6");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_EQ(LoadLibraryW(L"NoSuchLibrary.dll"), nullptr);
    EXPECT_NE(std::wstring(VrGetLoaderMessage()).find(L"libNoSuchLibrary.so"), std::wstring::npos);
}

TEST_F(ModulesTest, BackslashesOfTheNameAreSeparators)
{
    std::wstring path = wide(copySample());
    std::replace(path.begin(), path.end(), L'/', L'\\');
    HMODULE module = LoadLibraryW(path.c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, RelativePathBeginsInTheCurrentDirectory)
{
    copySample();
    const DirectoryGuard back;
    std::filesystem::current_path(m_dir.path());
    HMODULE module = LoadLibraryW(L".\\.\\/VrOsBaseSample.dll");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(fileNameOf(module), m_dir.wideAt("libVrOsBaseSample.so"));
    std::filesystem::current_path("/");
    EXPECT_EQ(fileNameOf(module), m_dir.wideAt("libVrOsBaseSample.so"));
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, EqualFileNamesInTwoPlacesAreTwoModules)
{
    copySample();
    m_dir.addDirectory("other");
    copySample("other/libVrOsBaseSample.so");
    HMODULE one = LoadLibraryW(m_dir.wideAt("libVrOsBaseSample.so").c_str());
    HMODULE other = LoadLibraryW(m_dir.wideAt("other/libVrOsBaseSample.so").c_str());
    EXPECT_NE(one, other);
    EXPECT_EQ(fileNameOf(other), m_dir.wideAt("other/libVrOsBaseSample.so"));
    EXPECT_EQ(FreeLibrary(one), TRUE);
    EXPECT_EQ(FreeLibrary(other), TRUE);
}

TEST_F(ModulesTest, LibraryOfAnyNameIsLoaded)
{
    copySample("lib\xC3\xA4\xFF.so");
    const std::wstring path = m_dir.wideAt("lib") + L'\xE4' + wchar_t{0xDCFF} + L".so";
    HMODULE module = LoadLibraryW(path.c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(fileNameOf(module), path);
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, NullAndEmptyNamesAreError87)
{
    for (LPCWSTR name : {static_cast<LPCWSTR>(nullptr), L""}) {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryW(name), nullptr);
        EXPECT_EQ(GetLastError(), 87U);
        SetLastError(0);
        EXPECT_EQ(LoadLibraryExW(name, nullptr, 0), nullptr);
        EXPECT_EQ(GetLastError(), 87U);
        EXPECT_STREQ(VrGetLoaderMessage(), L"");
    }
}

TEST_F(ModulesTest, WhatIsNoLibraryIsError126WithAMessage)
{
    m_dir.addFile("text.so", "no library");
    for (const char* name : {"text.so", "none.so", "."}) {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryW(m_dir.wideAt(name).c_str()), nullptr);
        EXPECT_EQ(GetLastError(), 126U);
        EXPECT_NE(std::wstring(VrGetLoaderMessage()).find(m_dir.wideAt(name)), std::wstring::npos);
    }
}

TEST_F(ModulesTest, LoaderMessageIsEmptyBehindASuccessAndInOtherThreads)
{
    EXPECT_STREQ(VrGetLoaderMessage(), L"");
    EXPECT_EQ(LoadLibraryW(L"/none.so"), nullptr);
    EXPECT_STRNE(VrGetLoaderMessage(), L"");
    std::thread([] { EXPECT_STREQ(VrGetLoaderMessage(), L""); }).join();
    HMODULE module = LoadLibraryW(wide(kSample).c_str());
    EXPECT_STREQ(VrGetLoaderMessage(), L"");
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, LongLoaderMessageIsCut)
{
    EXPECT_EQ(LoadLibraryW((L"/" + std::wstring(4000, L'x')).c_str()), nullptr);
    EXPECT_EQ(std::wstring(VrGetLoaderMessage()).substr(0, 3), L"/xx");
}

TEST_F(ModulesTest, FlagBindsFunctionsOnFirstUse)
{
    EXPECT_EQ(LoadLibraryW(wide(kUnresolved).c_str()), nullptr);
    EXPECT_NE(std::wstring(VrGetLoaderMessage()).find(L"vrNowhereDefined"), std::wstring::npos);
    EXPECT_EQ(LoadLibraryExW(wide(kUnresolved).c_str(), nullptr, 0x1000), nullptr);
    HMODULE module = LoadLibraryExW(wide(kUnresolved).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    EXPECT_NE(module, nullptr);
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, SymbolsOfALibraryStayItsOwn)
{
    HMODULE module = LoadLibraryW(wide(kSample).c_str());
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(::dlsym(RTLD_DEFAULT, "vrSampleAnswer"), nullptr);
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, InitialiserAndFinaliserMayUseModulesThemselves)
{
    HMODULE module = LoadLibraryW(L"" VR_TEST_LIBRARIES "/VrOsBaseNested.dll");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetLastError(), 1000U);
    EXPECT_TRUE(isLoaded(kSample));
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_EQ(GetLastError(), 2000U);
    EXPECT_FALSE(isLoaded(kSample));
}

TEST_F(ModulesTest, GarbageHandlesAreError6)
{
    for (HMODULE handle : garbageHandles()) {
        SetLastError(0);
        EXPECT_EQ(FreeLibrary(handle), FALSE);
        EXPECT_EQ(GetLastError(), 6U);
        SetLastError(0);
        EXPECT_EQ(DisableThreadLibraryCalls(handle), FALSE);
        EXPECT_EQ(GetLastError(), 6U);
        if (handle != nullptr) {
            SetLastError(0);
            EXPECT_EQ(fileNameOf(handle), L"");
            EXPECT_EQ(GetLastError(), 6U);
        }
    }
}

TEST_F(ModulesTest, HandleOfALoadedModuleIsFoundWithoutAReference)
{
    const std::string path = copySample();
    EXPECT_EQ(GetModuleHandleW(wide(path).c_str()), nullptr);
    HMODULE module = LoadLibraryW(wide(path).c_str());
    EXPECT_EQ(GetModuleHandleW(wide(path).c_str()), module);
    EXPECT_EQ(GetModuleHandleW(wide(path).c_str()), module);
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_FALSE(isLoaded(path));
}

TEST_F(ModulesTest, ModuleIsFoundByItsFileNameAlone)
{
    const std::string path = copySample("libVrOsBaseRenamed.so");
    EXPECT_EQ(GetModuleHandleW(L"VrOsBaseRenamed.dll"), nullptr);
    HMODULE module = LoadLibraryW(wide(path).c_str());
    EXPECT_EQ(GetModuleHandleW(L"libVrOsBaseRenamed.so"), module);
    EXPECT_EQ(GetModuleHandleW(L"VrOsBaseRenamed.dll"), module);
    EXPECT_EQ(FreeLibrary(module), TRUE);
}

TEST_F(ModulesTest, ModuleThatIsNotLoadedHasNoHandle)
{
    for (LPCWSTR name : {L"", L"NoSuchLibrary.dll", L"/none.so", L"/"}) {
        SetLastError(0);
        EXPECT_EQ(GetModuleHandleW(name), nullptr) << name;
        EXPECT_EQ(GetLastError(), 126U);
    }
    EXPECT_EQ(GetModuleHandleW(wide(kSample).c_str()), nullptr);
    EXPECT_FALSE(isLoaded(kSample));
}

TEST_F(ModulesTest, ModuleThatNobodyLoadedThroughUsStays)
{
    HMODULE module = GetModuleHandleW(L"libVrOsBase.so");
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(DisableThreadLibraryCalls(module), TRUE);
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_EQ(FreeLibrary(module), TRUE);
    EXPECT_EQ(GetModuleHandleW(L"libVrOsBase.so"), module);
    EXPECT_EQ(fileNameOf(module).substr(fileNameOf(module).size() - 15), L"/libVrOsBase.so");
}

TEST_F(ModulesTest, MainProgramIsAModuleThatStays)
{
    HMODULE main = GetModuleHandleW(nullptr);
    ASSERT_NE(main, nullptr);
    EXPECT_EQ(FreeLibrary(main), TRUE);
    EXPECT_EQ(GetModuleHandleW(nullptr), main);
    EXPECT_EQ(DisableThreadLibraryCalls(main), TRUE);
    EXPECT_EQ(fileNameOf(main), fileNameOf(nullptr));
    EXPECT_EQ(fileNameOf(nullptr), std::filesystem::read_symlink("/proc/self/exe").wstring());
}

TEST_F(ModulesTest, FileNameIsCutToTheCapacity)
{
    const std::wstring whole = fileNameOf(nullptr);
    const auto length = static_cast<DWORD>(whole.size());
    for (const DWORD capacity : {DWORD{0}, DWORD{1}, DWORD{2}, length, length + 1, length + 2}) {
        GuardedBuffer buffer(capacity);
        SetLastError(77);
        const bool fits = capacity > length;
        EXPECT_EQ(GetModuleFileNameW(nullptr, buffer.data(), capacity), fits ? length : capacity);
        EXPECT_EQ(GetLastError(), fits ? 0U : 122U);
        EXPECT_TRUE(buffer.guardsHold());
        if (capacity != 0) {
            EXPECT_EQ(buffer.text(), whole.substr(0, capacity - 1));
        }
    }
}

TEST_F(ModulesTest, NullBufferForAFileNameIsError87)
{
    EXPECT_EQ(GetModuleFileNameW(nullptr, nullptr, 10), 0U);
    EXPECT_EQ(GetLastError(), 87U);
}

TEST_F(ModulesTest, FileNameOfAProgramIsWhereItWasStarted)
{
    std::filesystem::copy_file(VR_TEST_PROBE, m_dir.at("probe"));
    EXPECT_EQ(run(m_dir.at("probe") + " where").output, m_dir.at("probe"));
    EXPECT_EQ(run("cd " + m_dir.path() + " && ./probe where").output, m_dir.at("probe"));
}

TEST_F(ModulesTest, FileNameOfAProgramOutlivesItsFile)
{
    std::filesystem::copy_file(VR_TEST_PROBE, m_dir.at("probe"));
    EXPECT_EQ(run(m_dir.at("probe") + " where-after-removal").output, m_dir.at("probe"));
    std::filesystem::copy_file(VR_TEST_PROBE, m_dir.at("probe (deleted)"));
    EXPECT_EQ(run("'" + m_dir.at("probe (deleted)") + "' where").output, m_dir.at("probe (deleted)"));
}

TEST_F(ModulesTest, ManyThreadsMayLoadAskAndFree)
{
    const std::wstring path = wide(copySample());
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    threads.reserve(wrong.size());
    for (int& count : wrong) {
        threads.emplace_back([&count, &path] { count = useRepeatedly(path); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
    EXPECT_EQ(GetModuleHandleW(path.c_str()), nullptr);
}

} // namespace
