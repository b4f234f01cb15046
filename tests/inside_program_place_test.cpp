// The executable's place on disk: what is taken from its path, and what fits.
#include <cwchar>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "VrOsBase/VrOsBase.h"
#include "place/program_place.h"

using namespace vruinfo::internal;

namespace
{

constexpr wchar_t kCanary = L'#';
constexpr std::size_t kCanaries = 8;

/// A buffer with canaries behind it.
std::wstring guarded(std::size_t capacity)
{
    return std::wstring(capacity + kCanaries, kCanary);
}

bool isUntouchedFrom(const std::wstring& buffer, std::size_t index)
{
    return buffer.find_first_not_of(kCanary, index) == std::wstring::npos;
}

std::filesystem::path executable()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::wstring directory()
{
    return executable().parent_path().wstring();
}

struct BaseName {
    const char* test;
    const wchar_t* path;
    const wchar_t* name;
};

std::ostream& operator<<(std::ostream& stream, const BaseName& row)
{
    return stream << row.test;
}

class KeepBaseName : public testing::TestWithParam<BaseName>
{
};

TEST_P(KeepBaseName, KeepsWhatStandsBetweenTheLastSlashAndTheLastDot)
{
    const std::size_t length = std::wcslen(GetParam().path);
    std::wstring buffer = guarded(length + 1);
    std::wmemcpy(buffer.data(), GetParam().path, length + 1);
    EXPECT_EQ(keepBaseName(buffer.data()), std::wcslen(GetParam().name));
    EXPECT_STREQ(buffer.c_str(), GetParam().name);
    EXPECT_TRUE(isUntouchedFrom(buffer, length + 1));
}

INSTANTIATE_TEST_SUITE_P(All, KeepBaseName,
                         testing::Values(BaseName{"WithExtension", L"/opt/draw/host.bin", L"host"},
                                         BaseName{"WithoutExtension", L"/opt/draw/host", L"host"},
                                         BaseName{"LastDotOnly", L"/opt/a.b.c", L"a.b"},
                                         BaseName{"DotOfADirectory", L"/opt.d/host", L"host"},
                                         BaseName{"Hidden", L"/opt/.hidden", L""},
                                         BaseName{"DotAtTheEnd", L"/opt/host.", L"host"},
                                         BaseName{"OnlyADot", L"/opt/.", L""}, BaseName{"SlashAtTheEnd", L"/opt/", L""},
                                         BaseName{"AtTheRoot", L"/a.b", L"a"}, BaseName{"OnlyASlash", L"/", L""},
                                         BaseName{"LongerThanItsDirectory", L"/o/abcdefgh.x", L"abcdefgh"},
                                         BaseName{"WithoutSlash", L"host.bin", L"host.bin"},
                                         BaseName{"WithABackslash", L"C:\\host.bin", L"C:\\host.bin"},
                                         BaseName{"Empty", L"", L""},
                                         BaseName{"BeyondTheBmp", L"/o/\U0001F600.x", L"\U0001F600"}),
                         [](const auto& instance) { return instance.param.test; });

TEST(WriteExecutable, FitsItsLengthAndATerminator)
{
    const std::wstring path = executable().wstring();
    for (const std::size_t size : {path.size() + 1, path.size() + 2, std::size_t{1024}}) {
        std::wstring buffer = guarded(size);
        EXPECT_TRUE(writeExecutable(buffer.data(), static_cast<unsigned int>(size)));
        EXPECT_EQ(buffer.c_str(), path);
        EXPECT_TRUE(isUntouchedFrom(buffer, size));
    }
}

TEST(WriteExecutable, FailsForItsBareLengthAndLess)
{
    const std::size_t length = executable().wstring().size();
    for (const std::size_t size : {length, length - 1, std::size_t{2}, std::size_t{1}, std::size_t{0}}) {
        std::wstring buffer = guarded(size);
        EXPECT_FALSE(writeExecutable(buffer.data(), static_cast<unsigned int>(size))) << size;
        EXPECT_TRUE(isUntouchedFrom(buffer, size)) << size;
    }
}

TEST(WriteExecutable, SucceedsAfterAFailure)
{
    std::wstring buffer = guarded(1024);
    ASSERT_FALSE(writeExecutable(buffer.data(), 2));
    EXPECT_TRUE(writeExecutable(buffer.data(), 1024));
}

TEST(ProgramPlaceParts, AreDirectoryBaseNameAndExtension)
{
    const std::optional<ProgramPlace> place = ProgramPlace::find();
    ASSERT_TRUE(place);
    EXPECT_EQ(place->directory, directory() + L"/");
    EXPECT_EQ(place->baseName, executable().stem().wstring());
    EXPECT_EQ(place->extension, executable().extension().wstring());
}

TEST(ProgramDirectory, EndsWithASeparatorAndIsKept)
{
    const wchar_t* const first = programDirectory();
    EXPECT_EQ(first, directory() + L"/");
    EXPECT_EQ(programDirectory(), first);
}

TEST(ProgramComponent, IsJoinedByOneSeparator)
{
    std::wstring buffer = guarded(1024);
    const unsigned int length = writeProgramComponent(buffer.data(), 1024, L"folder");
    EXPECT_EQ(buffer.c_str(), directory() + L"/folder");
    EXPECT_EQ(length, directory().size() + 7);
}

TEST(ProgramComponent, NeedsFourCharactersMoreThanBothParts)
{
    // The executable's own path, which stands in the buffer first, is shorter than this.
    const std::wstring component(100, L'c');
    const std::size_t smallest = directory().size() + component.size() + 4;
    std::wstring buffer = guarded(smallest);
    EXPECT_EQ(writeProgramComponent(buffer.data(), static_cast<unsigned int>(smallest), component.c_str()),
              directory().size() + 1 + component.size());
    EXPECT_TRUE(isUntouchedFrom(buffer, smallest));
    buffer = guarded(smallest - 1);
    EXPECT_EQ(writeProgramComponent(buffer.data(), static_cast<unsigned int>(smallest - 1), component.c_str()), 0U);
    EXPECT_TRUE(isUntouchedFrom(buffer, smallest - 1));
}

TEST(ProgramComponent, FailsWhereTheExecutablesPathDoesNotFit)
{
    const auto size = static_cast<unsigned int>(executable().wstring().size());
    std::wstring buffer = guarded(size);
    EXPECT_EQ(writeProgramComponent(buffer.data(), size, L"x"), 0U);
    EXPECT_TRUE(isUntouchedFrom(buffer, size));
}

/// What comes of asking for the executable's path: the number, the last error, the buffer.
struct Asked {
    unsigned int length;
    DWORD error;
    std::wstring buffer;

    bool operator==(const Asked& other) const
    {
        return length == other.length && error == other.error && buffer == other.buffer;
    }
};

Asked askForExecutable(std::size_t size)
{
    Asked asked{0, 0, guarded(size)};
    SetLastError(77);
    asked.length = executablePath(asked.buffer.data(), static_cast<unsigned int>(size));
    asked.error = GetLastError();
    return asked;
}

TEST(HeldExecutablePath, IsGivenAsTheSystemGivesIt)
{
    const std::size_t length = executable().wstring().size();
    for (const std::size_t size : {std::size_t{1}, length - 1, length, length + 1, length + 2, std::size_t{1024}}) {
        const Asked before = askForExecutable(size);
        const HeldExecutable held;
        const Asked during = askForExecutable(size);
        EXPECT_EQ(during, before) << size;
        EXPECT_TRUE(isUntouchedFrom(during.buffer, size));
    }
}

TEST(Existence, IsThatOfFilesAndDirectories)
{
    EXPECT_TRUE(isThere(executable().wstring().c_str()));
    EXPECT_TRUE(isThere(directory().c_str()));
    EXPECT_FALSE(isThere((directory() + L"/no such file").c_str()));
    EXPECT_FALSE(isThere(L""));
}

TEST(Readability, IsThatOfFilesAndDirectories)
{
    EXPECT_TRUE(isReadable(executable().wstring().c_str()));
    EXPECT_TRUE(isReadable(directory().c_str()));
    EXPECT_FALSE(isReadable((directory() + L"/no such file").c_str()));
    EXPECT_FALSE(isReadable(L""));
}

} // namespace
