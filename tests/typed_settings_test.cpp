// The typed layer: settings with the types of C++ over the exported calls.
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QByteArray>
#include <QtCore/QSettings>
#include <QtCore/QString>

#include "VrUInfo/Settings.h"
#include "scarce_memory.h"
#include "started_store.h"
#include "store_values.h"

using namespace vrtest;
using vorn::Settings;

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Every piece of memory that this process takes is counted: by the library and the settings library, too.
static std::atomic<int> g_allocations = 0;

// NOLINTNEXTLINE(bugprone-reserved-identifier) the allocator's own name
extern "C" void* __libc_malloc(std::size_t size);
extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t size)
{
    ++g_allocations;
    return __libc_malloc(size);
}
#endif

namespace
{

const std::wstring kRootText = L"Software/HALVIK/VORNA/2026/en-US/Settings";
constexpr VornaConfig::Path kRoot = VornaConfig::SettingsRoot;
constexpr auto kUnknownRoot = static_cast<VornaConfig::Path>(9);
constexpr std::size_t kLongestBelowRoot = 1023; // path below the root, the value's name included
constexpr std::size_t kLongestItem = 1022;      // an item's path, its root included

static_assert(std::is_nothrow_move_constructible_v<Settings> && std::is_nothrow_move_assignable_v<Settings>);
static_assert(std::is_copy_constructible_v<Settings> && std::is_copy_assignable_v<Settings>);
static_assert(!std::is_convertible_v<VornaConfig::Path, Settings>, "a root is no item by accident");
static_assert(!std::is_copy_constructible_v<vorn::Values::Value>, "a position of a range is not kept");

template <typename T, typename = void>
constexpr bool kCanBeSet = false;
template <typename T>
constexpr bool
    kCanBeSet<T, std::void_t<decltype(std::declval<Settings&>().set(std::declval<vorn::Text>(), std::declval<T>()))>> =
        true;

template <typename... T>
constexpr bool kCanAllBeSet = std::conjunction_v<std::bool_constant<kCanBeSet<T>>...>;
template <typename... T>
constexpr bool kCanAnyBeSet = std::disjunction_v<std::bool_constant<kCanBeSet<T>>...>;

static_assert(kCanAllBeSet<int, long, long long, std::int32_t, std::int64_t, bool, double>);
static_assert(kCanAllBeSet<vorn::Bytes, QByteArray, QString, std::wstring, std::wstring_view, VornVariant>);
static_assert(kCanAllBeSet<const wchar_t*, wchar_t*, const wchar_t (&)[5], std::nullptr_t>);
static_assert(!kCanAnyBeSet<unsigned, unsigned long, short, unsigned char, char, wchar_t, char32_t>);
static_assert(!kCanAnyBeSet<float, long double, VornaConfig::Path, void*, const char*, std::string>);

std::uint64_t bitsOf(double number)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

double doubleOf(std::uint64_t bits)
{
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

vorn::Bytes bytesOf(std::size_t count)
{
    vorn::Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + 1);
    return bytes;
}

std::vector<std::wstring> namesOf(vorn::Items items)
{
    return {items.begin(), items.end()};
}

std::vector<std::wstring> namesOf(vorn::Values values)
{
    std::vector<std::wstring> names;
    for (const auto& value : values)
        names.push_back(value.name());
    return names;
}

using Names = std::vector<std::wstring>;

} // namespace

class TypedSettings : public StartedStore
{
protected:
    Settings grid{kRoot, L"Drawing/Grid"};

    static std::wstring keyOf(const std::wstring& path) { return kRootText + L"/" + path; }
    /// What stands on disk for a value of the grid.
    static QString gridText(const std::wstring& name) { return writtenText(keyOf(L"Drawing/Grid/" + name)); }
    static void putGridText(const std::wstring& name, const std::string& text)
    {
        putText(keyOf(L"Drawing/Grid/" + name), text);
    }
    template <typename T>
    void expectBack(const T& value)
    {
        EXPECT_TRUE(grid.set(L"Value", value));
        EXPECT_EQ(grid.status(), Vorn::eOk);
        EXPECT_EQ(grid.get<T>(L"Value"), value);
        EXPECT_EQ(grid.status(), Vorn::eOk);
    }
    template <typename T>
    void expectOtherType(const wchar_t* name)
    {
        EXPECT_FALSE(grid.get<T>(name)) << utf8(name);
        EXPECT_EQ(grid.status(), Vorn::eUnsupportedType) << utf8(name);
    }
    /// A sub-path that makes an item path of `length` characters with the settings root.
    static std::wstring itemOf(std::size_t length) { return longPath(length - kRootText.size() - 1); }
};

// Numbers ---------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, IntegersOf32BitsComeBack)
{
    for (const int number : {0, 1, -1, 42, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
        expectBack(number);
    grid.set(L"Step", -42);
    EXPECT_EQ(gridText(L"Step"), QStringLiteral("1$-42"));
}

TEST_F(TypedSettings, IntegersOf64BitsComeBack)
{
    for (const std::int64_t number :
         {std::int64_t{0}, std::int64_t{-1}, std::int64_t{5000000000}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()})
        expectBack(number);
    expectBack(5000000000L);
    expectBack(5000000000LL);
    grid.set(L"Step", 42LL);
    EXPECT_EQ(gridText(L"Step"), QStringLiteral("2$42"));
}

TEST_F(TypedSettings, A32BitIntegerIsReadAsA64BitOne)
{
    grid.set(L"Step", -42);
    EXPECT_EQ(grid.get<std::int64_t>(L"Step"), -42);
    EXPECT_EQ(grid.get<long long>(L"Step"), -42);
}

TEST_F(TypedSettings, A64BitIntegerIsNotReadAsA32BitOneAlsoWhereItFits)
{
    grid.set(L"Step", std::int64_t{42});
    expectOtherType<int>(L"Step");
}

TEST_F(TypedSettings, BoolIsZeroOrOne)
{
    expectBack(true);
    EXPECT_EQ(gridText(L"Value"), QStringLiteral("1$1"));
    expectBack(false);
    EXPECT_EQ(gridText(L"Value"), QStringLiteral("1$0"));
    EXPECT_EQ(grid.get<int>(L"Value"), 0);
    for (const int number : {2, -1, 256}) {
        grid.set(L"Value", number);
        expectOtherType<bool>(L"Value");
    }
    grid.set(L"Value", std::int64_t{1});
    expectOtherType<bool>(L"Value");
}

TEST_F(TypedSettings, EveryBitOfADoubleComesBack)
{
    for (const std::uint64_t bits :
         {bitsOf(1.0), bitsOf(0.0), bitsOf(-0.0), bitsOf(0.1), std::uint64_t{1}, bitsOf(HUGE_VAL), bitsOf(-HUGE_VAL),
          std::uint64_t{0x7FF8000000000000}, std::uint64_t{0xFFF8123456789ABC}, std::uint64_t{0x7FF0000000000001}}) {
        ASSERT_TRUE(grid.set(L"Value", doubleOf(bits)));
        const std::optional<double> back = grid.get<double>(L"Value");
        ASSERT_TRUE(back) << std::hex << bits;
        EXPECT_EQ(bitsOf(*back), bits);
    }
    grid.set(L"Value", 1.0);
    EXPECT_EQ(gridText(L"Value"), QStringLiteral("3$000000000000f03f"));
}

// Text ------------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, TextComesBackAsEitherKind)
{
    for (const wchar_t* const text : {L"", L"a", L"5$x", L"grey \\ \"quoted\"; = %1", L"\x444\x4E2D\uFEFF\u2028\n\t",
                                      L"\uFEFF", L"\U0001F600", L"a\U0001F600z\U0010FFFF"}) {
        expectBack(std::wstring(text));
        expectBack(vorn::internal::toQString(text));
        EXPECT_EQ(grid.get<std::wstring>(L"Value"), text);
    }
    grid.set(L"Value", L"grey");
    EXPECT_EQ(gridText(L"Value"), QStringLiteral("5$grey"));
}

TEST_F(TypedSettings, TextBeyondTheBmpIsOneTextForBothKinds)
{
    const ushort units[] = {'a', 0xD83D, 0xDE00, 0};
    grid.set(L"Value", L"a\U0001F600");
    EXPECT_EQ(grid.get<QString>(L"Value"), QString::fromUtf16(units));
    grid.set(L"Value", QString::fromUtf16(units));
    EXPECT_EQ(grid.get<std::wstring>(L"Value"), L"a\U0001F600");
    EXPECT_EQ(gridText(L"Value"), QStringLiteral("5$") + QString::fromUtf16(units));
}

TEST_F(TypedSettings, HalvesOfPairsComeBack)
{
    for (const auto& units :
         {std::vector<ushort>{0xD83D}, {0xDE00}, {0xDE00, 0xD83D}, {0xD83D, 'x', 0xDE00}, {'x', 0xD83D}}) {
        const QString text(reinterpret_cast<const QChar*>(units.data()), static_cast<int>(units.size()));
        expectBack(text);
        const std::wstring wideText(units.begin(), units.end());
        EXPECT_EQ(grid.get<std::wstring>(L"Value"), wideText);
        expectBack(wideText);
    }
}

TEST_F(TypedSettings, TextsOfAllLengthsComeBack)
{
    for (const std::size_t length : {1, 126, 127, 128, 129, 1022, 1023, 1024, 1025, 10000}) {
        expectBack(std::wstring(length, L'\x444'));
        expectBack(QString(static_cast<int>(length), QChar(0x444)));
        const std::wstring pairs(length, L'\U0001F600');
        expectBack(pairs);
        expectBack(*grid.get<QString>(L"Value"));
        EXPECT_EQ(grid.get<std::wstring>(L"Value"), pairs);
    }
}

TEST_F(TypedSettings, TextNeedNotBeTerminated)
{
    const std::wstring longer = L"Stepladder";
    const std::wstring_view step = std::wstring_view(longer).substr(0, 4);
    EXPECT_TRUE(grid.set(step, step));
    EXPECT_EQ(grid.get<std::wstring>(L"Step"), L"Step");
    EXPECT_EQ(grid.get(step, std::wstring_view()), L"Step");
}

TEST_F(TypedSettings, NullTextIsEmptyText)
{
    EXPECT_TRUE(grid.set(L"Value", static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(grid.get<std::wstring>(L"Value"), L"");
    EXPECT_TRUE(grid.set(L"Value", QString()));
    EXPECT_EQ(grid.get<QString>(L"Value"), QString());
    EXPECT_EQ(gridText(L"Value"), QStringLiteral("5$"));
}

TEST_F(TypedSettings, TextWithAZeroIsRefusedAndNothingIsWritten)
{
    grid.set(L"Value", L"before");
    for (const std::wstring& text : {std::wstring(1, L'\0'), std::wstring(L"a\0b", 3), std::wstring(L"a\0", 2)}) {
        EXPECT_FALSE(grid.set(L"Value", text));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
        EXPECT_FALSE(grid.set(L"Value", std::wstring_view(text)));
        EXPECT_FALSE(grid.set(L"Value", vorn::internal::toQString(text)));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
    }
    EXPECT_EQ(grid.get<std::wstring>(L"Value"), L"before");
}

TEST_F(TypedSettings, TextWithAZeroThatStandsInTheTreeIsReadWhole)
{
    g_globalSettings->setValue(QString::fromStdWString(keyOf(L"Drawing/Grid/Value")),
                               QString::fromUtf16(u"5$a\0b\0", 6));
    EXPECT_EQ(grid.get<std::wstring>(L"Value"), std::wstring(L"a\0b\0", 4));
    EXPECT_EQ(grid.get<QString>(L"Value"), QString::fromUtf16(u"a\0b\0", 4));
}

TEST_F(TypedSettings, TextWithoutATagIsText)
{
    putGridText(L"Value", "as it stands");
    EXPECT_EQ(grid.get<std::wstring>(L"Value"), L"as it stands");
    putGridText(L"Value", "12$5");
    EXPECT_EQ(grid.get<QString>(L"Value"), QStringLiteral("12$5"));
}

// Bytes -----------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, BytesComeBackAsTheyWereGiven)
{
    for (const std::size_t count : {0, 1, 3, 4, 5, 7, 8, 9, 12, 511, 512, 513, 70000}) {
        const vorn::Bytes bytes = bytesOf(count);
        expectBack(bytes);
        expectBack(QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(count)));
        EXPECT_EQ(grid.get<vorn::Bytes>(L"Value"), bytes);
    }
}

TEST_F(TypedSettings, BytesThatEndInZerosComeBackAsTheyWereGiven)
{
    for (std::size_t zeros = 0; zeros < 10; ++zeros) {
        expectBack(vorn::Bytes(zeros, 0));
        vorn::Bytes bytes = {1, 2};
        bytes.resize(2 + zeros, 0);
        expectBack(bytes);
    }
}

TEST_F(TypedSettings, BytesDoNotGrowWhenTheyAreWrittenAgain)
{
    grid.set(L"Value", vorn::Bytes{1, 2});
    const QString once = gridText(L"Value");
    EXPECT_EQ(once, QStringLiteral("4$010200000000"));
    for (int i = 0; i < 5; ++i)
        grid.set(L"Value", *grid.get<vorn::Bytes>(L"Value"));
    EXPECT_EQ(gridText(L"Value"), once);
}

TEST_F(TypedSettings, BytesOfTheExportedCallsComeBackAsTheyWereGiven)
{
    ASSERT_EQ(config().setValue(kRoot, L"Drawing/Grid/Value", binaryValue({1, 2, 3})), 0U);
    EXPECT_EQ(grid.get<vorn::Bytes>(L"Value"), (vorn::Bytes{1, 2, 3}));
}

TEST_F(TypedSettings, BytesThatGrewThroughTheExportedCallsLoseOneFourOfZeros)
{
    ASSERT_EQ(config().setValue(kRoot, L"Drawing/Grid/Value", binaryValue({1})), 0U);
    VornVariant raw;
    ASSERT_EQ(config().getValue(kRoot, L"Drawing/Grid/Value", raw), 0U);
    ASSERT_EQ(config().setValue(kRoot, L"Drawing/Grid/Value", raw), 0U);
    EXPECT_EQ(grid.get<vorn::Bytes>(L"Value"), (vorn::Bytes{1, 0, 0, 0, 0}));
}

TEST_F(TypedSettings, BytesPutByHandAreWholeUnlessTheyEndInFourZeros)
{
    const std::vector<std::pair<std::string, vorn::Bytes>> cases = {
        {"4$", {}},         {"4$01", {1}},         {"4$000000", {0, 0, 0}},      {"4$01020304", {1, 2, 3, 4}},
        {"4$00000000", {}}, {"4$0100000000", {1}}, {"4$01000000", {1, 0, 0, 0}}, {"4$00000001", {0, 0, 0, 1}},
        {"4$zz", {}},       {"4$0000000000", {0}}};
    for (const auto& [text, bytes] : cases) {
        putGridText(L"Value", text);
        EXPECT_EQ(grid.get<vorn::Bytes>(L"Value"), bytes) << text;
    }
}

TEST_F(TypedSettings, RawBytesAreWhatTheTreeHolds)
{
    grid.set(L"Value", vorn::Bytes{1, 2});
    const std::optional<VornVariant> raw = grid.get<VornVariant>(L"Value");
    ASSERT_TRUE(raw);
    EXPECT_EQ(payloadOf(*raw), (Bytes{1, 2, 0, 0, 0, 0}));
}

TEST_F(TypedSettings, ADoubleAndFourBytesAreNotToldApart)
{
    grid.set(L"Value", 1.0);
    EXPECT_EQ(grid.get<vorn::Bytes>(L"Value"), (vorn::Bytes{0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    grid.set(L"Value", 0.0);
    EXPECT_EQ(grid.get<vorn::Bytes>(L"Value"), (vorn::Bytes{0, 0, 0, 0}));
    grid.set(L"Value", vorn::Bytes{1, 0, 0, 0});
    EXPECT_EQ(grid.get<double>(L"Value"), doubleOf(1));
}

TEST_F(TypedSettings, EightBytesAreNoDouble)
{
    for (const std::size_t count : {0, 3, 5, 8}) {
        grid.set(L"Value", bytesOf(count));
        expectOtherType<double>(L"Value");
    }
}

// Limits of values ------------------------------------------------------------------------------------------

TEST_F(TypedSettings, ValuesOverTheLongestAreRefusedBeforeTheyAreLookedAt)
{
    EXPECT_TRUE(vorn::internal::isStorable(vorn::kLongestValue));
    EXPECT_FALSE(vorn::internal::isStorable(vorn::kLongestValue + 1));
    const std::wstring_view tooLong(L"x", vorn::kLongestValue + 1); // of which only the first is there
    EXPECT_FALSE(grid.set(L"Value", tooLong));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    const vorn::Bytes bytes(vorn::kLongestValue + 1);
    EXPECT_FALSE(grid.set(L"Value", bytes));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.contains(L"Value"));
}

// Other types, absent values ----------------------------------------------------------------------------------

TEST_F(TypedSettings, AValueOfAnotherTypeIsNothingAndStatus2)
{
    grid.set(L"Int", 1);
    grid.set(L"Long", std::int64_t{1});
    grid.set(L"Double", 1.5);
    grid.set(L"Text", L"1");
    for (const wchar_t* const name : {L"Long", L"Double", L"Text"})
        expectOtherType<int>(name);
    for (const wchar_t* const name : {L"Double", L"Text"})
        expectOtherType<std::int64_t>(name);
    for (const wchar_t* const name : {L"Int", L"Long", L"Text"})
        expectOtherType<double>(name);
    for (const wchar_t* const name : {L"Int", L"Long", L"Text"})
        expectOtherType<vorn::Bytes>(name);
    for (const wchar_t* const name : {L"Int", L"Long", L"Text"})
        expectOtherType<QByteArray>(name);
    for (const wchar_t* const name : {L"Int", L"Long", L"Double"})
        expectOtherType<std::wstring>(name);
    for (const wchar_t* const name : {L"Int", L"Long", L"Double"})
        expectOtherType<QString>(name);
    for (const wchar_t* const name : {L"Long", L"Double", L"Text"})
        expectOtherType<bool>(name);
}

TEST_F(TypedSettings, AValueUnderAnUnknownTagIsOfNoType)
{
    for (const char* const text : {"7$x", "0$", "x$1"}) {
        putGridText(L"Odd", text);
        expectOtherType<int>(L"Odd");
        expectOtherType<std::wstring>(L"Odd");
        expectOtherType<VornVariant>(L"Odd");
        EXPECT_TRUE(grid.contains(L"Odd"));
    }
}

TEST_F(TypedSettings, AnAbsentValueIsNothingAndStatus1)
{
    EXPECT_FALSE(grid.get<int>(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    EXPECT_FALSE(grid.get<std::wstring>(L"Step"));
    EXPECT_FALSE(grid.get<VornVariant>(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    EXPECT_FALSE(grid.contains(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
}

TEST_F(TypedSettings, AWriteReplacesAValueOfAnotherType)
{
    grid.set(L"Step", L"many");
    grid.set(L"Step", 3);
    EXPECT_EQ(grid.get<int>(L"Step"), 3);
    EXPECT_EQ(gridText(L"Step"), QStringLiteral("1$3"));
}

TEST_F(TypedSettings, TheFallbackStandsForWhatIsNotRead)
{
    EXPECT_EQ(grid.get(L"Step", 10), 10);
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    grid.set(L"Step", L"many");
    EXPECT_EQ(grid.get(L"Step", 10), 10);
    EXPECT_EQ(grid.status(), Vorn::eUnsupportedType);
    grid.set(L"Step", 3);
    EXPECT_EQ(grid.get(L"Step", 10), 3);
    EXPECT_EQ(grid.status(), Vorn::eOk);
    EXPECT_EQ(grid.get(L"Step", std::int64_t{10}), 3);
}

TEST_F(TypedSettings, TheFallbackMayBeOfEachType)
{
    EXPECT_EQ(grid.get(L"No", true), true);
    EXPECT_EQ(grid.get(L"No", 1.5), 1.5);
    EXPECT_EQ(grid.get(L"No", L"grey"), L"grey");
    EXPECT_EQ(grid.get(L"No", static_cast<const wchar_t*>(nullptr)), L"");
    EXPECT_EQ(grid.get(L"No", std::wstring(L"grey")), L"grey");
    EXPECT_EQ(grid.get(L"No", QStringLiteral("grey")), QStringLiteral("grey"));
    EXPECT_EQ(grid.get(L"No", vorn::Bytes{1}), vorn::Bytes{1});
    grid.set(L"Yes", L"black");
    EXPECT_EQ(grid.get(L"Yes", L"grey"), L"black");
    EXPECT_EQ(grid.get(L"Yes", QStringLiteral("grey")), QStringLiteral("black"));
}

// Raw values ------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, ARawValueIsWrittenAndReadAsItIs)
{
    ASSERT_TRUE(grid.set(L"Int", int32Value(42)));
    EXPECT_EQ(grid.get<int>(L"Int"), 42);
    const std::optional<VornVariant> raw = grid.get<VornVariant>(L"Int");
    ASSERT_TRUE(raw);
    EXPECT_EQ(typeOf(*raw), VornVariant::kVarInt32);
    EXPECT_EQ(numberIn<std::int32_t>(*raw), 42);
    ASSERT_TRUE(grid.set(L"Double", doubleValue(1.5)));
    EXPECT_EQ(grid.get<double>(L"Double"), 1.5);
}

TEST_F(TypedSettings, RawValuesThatTheStoreDoesNotKeepAreRefused)
{
    grid.set(L"Value", 1);
    for (const auto type : {VornVariant::kVarNone, VornVariant::kVarText6, VornVariant::kVarText7,
                            VornVariant::kVarText8, VornVariant::kVarBinary}) {
        EXPECT_FALSE(grid.set(L"Value", emptyValue(type))) << type;
        EXPECT_EQ(grid.status(), Vorn::eUnsupportedType);
    }
    EXPECT_EQ(grid.get<int>(L"Value"), 1);
}

// Names -----------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, ANameMayCarryASubPath)
{
    for (const wchar_t* const name : {L"Colours/Minor", L"Colours\\Minor", L"/Colours/Minor", L"\\/Colours/Minor",
                                      L"Colours/Minor/", L"Colours//Minor\\/"}) {
        EXPECT_TRUE(grid.set(name, L"grey")) << utf8(name);
        EXPECT_EQ(grid.get<std::wstring>(name), L"grey") << utf8(name);
        EXPECT_TRUE(isInStore(keyOf(L"Drawing/Grid/Colours/Minor"))) << utf8(name);
        EXPECT_TRUE(grid.contains(name));
        EXPECT_TRUE(grid.remove(name));
        EXPECT_FALSE(isInStore(keyOf(L"Drawing/Grid/Colours/Minor"))) << utf8(name);
    }
    EXPECT_EQ(namesOf(Settings(kRoot, L"Drawing").items()), Names{});
}

TEST_F(TypedSettings, WhatNamesNothingIsRefused)
{
    Settings(kRoot, L"Drawing").set(L"Grid", 1); // what the item's own path would name
    grid.set(L"Step", 2);
    const std::vector<std::string> before = keysInStore();
    const std::vector<vorn::Text> names = {nullptr, L"", L"/", L"\\", L"//\\", std::wstring_view()};
    for (const vorn::Text name : names) {
        EXPECT_FALSE(grid.get<int>(name));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
        EXPECT_FALSE(grid.contains(name));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
        EXPECT_FALSE(grid.set(name, 5));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
        EXPECT_FALSE(grid.remove(name));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
        EXPECT_FALSE(grid.group(name).removeAll());
        EXPECT_EQ(grid.status(), Vorn::eFailed);
    }
    EXPECT_EQ(keysInStore(), before);
}

TEST_F(TypedSettings, ANameWithAZeroIsRefused)
{
    grid.set(L"Step", 2);
    const std::wstring_view name(L"Step\0s", 6);
    EXPECT_FALSE(grid.get<int>(name));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.set(name, 3));
    EXPECT_FALSE(grid.remove(name));
    EXPECT_EQ(grid.group(name).status(), Vorn::eFailed);
    EXPECT_EQ(Settings(kRoot, name).status(), Vorn::eFailed);
    EXPECT_EQ(grid.get<int>(L"Step"), 2);
}

TEST_F(TypedSettings, NamesMayLieBeyondTheBmp)
{
    grid.set(L"\x444\U0001F600", 1);
    grid.group(L"\U0001F601").set(L"x", 2);
    EXPECT_EQ(grid.get<int>(L"\x444\U0001F600"), 1);
    EXPECT_EQ(namesOf(grid.values()), Names{L"\x444\U0001F600"});
    EXPECT_EQ(namesOf(grid.items()), Names{L"\U0001F601"});
}

TEST_F(TypedSettings, ANameMayBeAsLongAsThePathBelowTheRootAllows)
{
    const std::wstring prefix = L"Drawing/Grid/";
    const std::wstring longest = wideOf(kLongestBelowRoot - prefix.size());
    EXPECT_TRUE(grid.set(longest, 1));
    EXPECT_EQ(grid.get<int>(longest), 1);
    EXPECT_EQ(namesOf(grid.values()), Names{longest});
    EXPECT_TRUE(grid.remove(longest));
    EXPECT_FALSE(grid.contains(longest));
    const std::wstring beyond(longest.size(), L'\U0001F600');
    EXPECT_TRUE(grid.set(beyond, 2));
    EXPECT_EQ(grid.get<int>(beyond), 2);
    EXPECT_TRUE(Settings(kRoot).set(wideOf(kLongestBelowRoot), 3));
    EXPECT_EQ(Settings(kRoot).get<int>(wideOf(kLongestBelowRoot)), 3);
}

TEST_F(TypedSettings, ALongerNameIsRefusedAndDoesNotEndTheProcess)
{
    const std::vector<std::string> before = keysInStore();
    Settings root(kRoot);
    for (const std::size_t length : {kLongestBelowRoot + 1, kLongestBelowRoot + 2, std::size_t{100000}}) {
        const std::wstring tooLong = wideOf(length);
        EXPECT_FALSE(root.set(tooLong, 1));
        EXPECT_EQ(root.status(), Vorn::eFailed);
        EXPECT_FALSE(root.get<int>(tooLong));
        EXPECT_EQ(root.status(), Vorn::eFailed);
        EXPECT_FALSE(root.contains(tooLong));
        EXPECT_FALSE(root.remove(tooLong));
        EXPECT_EQ(root.status(), Vorn::eFailed);
        EXPECT_FALSE(root.group(tooLong).set(L"x", 1));
        EXPECT_EQ(root.status(), Vorn::eFailed);
        EXPECT_EQ(Settings(kRoot, tooLong).status(), Vorn::eFailed);
        EXPECT_FALSE(grid.set(wideOf(length - std::wcslen(L"Drawing/Grid/")), 1));
        EXPECT_EQ(grid.status(), Vorn::eFailed);
    }
    EXPECT_EQ(keysInStore(), before);
}

TEST_F(TypedSettings, AnItemPathOf1022CharactersCanDoEverything)
{
    for (const std::size_t length : {kLongestItem - 1, kLongestItem}) {
        Settings item(kRoot, itemOf(length));
        EXPECT_TRUE(item.set(L"n", 1)) << length;
        EXPECT_EQ(item.get<int>(L"n"), 1) << length;
        EXPECT_TRUE(item.contains(L"n")) << length;
        EXPECT_FALSE(item.contains(L"m"));
        EXPECT_EQ(item.status(), Vorn::eNotFound) << length;
        EXPECT_EQ(item.get<std::wstring>(L"n"), std::nullopt);
        EXPECT_EQ(item.status(), Vorn::eUnsupportedType);
        EXPECT_EQ(namesOf(item.values()), Names{L"n"});
        EXPECT_TRUE(item.remove(L"n"));
        EXPECT_FALSE(item.contains(L"n"));
        EXPECT_EQ(item.status(), Vorn::eNotFound);
        item.set(L"n", 1);
        EXPECT_TRUE(item.removeAll());
        EXPECT_TRUE(item.values().isEmpty());
        EXPECT_EQ(item.status(), Vorn::eNotFound);
    }
}

TEST_F(TypedSettings, AnItemPathOf1023CharactersIsRefused)
{
    Settings item(kRoot, itemOf(kLongestItem + 1));
    EXPECT_FALSE(item.set(L"n", 1));
    EXPECT_EQ(item.status(), Vorn::eFailed);
    EXPECT_FALSE(item.get<int>(L"n"));
    EXPECT_EQ(item.status(), Vorn::eFailed);
    EXPECT_TRUE(item.values().isEmpty());
    EXPECT_EQ(item.status(), Vorn::eFailed);
    EXPECT_FALSE(item.remove(L"n"));
    EXPECT_FALSE(item.removeAll());
    EXPECT_EQ(item.status(), Vorn::eFailed);
}

// Roots and groups ------------------------------------------------------------------------------------------

TEST_F(TypedSettings, EachOfTheNineRootsIsReached)
{
    for (unsigned int root = 0; root <= VornaConfig::UserConfigRoot; ++root) {
        const auto path = static_cast<VornaConfig::Path>(root);
        Settings item(path, L"Typed");
        EXPECT_TRUE(item.set(L"Root", static_cast<int>(root)));
        EXPECT_EQ(item.get<int>(L"Root"), static_cast<int>(root));
        EXPECT_EQ(writtenText(rootOf(path) + L"/Typed/Root"), QStringLiteral("1$%1").arg(root));
    }
}

TEST_F(TypedSettings, ARootItselfIsAnItem)
{
    for (const vorn::Text empty : std::vector<vorn::Text>{L"", nullptr, L"/", L"\\"}) {
        Settings root(kRoot, empty);
        EXPECT_TRUE(root.set(L"Top", 1));
        EXPECT_EQ(Settings(kRoot).get<int>(L"Top"), 1);
        EXPECT_EQ(root.path(), L"");
        root.remove(L"Top");
    }
}

TEST_F(TypedSettings, ARootThatIsNoneIsRefused)
{
    Settings none(kUnknownRoot);
    EXPECT_FALSE(none.set(L"x", 1));
    EXPECT_EQ(none.status(), Vorn::eFailed);
    EXPECT_FALSE(none.get<int>(L"x"));
    EXPECT_EQ(none.status(), Vorn::eFailed);
    EXPECT_TRUE(none.items().isEmpty());
    EXPECT_EQ(none.status(), Vorn::eFailed);
    EXPECT_FALSE(none.removeAll());
    EXPECT_EQ(none.status(), Vorn::eFailed);
}

TEST_F(TypedSettings, AGroupIsTheSubItemAndLeavesItsParent)
{
    Settings colours = grid.group(L"Colours");
    EXPECT_EQ(grid.status(), Vorn::eOk);
    EXPECT_EQ(colours.path(), L"Drawing/Grid/Colours");
    colours.set(L"Minor", L"grey");
    grid.set(L"Minor", 5);
    EXPECT_EQ(gridText(L"Colours/Minor"), QStringLiteral("5$grey"));
    EXPECT_EQ(gridText(L"Minor"), QStringLiteral("1$5"));
    EXPECT_EQ(Settings(kRoot).group(L"\\Drawing\\Grid/").group(L"Colours").get(L"Minor", L""), L"grey");
}

TEST_F(TypedSettings, AGroupOpensNothingOnTheSettingsObject)
{
    const Settings colours = grid.group(L"Colours");
    EXPECT_FALSE(colours.contains(L"Minor"));
    EXPECT_EQ(g_globalSettings->group(), QString());
    const vorn::Items items = grid.items();
    EXPECT_EQ(g_globalSettings->group(), QString());
}

TEST_F(TypedSettings, AGroupOutlivesItsParent)
{
    std::optional<Settings> parent(std::in_place, kRoot, L"Parent");
    Settings child = parent->group(L"Child");
    parent.reset();
    EXPECT_TRUE(child.set(L"x", 1));
    EXPECT_TRUE(isInStore(keyOf(L"Parent/Child/x")));
}

TEST_F(TypedSettings, CopiesAreOnTheSameItem)
{
    Settings copy = grid;
    copy.set(L"Step", 1);
    EXPECT_EQ(grid.get<int>(L"Step"), 1);
    Settings other(VornaConfig::UserConfigRoot);
    other = copy;
    EXPECT_EQ(other.get<int>(L"Step"), 1);
    EXPECT_EQ(copy.path(), L"Drawing/Grid");
}

TEST_F(TypedSettings, WhatWasMovedFromNamesNothing)
{
    Settings(kRoot).set(L"Top", 1);
    Settings taken = std::move(grid);
    EXPECT_TRUE(taken.set(L"Step", 1));
    EXPECT_FALSE(grid.removeAll()); // NOLINT(bugprone-use-after-move) that is what is asked
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.set(L"Step", 2));
    EXPECT_EQ(grid.group(L"Colours").status(), Vorn::eFailed);
    Settings target(VornaConfig::UserConfigRoot);
    target = std::move(taken);
    EXPECT_EQ(target.get<int>(L"Step"), 1);
    EXPECT_FALSE(taken.removeAll()); // NOLINT(bugprone-use-after-move) that is what is asked
    EXPECT_TRUE(isInStore(keyOf(L"Top")));
    Settings& self = target;
    target = std::move(self);
    EXPECT_EQ(target.get<int>(L"Step"), 1);
}

// Ranges ----------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, ItemsAreTheSubItemsAndNothingElse)
{
    for (const wchar_t* const name : {L"B/x", L"A/x", L"C/D/x", L"own"})
        grid.set(name, 1);
    EXPECT_EQ(namesOf(grid.items()), (Names{L"A", L"B", L"C"}));
    EXPECT_EQ(grid.status(), Vorn::eOk);
    EXPECT_EQ(namesOf(Settings(kRoot, L"Drawing").items()), Names{L"Grid"});
}

TEST_F(TypedSettings, ValuesAreTheValuesAndNothingElse)
{
    for (const wchar_t* const name : {L"B", L"A", L"C/x"})
        grid.set(name, 1);
    EXPECT_EQ(namesOf(grid.values()), (Names{L"A", L"B"}));
    EXPECT_EQ(grid.status(), Vorn::eOk);
}

TEST_F(TypedSettings, AnEmptyListIsStatus1)
{
    EXPECT_TRUE(grid.items().isEmpty());
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    grid.set(L"x", 1);
    EXPECT_TRUE(grid.items().isEmpty());
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    EXPECT_FALSE(grid.values().isEmpty());
    EXPECT_EQ(namesOf(grid.items()), Names{});
    EXPECT_EQ(namesOf(grid.group(L"None").values()), Names{});
}

TEST_F(TypedSettings, ValuesAreReadInTheTypeAskedFor)
{
    grid.set(L"Double", 1.5);
    grid.set(L"Int", 7);
    grid.set(L"Text", L"grey");
    std::wstring told;
    for (const auto& value : grid.values()) {
        if (const auto number = value.as<int>())
            told += value.name() + L"=" + std::to_wstring(*number) + L";";
        else if (const auto text = value.as<std::wstring>())
            told += value.name() + L"=" + *text + L";";
        else
            EXPECT_EQ(value.status(), Vorn::eUnsupportedType);
        if (value.name() == L"Double") {
            EXPECT_EQ(value.as<double>(), 1.5);
            EXPECT_EQ(value.status(), Vorn::eOk);
            EXPECT_TRUE(value.as<VornVariant>());
        }
    }
    EXPECT_EQ(told, L"Int=7;Text=grey;");
}

TEST_F(TypedSettings, AValueIsReadWhenItIsAskedForAndMayBeGone)
{
    grid.set(L"A", 1);
    grid.set(L"B", 2);
    std::wstring told;
    for (const auto& value : grid.values()) {
        grid.set(L"A", 10);
        grid.remove(L"B");
        told += value.name() + L"=" + std::to_wstring(value.as<int>().value_or(-1)) + L";";
        EXPECT_EQ(value.status(), value.name() == L"B" ? Vorn::eNotFound : Vorn::eOk);
    }
    EXPECT_EQ(told, L"A=10;B=-1;");
}

TEST_F(TypedSettings, ARangeOutlivesTheObjectThatGaveIt)
{
    grid.set(L"Step", 3);
    grid.set(L"Sub/x", 3);
    int sum = 0;
    for (const auto& value : Settings(kRoot, L"Drawing/Grid").values())
        sum += value.as<int>().value_or(0);
    EXPECT_EQ(sum, 3);
    for (const std::wstring& name : Settings(kRoot).group(L"Drawing").group(L"Grid").items())
        EXPECT_EQ(name, L"Sub");
}

TEST_F(TypedSettings, RangesMayBeNested)
{
    for (const wchar_t* const name : {L"A/x", L"A/y", L"B/z"})
        grid.set(name, 1);
    std::wstring told;
    for (const std::wstring& item : grid.items()) {
        for (const auto& value : grid.group(item).values())
            told += item + L"/" + value.name() + L";";
    }
    EXPECT_EQ(told, L"A/x;A/y;B/z;");
}

TEST_F(TypedSettings, RangesServeTheAlgorithms)
{
    for (const wchar_t* const name : {L"A", L"B", L"C"})
        grid.set(name, std::wcscmp(name, L"B") == 0 ? 2 : 1);
    auto values = grid.values();
    const auto isOne = [](const auto& value) { return value.template as<int>() == 1; };
    EXPECT_EQ(std::count_if(values.begin(), values.end(), isOne), 2);
    EXPECT_TRUE(values.isEmpty());
    EXPECT_EQ(values.begin(), values.end());
    auto again = grid.values();
    auto found = again.begin();
    while (found != again.end() && found->name() != L"B")
        ++found;
    EXPECT_EQ(found->as<int>(), 2);
    found++;
    EXPECT_EQ(found->name(), L"C");
}

TEST_F(TypedSettings, NamesOfAllLengthsAreListed)
{
    Names names;
    for (const std::size_t length : {62, 63, 64, 65, 500, 1000})
        names.push_back(wideOf(length, L'\x444') + L"z");
    for (const std::wstring& name : names) {
        grid.set(name, 1);
        grid.group(name.substr(0, 900)).set(L"x", 1);
    }
    const Names values = namesOf(grid.values());
    EXPECT_EQ(std::set<std::wstring>(values.begin(), values.end()), std::set<std::wstring>(names.begin(), names.end()));
    EXPECT_EQ(namesOf(grid.items()).size(), names.size());
}

TEST_F(TypedSettings, NamesThatNoPathReachesAreListedAndRead)
{
    // By hand: a separator of paths that is none of the settings library, and a name too long for a path.
    putGridText(L"a\\b", "1$1");
    putGridText(wideOf(kLongestBelowRoot), "1$2");
    putGridText(wideOf(kLongestBelowRoot + 1), "1$3");
    std::wstring told;
    for (const auto& value : grid.values()) {
        const std::optional<int> number = value.as<int>();
        told += std::to_wstring(value.name().size()) + L"=" + std::to_wstring(number.value_or(-1)) + L";";
        EXPECT_EQ(value.status(), number ? Vorn::eOk : Vorn::eBufferTooSmall);
    }
    EXPECT_EQ(told, L"3=1;1023=2;1024=-1;");
}

// Removal ---------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, RemovingTakesTheValueOnly)
{
    grid.set(L"Step", 1);
    grid.set(L"Steps", 2);
    grid.set(L"Sub/Step", 3);
    EXPECT_TRUE(grid.remove(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eOk);
    EXPECT_FALSE(grid.contains(L"Step"));
    EXPECT_TRUE(grid.remove(L"Sub/Step"));
    EXPECT_EQ(namesOf(grid.values()), Names{L"Steps"});
    EXPECT_TRUE(grid.items().isEmpty());
}

TEST_F(TypedSettings, RemovingWhatIsNotThereIsStatus0)
{
    EXPECT_TRUE(grid.remove(L"Step"));
    EXPECT_TRUE(grid.removeAll());
    EXPECT_EQ(grid.status(), Vorn::eOk);
}

TEST_F(TypedSettings, RemovingAValueTakesTheSubItemOfItsName)
{
    grid.set(L"Colours", 1);
    grid.set(L"Colours/Minor", 2);
    grid.remove(L"Colours");
    EXPECT_FALSE(grid.contains(L"Colours/Minor"));
}

TEST_F(TypedSettings, RemoveAllTakesEverythingBelowAndNothingBeside)
{
    for (const wchar_t* const name : {L"Step", L"Sub/x", L"Sub/Deep/x"})
        grid.set(name, 1);
    Settings drawing(kRoot, L"Drawing");
    drawing.set(L"Gri", 1);
    drawing.set(L"GridX/x", 1);
    EXPECT_TRUE(grid.removeAll());
    EXPECT_TRUE(grid.values().isEmpty());
    EXPECT_TRUE(grid.items().isEmpty());
    EXPECT_EQ(namesOf(drawing.items()), Names{L"GridX"});
    EXPECT_TRUE(drawing.contains(L"Gri"));
}

TEST_F(TypedSettings, RemoveAllTakesTheParentsValueOfThatName)
{
    Settings drawing(kRoot, L"Drawing");
    drawing.set(L"Grid", 1);
    grid.set(L"Step", 1);
    grid.removeAll();
    EXPECT_FALSE(drawing.contains(L"Grid"));
}

TEST_F(TypedSettings, RemoveAllOfARootLeavesTheOthers)
{
    grid.set(L"Step", 1);
    Settings profile(VornaConfig::CurrentProfileRoot);
    profile.set(L"x", 1);
    EXPECT_TRUE(Settings(kRoot).removeAll());
    EXPECT_FALSE(grid.contains(L"Step"));
    EXPECT_TRUE(profile.contains(L"x"));
}

// Status ----------------------------------------------------------------------------------------------------

TEST_F(TypedSettings, EachObjectKeepsTheStatusOfItsOwnLastCall)
{
    Settings other = grid;
    EXPECT_FALSE(grid.contains(L"None"));
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    EXPECT_EQ(grid.status(), Vorn::eNotFound);
    EXPECT_EQ(other.status(), Vorn::eOk);
    grid.set(L"Step", 1);
    EXPECT_EQ(grid.status(), Vorn::eOk);
}

TEST_F(TypedSettings, WithoutASettingsObjectNothingIsDone)
{
    grid.set(L"Step", 1);
    closeStore();
    EXPECT_FALSE(grid.get<int>(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eMissing);
    EXPECT_FALSE(grid.set(L"Step", 2));
    EXPECT_EQ(grid.status(), Vorn::eMissing);
    EXPECT_FALSE(grid.remove(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.removeAll());
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_TRUE(grid.values().isEmpty());
    EXPECT_EQ(grid.status(), Vorn::eFailed);
}

TEST_F(TypedSettings, AValueOfARangeWithoutASettingsObjectIsStatus5)
{
    grid.set(L"Step", 1);
    auto values = grid.values();
    closeStore();
    EXPECT_FALSE(values.begin()->as<int>());
    EXPECT_EQ(values.begin()->status(), Vorn::eMissing);
}

TEST(TypedSettingsBeforeAStart, EverythingIsRefused)
{
    Settings grid(kRoot, L"Drawing/Grid");
    EXPECT_EQ(grid.status(), Vorn::eOk);
    EXPECT_FALSE(grid.get<int>(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.set(L"Step", 1));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.remove(L"Step"));
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_FALSE(grid.removeAll());
    EXPECT_EQ(grid.status(), Vorn::eFailed);
    EXPECT_TRUE(grid.items().isEmpty());
    EXPECT_EQ(grid.status(), Vorn::eFailed);
}

TEST(TypedSettingsBeforeAStart, AnObjectMadeBeforeServesAfterwards)
{
    Settings grid(kRoot, L"Drawing/Grid");
    ASSERT_EQ(start(), 0U);
    EXPECT_TRUE(grid.set(L"Step", 1));
    EXPECT_EQ(writtenText(kRootText + L"/Drawing/Grid/Step"), QStringLiteral("1$1"));
}

// Threads and memory ----------------------------------------------------------------------------------------

TEST_F(TypedSettings, ThreadsWithObjectsOfTheirOwnLoseNothing)
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 500;
    std::atomic<int> wrong = 0;
    const auto work = [&wrong](int number) {
        Settings own(kRoot, L"Threads");
        Settings group = own.group(std::to_wstring(number));
        for (int i = 0; i < kRounds; ++i) {
            const std::wstring name = L"Value" + std::to_wstring(i);
            wrong += group.set(name, i) && group.get<int>(name) == i ? 0 : 1;
            wrong += own.items().isEmpty() ? 1 : 0;
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    for (int i = 0; i < kThreads; ++i)
        EXPECT_EQ(namesOf(Settings(kRoot, L"Threads").group(std::to_wstring(i)).values()).size(), kRounds);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
/// Pieces of memory that an action takes, once it has been done before.
template <typename Action>
static int allocationsOf(const Action& action)
{
    static_cast<void>(action());
    static_cast<void>(action());
    const int before = g_allocations;
    static_cast<void>(action());
    return g_allocations - before;
}

TEST_F(TypedSettings, AReadTakesTheMemoryOfTheExportedReadAndOfWhatItReturns)
{
    const std::wstring text = wideOf(500);
    grid.set(L"Int", 1);
    grid.set(L"Text", text);
    const auto exported = [](const wchar_t* name) {
        return allocationsOf([name] {
            VornVariant value;
            config().getValue(kRoot, name, value);
        });
    };
    EXPECT_GT(exported(L"Drawing/Grid/Int"), 0);
    EXPECT_EQ(allocationsOf([&] { return grid.get(L"Int", 5); }), exported(L"Drawing/Grid/Int"));
    EXPECT_EQ(allocationsOf([&] { return grid.get<std::wstring>(L"Text"); }), exported(L"Drawing/Grid/Text") + 1);
    EXPECT_EQ(allocationsOf([&] { return grid.get<QString>(L"Text"); }), exported(L"Drawing/Grid/Text") + 1);
    EXPECT_EQ(allocationsOf([&] { return grid.get<int>(L"None"); }), exported(L"Drawing/Grid/None"));
}

TEST_F(TypedSettings, AWriteTakesTheMemoryOfTheExportedWriteOfAReadyValue)
{
    const auto exported = [](const VornVariant& value) {
        return allocationsOf([&value] { config().setValue(kRoot, L"Drawing/Grid/Value", value); });
    };
    EXPECT_GT(exported(int32Value(1)), 0);
    EXPECT_EQ(allocationsOf([&] { grid.set(L"Value", 1); }), exported(int32Value(1)));
    EXPECT_EQ(allocationsOf([&] { grid.set(L"Value", 1.5); }), exported(doubleValue(1.5)));
    const std::wstring small = wideOf(127);
    EXPECT_EQ(allocationsOf([&] { grid.set(L"Value", small); }), exported(textValue(small)));
    const std::wstring large = wideOf(128);
    EXPECT_EQ(allocationsOf([&] { grid.set(L"Value", large); }), exported(textValue(large)) + 1);
}
#endif
