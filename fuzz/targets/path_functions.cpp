// Path and text functions of the Win32 subset against short references, in buffers of their documented capacity.
#include <filesystem>
#include <fstream>
#include <set>
#include <vector>

#include <unistd.h>

#include "VrOsBase/VrOsBase.h"
#include "fuzz_input.h"
#include "osbase/text_case.h"
#include "osbase/wildcard.h"

using namespace vrosbase::internal;

namespace
{

std::wstring withSlashes(std::wstring text)
{
    std::replace(text.begin(), text.end(), L'\\', L'/');
    return text;
}

bool isSlash(wchar_t c)
{
    return c == L'/' || c == L'\\';
}

void checkAppend(const std::wstring& path, const std::wstring& more)
{
    std::vector<wchar_t> buffer(kVrPathCapacity, L'#');
    std::copy_n(path.c_str(), path.size() + 1, buffer.begin());
    const BOOL isDone = PathAppendW(buffer.data(), more.c_str());
    const std::wstring result(buffer.data());
    const std::size_t begin = more.find_first_not_of(L"/\\");
    if (begin == std::wstring::npos) {
        VR_HOLDS(isDone && result == path, "nothing to append leaves the path");
        return;
    }
    std::wstring expected = path;
    while (!expected.empty() && isSlash(expected.back()))
        expected.pop_back();
    expected = withSlashes((path.empty() ? L"" : expected + L"/") + more.substr(begin));
    const bool fits = expected.size() < kVrPathCapacity;
    VR_HOLDS((isDone != FALSE) == fits, "what fits is appended");
    VR_HOLDS(result == (fits ? expected : path), "one separator stands between the two, or nothing changes");
}

void checkRemove(const std::wstring& path)
{
    std::vector<wchar_t> buffer(path.c_str(), path.c_str() + path.size() + 1);
    std::size_t steps = 0;
    std::wstring before = path;
    while (PathRemoveFileSpecW(buffer.data())) {
        const std::wstring after(buffer.data());
        VR_HOLDS(after.size() < before.size() && before.compare(0, after.size(), after) == 0,
                 "a path is cut at its end");
        before = after;
        VR_HOLDS(++steps <= path.size(), "a path is not cut for ever");
    }
    VR_HOLDS(before.find_first_not_of(L"/\\") == std::wstring::npos, "only the root stays");
}

void checkSplit(const std::wstring& path)
{
    std::vector<wchar_t> drive(3, L'#');
    std::vector<wchar_t> dir(1024, L'#');
    std::vector<wchar_t> name(256, L'#');
    std::vector<wchar_t> extension(256, L'#');
    _wsplitpath(path.c_str(), drive.data(), dir.data(), name.data(), extension.data());
    VR_HOLDS(drive[0] == L'\0', "there are no drives");
    const std::wstring parts[] = {dir.data(), name.data(), extension.data()};
    if (parts[0].size() < 1023 && parts[1].size() < 255 && parts[2].size() < 255)
        VR_HOLDS(parts[0] + parts[1] + parts[2] == withSlashes(path), "the parts are the path");
    VR_HOLDS(parts[0].empty() || parts[0].back() == L'/' || parts[0].size() == 1023, "a directory ends in a separator");
    VR_HOLDS(parts[1].find(L'/') == std::wstring::npos, "a name has no separator");
    VR_HOLDS(parts[2].empty() || (parts[2][0] == L'.' && parts[2].find(L'.', 1) == std::wstring::npos),
             "an extension has one dot, in front");
    _wsplitpath(path.c_str(), nullptr, nullptr, nullptr, nullptr);
}

/// The same answer, found by trying every length for every star.
bool matchesSlowly(std::wstring_view name, std::wstring_view pattern)
{
    if (pattern.empty())
        return name.empty();
    if (pattern[0] == L'*') {
        for (std::size_t taken = 0; taken <= name.size(); ++taken) {
            if (matchesSlowly(name.substr(taken), pattern.substr(1)))
                return true;
        }
        return false;
    }
    return !name.empty() && (pattern[0] == L'?' || pattern[0] == name[0]) &&
           matchesSlowly(name.substr(1), pattern.substr(1));
}

void checkPattern(const std::wstring& name, const std::wstring& pattern)
{
    const bool matches = matchesWildcard(name, pattern);
    if (pattern == L"*.*") {
        VR_HOLDS(matches, "*.* is every name");
        return;
    }
    constexpr long kMostStars = 5;
    constexpr std::size_t kLongestSlow = 24;
    const bool isSmall = std::count(pattern.begin(), pattern.end(), L'*') <= kMostStars && name.size() <= kLongestSlow;
    if (isSmall)
        VR_HOLDS(matches == matchesSlowly(name, pattern), "a pattern matches as its characters say");
}

const std::set<std::wstring>& namesInPlace()
{
    static const std::set<std::wstring> kNames = {L"a", L"a.b", L"ab.so", L".hidden", L"\u00e4.txt", L"*", L"[x]"};
    return kNames;
}

const std::wstring& place()
{
    static const std::wstring kPlace = [] {
        std::string directory = "/tmp/vrfuzz-paths-XXXXXX";
        VR_HOLDS(mkdtemp(directory.data()) != nullptr, "a directory can be made");
        static const std::string kRemoved = directory;
        std::atexit([] { std::filesystem::remove_all(kRemoved); });
        for (const std::wstring& name : namesInPlace())
            std::ofstream(directory + '/' + QString::fromStdWString(name).toStdString());
        return vrfuzz::wide(directory) + L'/';
    }();
    return kPlace;
}

/// A listing of a directory that is known gives what the pattern matches, in order.
void checkListing(const std::wstring& pattern)
{
    if (pattern.find_first_of(L"/\\") != std::wstring::npos || pattern.find_first_of(L"*?") == std::wstring::npos)
        return;
    std::vector<std::wstring> expected;
    std::set<std::wstring> all = namesInPlace();
    all.insert({L".", L".."});
    std::copy_if(all.begin(), all.end(), std::back_inserter(expected),
                 [&pattern](const std::wstring& name) { return matchesWildcard(name, pattern); });
    std::vector<std::wstring> found;
    WIN32_FIND_DATAW entry;
    const HANDLE listing = FindFirstFileW((place() + pattern).c_str(), &entry);
    if (listing != INVALID_HANDLE_VALUE) {
        do
            found.emplace_back(entry.cFileName);
        while (FindNextFileW(listing, &entry));
        VR_HOLDS(GetLastError() == ERROR_NO_MORE_FILES && FindClose(listing), "a listing ends");
    }
    VR_HOLDS(found == expected, "a listing has what the pattern matches, sorted");
}

void checkSearch(const std::wstring& text, const std::wstring& wanted)
{
    const auto isSameCharacter = [](wchar_t a, wchar_t b) { return foldCase(a) == foldCase(b); };
    const auto found = std::search(text.begin(), text.end(), wanted.begin(), wanted.end(), isSameCharacter);
    const wchar_t* const place = StrStrIW(text.c_str(), wanted.c_str());
    const bool expectsOne = !wanted.empty() && found != text.end();
    VR_HOLDS((place != nullptr) == expectsOne, "a text is found where it is");
    VR_HOLDS(!place || place - text.c_str() == found - text.begin(), "the first place is given");
    const int order = _wcsicmp(text.c_str(), wanted.c_str());
    VR_HOLDS((order < 0) == (_wcsicmp(wanted.c_str(), text.c_str()) > 0), "comparing has a direction");
    VR_HOLDS(_wcsicmp(text.c_str(), text.c_str()) == 0, "a text is equal to itself");
}

void checkNumber(const std::wstring& text)
{
    const int number = _wtoi(text.c_str());
    errno = 0;
    wchar_t* end = nullptr;
    const bool hasOtherBlank = !text.empty() && static_cast<char32_t>(text[0]) > 0x7F;
    const long long expected = std::wcstoll(text.c_str(), &end, 10);
    if (!hasOtherBlank)
        VR_HOLDS(number == std::clamp<long long>(expected, INT32_MIN, INT32_MAX), "a number is what its digits say");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vrfuzz::Input input(data, size);
    const std::size_t stretch = input.takeByte() * 8U;
    const std::wstring first = vrfuzz::terminated(vrfuzz::wide(input.takeLine()));
    const std::wstring second = vrfuzz::terminated(vrfuzz::wide(input.rest()));
    std::wstring path = first;
    while (!first.empty() && path.size() < stretch && path.size() + first.size() < kVrPathCapacity)
        path += first;
    if (path.size() < kVrPathCapacity)
        checkAppend(path, second);
    checkRemove(path);
    checkSplit(path);
    checkPattern(second, first);
    checkListing(first);
    checkSearch(second, first);
    checkNumber(first);
    return 0;
}
