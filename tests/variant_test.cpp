// The tagged value: its block byte by byte, and the conversions between it and the settings file.
#include <array>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/VornVariant.h"
#include "VrUInfo/VornaConfig.h"
#include "scarce_memory.h"
#include "started_store.h"
#include "store_values.h"

using namespace vrtest;

namespace
{

constexpr unsigned int kBadSize = 3;
const std::vector<int> kSingleTextTypes = {5, 7, 8};
const std::vector<int> kDoubleTextTypes = {-1, 0, 1, 2, 3, 4, 6, 9, 100};

VornVariant::VarType type(int number)
{
    return static_cast<VornVariant::VarType>(number);
}

/// What an action threw; null when it threw nothing.
template <typename Action>
std::unique_ptr<VrErrorStatus> raisedBy(const Action& action)
{
    try {
        action();
    } catch (VrErrorStatus* error) { // NOLINT(misc-throw-by-value-catch-by-reference) it is thrown so
        return std::unique_ptr<VrErrorStatus>(error);
    }
    return nullptr;
}

struct BlockDeleter {
    void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<void, BlockDeleter>;

Block allocate(int valueType, std::int32_t size)
{
    return Block(VornVariant::allocateValue(type(valueType), size));
}

std::uint32_t sizeWordOf(const Block& block)
{
    std::uint32_t size = 0;
    std::memcpy(&size, block.get(), sizeof size);
    return size;
}

VornVariant withText(const wchar_t* text, int valueType)
{
    VornVariant value;
    value.setString(text, type(valueType));
    return value;
}

/// The block of single text: size word, characters, terminator.
Bytes singleBlock(const std::wstring& text)
{
    const auto size = static_cast<std::uint32_t>(4 * (text.size() + 1) + 4);
    Bytes block(size);
    std::memcpy(block.data(), &size, sizeof size);
    std::memcpy(block.data() + 4, text.c_str(), size - 4);
    return block;
}

VornVariant readBack(QVariant stored)
{
    VornVariant value;
    QVarToVVar(stored, value);
    return value;
}

VornVariant readBack(const char* text)
{
    return readBack(QVariant(QString::fromUtf8(text)));
}

VornVariant readInto(VornVariant value, const char* text)
{
    QVariant stored(QString::fromUtf8(text));
    QVarToVVar(stored, value);
    return value;
}

} // namespace

// Data model ------------------------------------------------------------------------------------------------

TEST(VariantLayout, FieldsArePackedAndPointerFollowsTag)
{
    EXPECT_EQ(sizeof(VornVariant), 12U);
    EXPECT_EQ(offsetof(VornVariant, type), 0U);
    EXPECT_EQ(offsetof(VornVariant, data), 4U);
    EXPECT_EQ(sizeof(VornVariant::type), 4U);
}

TEST(VariantLayout, TypeNumbersAreFixed)
{
    EXPECT_EQ(VornVariant::kVarNone, 0);
    EXPECT_EQ(VornVariant::kVarInt32, 1);
    EXPECT_EQ(VornVariant::kVarInt64, 2);
    EXPECT_EQ(VornVariant::kVarDouble, 3);
    EXPECT_EQ(VornVariant::kVarBinary, 4);
    EXPECT_EQ(VornVariant::kVarString, 5);
    EXPECT_EQ(VornVariant::kVarText6, 6);
    EXPECT_EQ(VornVariant::kVarText7, 7);
    EXPECT_EQ(VornVariant::kVarText8, 8);
}

TEST(VariantLayout, NewVariantHoldsNothing)
{
    const VornVariant value;
    EXPECT_EQ(typeOf(value), VornVariant::kVarNone);
    EXPECT_EQ(dataOf(value), nullptr);
}

// Blocks ----------------------------------------------------------------------------------------------------

TEST(AllocateValue, SizeOfOneOrMoreDecidesWhateverTheType)
{
    for (const int valueType : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 100}) {
        for (const std::int32_t size : {1, 2, 5, 4096})
            EXPECT_EQ(sizeWordOf(allocate(valueType, size)), static_cast<std::uint32_t>(size) + 4) << valueType;
    }
}

TEST(AllocateValue, NoneWithSizeFiveIsABlockOfNine)
{
    EXPECT_EQ(sizeWordOf(allocate(0, 5)), 9U);
}

TEST(AllocateValue, SizeBelowOneTakesTheSizeOfTheType)
{
    for (const std::int32_t size : {0, -1, INT_MIN}) {
        EXPECT_EQ(allocate(0, size), nullptr);
        EXPECT_EQ(sizeWordOf(allocate(1, size)), 8U);
        EXPECT_EQ(sizeWordOf(allocate(2, size)), 12U);
        EXPECT_EQ(sizeWordOf(allocate(3, size)), 12U);
    }
}

TEST(AllocateValue, SizeBelowOneOfAnyOtherTypeIsStatus3)
{
    for (const int valueType : {-1, 4, 5, 6, 7, 8, 9, 100}) {
        for (const std::int32_t size : {0, -1, INT_MIN}) {
            const auto error = raisedBy([&] { allocate(valueType, size); });
            ASSERT_NE(error, nullptr) << valueType;
            EXPECT_EQ(error->status(), kBadSize);
        }
    }
}

TEST(AllocateValue, FourZeroBytesStandBehindTheBlock)
{
    for (const std::int32_t size : {1, 3, 4, 1000}) {
        const Block block = allocate(4, size);
        const char* const behind = static_cast<const char*>(block.get()) + sizeWordOf(block);
        EXPECT_EQ(std::string(behind, 4), std::string(4, '\0')) << size;
    }
}

// Raised errors ---------------------------------------------------------------------------------------------

namespace
{

class Recorder final : public VrCrashRecorder
{
public:
    Recorder() : m_former(vornSetCrashRecorder(this)) {}
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder() { vornSetCrashRecorder(m_former); }
    void recordError(VrErrorStatus* error) override { m_errors.push_back(error); }
    const std::vector<VrErrorStatus*>& errors() const { return m_errors; }

private:
    VrCrashRecorder* m_former;
    std::vector<VrErrorStatus*> m_errors;
};

/// Says when its scope is left.
class ScopeEnd
{
public:
    explicit ScopeEnd(bool& isLeft) : m_isLeft(isLeft) {}
    ScopeEnd(const ScopeEnd&) = delete;
    ScopeEnd& operator=(const ScopeEnd&) = delete;
    ~ScopeEnd() { m_isLeft = true; }

private:
    bool& m_isLeft;
};

/// Looks whether the scope that raised an error has been left when it is told of it.
class LookingRecorder final : public VrCrashRecorder
{
public:
    explicit LookingRecorder(const bool& isLeft) : m_isLeft(isLeft) {}
    void recordError(VrErrorStatus*) override { m_wasLeft = m_isLeft; }
    bool wasToldBeforehand() const { return m_wasLeft == false; }

private:
    const bool& m_isLeft;
    std::optional<bool> m_wasLeft;
};

} // namespace

TEST(RaisedError, CarriesTwoQuotesAndLineZero)
{
    const auto error = raisedBy([] { allocate(4, 0); });
    ASSERT_NE(error, nullptr);
    EXPECT_STREQ(error->message(), L"\"\"");
    EXPECT_EQ(error->line(), 0);
}

TEST(RaisedError, RecorderIsToldOnceOfTheThrownObject)
{
    const Recorder recorder;
    const auto error = raisedBy([] { allocate(5, 0); });
    ASSERT_EQ(recorder.errors().size(), 1U);
    EXPECT_EQ(recorder.errors().front(), error.get());
}

TEST(RaisedError, RecorderIsToldBeforeTheThrow)
{
    bool isLeft = false;
    LookingRecorder recorder(isLeft);
    vornSetCrashRecorder(&recorder);
    const auto error = raisedBy([&isLeft] {
        const ScopeEnd end(isLeft);
        allocate(5, 0);
    });
    vornSetCrashRecorder(nullptr);
    EXPECT_NE(error, nullptr);
    EXPECT_TRUE(isLeft);
    EXPECT_TRUE(recorder.wasToldBeforehand());
}

TEST(RaisedError, RecorderHearsNothingOfSuccess)
{
    const Recorder recorder;
    withText(L"abc", 5);
    readBack("4$zz");
    EXPECT_TRUE(recorder.errors().empty());
}

// Text ------------------------------------------------------------------------------------------------------

TEST(SetString, SingleTextIsSizeWordCharactersAndTerminator)
{
    for (const int valueType : kSingleTextTypes) {
        const VornVariant value = withText(L"abc", valueType);
        EXPECT_EQ(typeOf(value), valueType);
        EXPECT_EQ(blockOf(dataOf(value)), (Bytes{20, 0, 0, 0, 'a', 0, 0, 0, 'b', 0, 0, 0, 'c', 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(SetString, SingleTextNullOrEmptyIsOneZeroCharacter)
{
    for (const int valueType : kSingleTextTypes) {
        EXPECT_EQ(blockOf(withText(nullptr, valueType).data), (Bytes{8, 0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(blockOf(withText(L"", valueType).data), (Bytes{8, 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(SetString, SingleTextIsNotCut)
{
    const std::wstring text = wideOf(5000, L'\x1F600');
    EXPECT_EQ(blockOf(withText(text.c_str(), 5).data), singleBlock(text));
}

TEST(SetString, DoubleTerminatedTextLosesItsLastCharacter)
{
    for (const int valueType : kDoubleTextTypes) {
        const VornVariant value = withText(L"abc", valueType);
        EXPECT_EQ(typeOf(value), valueType);
        EXPECT_EQ(blockOf(dataOf(value)), (Bytes{20, 0, 0, 0, 'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(SetString, DoubleTerminatedTextOfOneCharacterIsTwoZeros)
{
    EXPECT_EQ(blockOf(withText(L"a", 6).data), (Bytes{12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(SetString, DoubleTerminatedNullOrEmptyHasABlockOfTwelve)
{
    for (const int valueType : kDoubleTextTypes) {
        for (const wchar_t* const text : {static_cast<const wchar_t*>(nullptr), L"", L"\0\0"}) {
            const VornVariant value = withText(text, valueType);
            EXPECT_EQ(sizeWordOf(value), 12U);
            EXPECT_EQ(charactersIn(value)[0], L'\0');
        }
    }
}

TEST(SetString, DoubleTerminatedTextThatBeginsWithZeroIsTwoZeros)
{
    EXPECT_EQ(blockOf(withText(L"\0bc", 6).data), (Bytes{12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(SetString, DoubleTerminatedTextIsCutAt2001Characters)
{
    const auto kept = [](std::size_t length) { return withText(wideOf(length, L'd').c_str(), 6); };
    EXPECT_EQ(sizeWordOf(kept(2001)), 8012U);
    EXPECT_EQ(charactersIn(kept(2001)), wideOf(2000, L'd') + std::wstring(2, L'\0'));
    for (const std::size_t length : {2002U, 2003U, 9000U}) {
        EXPECT_EQ(sizeWordOf(kept(length)), 8016U);
        EXPECT_EQ(charactersIn(kept(length)), wideOf(2001, L'd') + std::wstring(2, L'\0'));
    }
}

TEST(SetString, ReplacesTheContentAndItsType)
{
    VornVariant value = int64Value(-1);
    value.setString(L"x", VornVariant::kVarString);
    EXPECT_EQ(blockOf(dataOf(value)), singleBlock(L"x"));
    value.setString(L"longer than before", VornVariant::kVarText7);
    EXPECT_EQ(typeOf(value), VornVariant::kVarText7);
    EXPECT_EQ(blockOf(dataOf(value)), singleBlock(L"longer than before"));
}

TEST(SetString, OwnTextMayBeGiven)
{
    VornVariant value = textValue(L"own text");
    value.setString(reinterpret_cast<const wchar_t*>(static_cast<char*>(value.data) + 4), VornVariant::kVarText8);
    EXPECT_EQ(blockOf(dataOf(value)), singleBlock(L"own text"));
}

// Copies ----------------------------------------------------------------------------------------------------

TEST(VariantCopy, IsDeep)
{
    VornVariant value = textValue(L"first");
    const VornVariant copy(value);
    EXPECT_NE(dataOf(copy), dataOf(value));
    value.setString(L"second", VornVariant::kVarString);
    EXPECT_EQ(textIn(copy), L"first");
}

TEST(VariantCopy, HasFourZeroBytesBehindItsBlock)
{
    const VornVariant value = binaryValue({1, 2, 3});
    const VornVariant copy(value); // NOLINT(performance-unnecessary-copy-initialization) the copy is the subject
    EXPECT_EQ(std::string(static_cast<const char*>(dataOf(copy)) + 7, 4), std::string(4, '\0'));
}

TEST(VariantCopy, OfNoBlockHasNoBlock)
{
    const VornVariant value = emptyValue(VornVariant::kVarBinary);
    const VornVariant copy(value); // NOLINT(performance-unnecessary-copy-initialization) the copy is the subject
    EXPECT_EQ(typeOf(copy), VornVariant::kVarBinary);
    EXPECT_EQ(dataOf(copy), nullptr);
}

TEST(VariantCopy, AssignmentReplacesTheBlock)
{
    VornVariant value = textValue(L"first");
    const VornVariant other = int32Value(5);
    value = other;
    EXPECT_EQ(blockOf(dataOf(value)), blockOf(dataOf(other)));
    EXPECT_NE(dataOf(value), dataOf(other));
    EXPECT_EQ(typeOf(value), VornVariant::kVarInt32);
}

TEST(VariantCopy, AssignmentToItselfChangesNothing)
{
    VornVariant value = textValue(L"first");
    const void* const block = value.data;
    const VornVariant& same = value;
    value = same;
    EXPECT_EQ(dataOf(value), block);
    EXPECT_EQ(textIn(value), L"first");
}

TEST(VariantCopy, MoveHandsTheBlockOver)
{
    VornVariant value = textValue(L"first");
    const void* const block = value.data;
    VornVariant target = int32Value(1);
    target = std::move(value);
    const VornVariant last(std::move(target));
    EXPECT_EQ(dataOf(last), block);
    for (const VornVariant* const moved : {&value, &target}) { // NOLINT(bugprone-use-after-move)
        EXPECT_EQ(typeOf(*moved), VornVariant::kVarNone);
        EXPECT_EQ(dataOf(*moved), nullptr);
    }
}

// Exhausted memory, impossible sizes ------------------------------------------------------------------------

namespace
{

constexpr std::int32_t kLargestSize = std::numeric_limits<std::int32_t>::max();

/// Runs a probe in a process with little memory; what it printed.
std::string seenWithScarceMemory(const std::string& probe)
{
    const ProcessResult result = Installation::here().run(probe, {}, scarceEnvironment());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return result.out;
}

void printError(const std::unique_ptr<VrErrorStatus>& error, const VornVariant& value)
{
    if (!error)
        std::printf("nothing raised");
    else
        std::printf("status %u %ls line %d, tag %d %s", error->status(), error->message(), error->line(), value.type,
                    value.data ? "with a block" : "without a block");
}

} // namespace

PROBE(AllocateTooMuch)
{
    const Recorder recorder;
    makeMemoryScarce();
    const auto error = raisedBy([] { allocate(4, kLargestSize); });
    printError(error, VornVariant());
    return recorder.errors().size() == 1 && recorder.errors().front() == error.get() ? 0 : 1;
}

TEST(ExhaustedMemory, AllocateValueRaisesStatus6)
{
    EXPECT_EQ(seenWithScarceMemory("AllocateTooMuch"), "status 6 \"\" line 0, tag 0 without a block");
}

PROBE(SetTooMuchText)
{
    const HugePattern text(kTooMuch, L'x');
    VornVariant value = int32Value(1);
    makeMemoryScarce();
    const auto error =
        raisedBy([&] { value.setString(static_cast<const wchar_t*>(text.data()), VornVariant::kVarText7); });
    printError(error, value);
    return 0;
}

TEST(ExhaustedMemory, SetStringKeepsTheNewTagWithoutABlock)
{
    EXPECT_EQ(seenWithScarceMemory("SetTooMuchText"), "status 6 \"\" line 0, tag 7 without a block");
}

PROBE(ReadTooMuchText)
{
    const HugePattern units(kTooMuch / 2, 0x00780078); // each UTF-16 unit becomes a wide character
    QVariant stored(QString::fromRawData(static_cast<const QChar*>(units.data()), static_cast<int>(kTooMuch / 4)));
    VornVariant value = int32Value(1);
    makeMemoryScarce();
    const auto error = raisedBy([&] { QVarToVVar(stored, value); });
    printError(error, value);
    return 0;
}

TEST(ExhaustedMemory, ReadingBackRaisesStatus6WithTheNewTagAndNoBlock)
{
    EXPECT_EQ(seenWithScarceMemory("ReadTooMuchText"), "status 6 \"\" line 0, tag 5 without a block");
}

TEST(ImpossibleText, ThatPassesA32BitSizeRaisesStatus3)
{
    if (kIsThreadSanitized)
        GTEST_SKIP() << "the sanitizer keeps four bytes for each byte that is read";
    constexpr std::size_t kBytes = std::size_t{1} << 31U; // the terminator is what no longer fits
    const HugePattern text(kBytes, L'x');
    for (const int valueType : kSingleTextTypes) {
        VornVariant value = int32Value(1);
        const auto error =
            raisedBy([&] { value.setString(static_cast<const wchar_t*>(text.data()), type(valueType)); });
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->status(), kBadSize);
        EXPECT_EQ(typeOf(value), valueType);
        EXPECT_EQ(dataOf(value), nullptr);
    }
}

TEST(ImpossibleText, IsNoMatterOfTheDoubleTerminatedForm)
{
    constexpr std::size_t kBytes = std::size_t{1} << 31U;
    const HugePattern text(kBytes, L'x');
    EXPECT_EQ(sizeWordOf(withText(static_cast<const wchar_t*>(text.data()), 6)), 8016U);
}

// From the settings file ------------------------------------------------------------------------------------

TEST(ReadBack, TextWithoutADollarIsTextAsAWhole)
{
    for (const char* const text : {"7", "x", "plain text", "12", "1"}) {
        const VornVariant value = readBack(text);
        EXPECT_EQ(typeOf(value), VornVariant::kVarString) << text;
        EXPECT_EQ(blockOf(dataOf(value)), singleBlock(wide(text))) << text;
    }
}

TEST(ReadBack, FirstDollarElsewhereThanSecondMakesTextOfTheWhole)
{
    for (const char* const text : {"12$5", "$", "$5", "$5$x", "$$5", "abc$", "123$", "  $1"}) {
        const VornVariant value = readBack(text);
        EXPECT_EQ(typeOf(value), VornVariant::kVarString) << text;
        EXPECT_EQ(textIn(value), wide(text)) << text;
    }
}

TEST(ReadBack, FirstDollarDecidesAndFurtherOnesArePayload)
{
    EXPECT_EQ(textIn(readBack("5$$")), L"$");
    EXPECT_EQ(textIn(readBack("5$a$b$")), L"a$b$");
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$2$3")), 0);
}

TEST(ReadBack, UnknownTagLeavesTheTargetAsItWas)
{
    for (const char* const text :
         {"0$5", "6$x", "7$x", "8$x", "9$", "a$b", "-$1", "+$1", " $1", "\u0665$x", "\u00FC$"}) {
        VornVariant value = int32Value(42);
        const void* const block = value.data;
        QVariant stored(QString::fromUtf8(text));
        QVarToVVar(stored, value);
        EXPECT_EQ(dataOf(value), block) << text;
        EXPECT_EQ(typeOf(value), VornVariant::kVarInt32) << text;
        EXPECT_EQ(numberIn<std::int32_t>(value), 42) << text;
    }
}

TEST(ReadBack, CharacterBeyondTheBmpIsNoTag)
{
    const VornVariant value = readBack("\U0001F600$5"); // two units before the dollar
    EXPECT_EQ(typeOf(value), VornVariant::kVarString);
    EXPECT_EQ(textIn(value), L"\U0001F600$5");
}

TEST(ReadBack, Tag1IsA32BitInteger)
{
    const VornVariant value = readBack("1$-5");
    EXPECT_EQ(typeOf(value), VornVariant::kVarInt32);
    EXPECT_EQ(blockOf(dataOf(value)), (Bytes{8, 0, 0, 0, 0xFB, 0xFF, 0xFF, 0xFF}));
}

TEST(ReadBack, Tag1KeepsTheLow32Bits)
{
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$4294967297")), 1);
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$2147483647")), INT_MAX);
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$2147483648")), INT_MIN);
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$-2147483649")), INT_MAX);
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$9223372036854775807")), -1);
}

TEST(ReadBack, NumbersAreReadAsTheSettingsLibraryReadsThem)
{
    const std::vector<const char*> texts = {"",
                                            "0",
                                            "-",
                                            "+5",
                                            "-0",
                                            " 5",
                                            "5 ",
                                            "\t7\n",
                                            "--5",
                                            "5-",
                                            "abc",
                                            "0x10",
                                            "1,000",
                                            "1e3",
                                            "1.5",
                                            "000012",
                                            "\u0663",
                                            "5\u00A0",
                                            "999999999999999999",
                                            "1000000000000000000",
                                            "-999999999999999999",
                                            "-1000000000000000000",
                                            "9223372036854775807",
                                            "9223372036854775808",
                                            "-9223372036854775808",
                                            "-9223372036854775809",
                                            "00000000000000000000000000000000000000001",
                                            "-00000000000000000000000000000000000000001"};
    for (const char* const text : texts) {
        const VornVariant value = readBack(("2$" + std::string(text)).c_str());
        EXPECT_EQ(typeOf(value), VornVariant::kVarInt64);
        EXPECT_EQ(sizeWordOf(value), 12U);
        EXPECT_EQ(numberIn<std::int64_t>(value), QString::fromUtf8(text).toLongLong()) << text;
    }
}

TEST(ReadBack, TextThatIsNoNumberIsZero)
{
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$abc")), 0);
    EXPECT_EQ(numberIn<std::int32_t>(readBack("1$")), 0);
    EXPECT_EQ(numberIn<std::int64_t>(readBack("2$9223372036854775808")), 0);
}

TEST(ReadBack, Tag2IsA64BitInteger)
{
    const VornVariant value = readBack("2$-2");
    EXPECT_EQ(blockOf(dataOf(value)), (Bytes{12, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(ReadBack, IntegerOfTheSameTagReusesTheBlockAsItIs)
{
    VornVariant value;
    value.data = VornVariant::allocateValue(VornVariant::kVarInt32, 20);
    value.type = VornVariant::kVarInt32;
    const void* const block = value.data;
    QVariant stored(QStringLiteral("1$77"));
    QVarToVVar(stored, value);
    EXPECT_EQ(dataOf(value), block);
    EXPECT_EQ(sizeWordOf(value), 24U);
    EXPECT_EQ(numberIn<std::int32_t>(value), 77);
}

TEST(ReadBack, Integer64OfTheSameTagReusesTheBlockAsItIs)
{
    VornVariant value = int64Value(1);
    const void* const block = value.data;
    QVariant stored(QStringLiteral("2$78"));
    QVarToVVar(stored, value);
    EXPECT_EQ(dataOf(value), block);
    EXPECT_EQ(numberIn<std::int64_t>(value), 78);
}

TEST(ReadBack, IntegerOfAnotherTagOrWithoutABlockGetsANewBlock)
{
    EXPECT_EQ(blockOf(readInto(int64Value(-1), "1$1").data), (Bytes{8, 0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(blockOf(readInto(textValue(L"long enough text"), "1$1").data), (Bytes{8, 0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(sizeWordOf(readInto(int32Value(1), "2$1")), 12U);
    EXPECT_EQ(sizeWordOf(readInto(emptyValue(VornVariant::kVarInt32), "1$1")), 8U);
    EXPECT_EQ(sizeWordOf(readInto(emptyValue(VornVariant::kVarInt64), "2$1")), 12U);
}

TEST(ReadBack, DoubleArrivesAsItsEightBytes)
{
    const VornVariant value = readBack("3$000000000000f03f");
    EXPECT_EQ(typeOf(value), VornVariant::kVarBinary);
    EXPECT_EQ(blockOf(dataOf(value)), (Bytes{12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    EXPECT_EQ(numberIn<double>(value), 1.0);
}

TEST(ReadBack, BinaryIsItsBytes)
{
    const VornVariant value = readBack("4$00fF1a");
    EXPECT_EQ(typeOf(value), VornVariant::kVarBinary);
    EXPECT_EQ(blockOf(dataOf(value)), (Bytes{7, 0, 0, 0, 0x00, 0xFF, 0x1A}));
}

TEST(ReadBack, BytesWithoutAnyDigitHaveNoBlock)
{
    for (const char* const text : {"3$", "4$", "3$zz", "4$-- --", "4$\u00FC"}) {
        const VornVariant value = readInto(textValue(L"before"), text);
        EXPECT_EQ(typeOf(value), VornVariant::kVarBinary) << text;
        EXPECT_EQ(dataOf(value), nullptr) << text;
    }
}

TEST(ReadBack, BadHexDigitsAreSkipped)
{
    for (const char* const text : {"a", "abc", "0x12", "1 2 3 4", "z1y2", "12\u00FC34", "0g0"}) {
        const QByteArray expected = QByteArray::fromHex(QByteArray(text));
        const VornVariant value = readBack(("4$" + std::string(text)).c_str());
        EXPECT_EQ(payloadOf(value), Bytes(expected.begin(), expected.end())) << text;
    }
}

TEST(ReadBack, EmptyTextIsABlockOfEight)
{
    for (const QVariant& stored :
         {QVariant(QStringLiteral("5$")), QVariant(QString()), QVariant(), QVariant(QStringLiteral(""))}) {
        const VornVariant value = readBack(stored);
        EXPECT_EQ(typeOf(value), VornVariant::kVarString);
        EXPECT_EQ(blockOf(dataOf(value)), (Bytes{8, 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(ReadBack, TextIsItsCharactersWithTerminator)
{
    const VornVariant value = readInto(int32Value(1), "5$Default");
    EXPECT_EQ(typeOf(value), VornVariant::kVarString);
    EXPECT_EQ(blockOf(dataOf(value)), singleBlock(L"Default"));
}

TEST(ReadBack, CharacterBeyondTheBmpIsOneWideCharacter)
{
    EXPECT_EQ(blockOf(readBack("5$a\U0001F600b").data), singleBlock(L"a\U0001F600b"));
}

TEST(ReadBack, LoneSurrogatesAndMarksSurvive)
{
    const std::array<QChar, 6> units = {QChar(0xFEFF), QChar(0xD83D), QChar(0x78),
                                        QChar(0xDE00), QChar(0xD83D), QChar(0xD83D)};
    const VornVariant value = readBack(QVariant(QString(units.data(), units.size())));
    const std::vector<wchar_t> expected = {0xFEFF, 0xD83D, 'x', 0xDE00, 0xD83D, 0xD83D};
    EXPECT_EQ(blockOf(dataOf(value)), singleBlock(std::wstring(expected.begin(), expected.end())));
}

TEST(ReadBack, ZeroCharacterInsideATextIsCounted)
{
    const VornVariant value = readBack(QVariant(QString(QLatin1String("5$a\0b", 5))));
    EXPECT_EQ(sizeWordOf(value), 20U);
    EXPECT_EQ(charactersIn(value), std::wstring(L"a\0b\0", 4));
}

TEST(ReadBack, WhatIsNoTextIsTakenAsItsText)
{
    EXPECT_EQ(textIn(readBack(QVariant(42))), L"42");
    EXPECT_EQ(textIn(readBack(QVariant(true))), L"true");
    EXPECT_EQ(numberIn<std::int32_t>(readBack(QVariant(QByteArray("1$42")))), 42);
    EXPECT_EQ(textIn(readBack(QVariant(QStringList{QStringLiteral("5$a"), QStringLiteral("b")}))), L"");
}

TEST(ReadBack, BlocksHaveFourZeroBytesBehind)
{
    for (const char* const text : {"1$1", "2$1", "3$000000000000f03f", "4$010203", "5$", "5$abc"}) {
        const VornVariant value = readBack(text);
        const char* const behind = static_cast<const char*>(value.data) + sizeWordOf(value);
        EXPECT_EQ(std::string(behind, 4), std::string(4, '\0')) << text;
    }
}

// To the settings file --------------------------------------------------------------------------------------

class WriteValue : public StartedStore
{
protected:
    static unsigned int write(const VornVariant& value) { return WriteValueToReg(L"Item", L"Name", value); }
    static QString textOnDisk(const VornVariant& value)
    {
        EXPECT_EQ(write(value), 0U);
        return writtenText("Item/Name");
    }
    /// The line of the value in the settings file.
    static std::string lineOnDisk(const VornVariant& value)
    {
        EXPECT_EQ(write(value), 0U);
        flush();
        const std::string file = readFile(Installation::here().settingsFile());
        const std::size_t begin = file.find("\nName=") + 1;
        return begin == 0 ? "" : file.substr(begin, file.find('\n', begin) - begin);
    }
    static QString hexOf(const Bytes& bytes)
    {
        return QString::fromLatin1(
            QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())).toHex());
    }
};

TEST_F(WriteValue, Int32IsWrittenInDecimal)
{
    EXPECT_EQ(textOnDisk(int32Value(-5)), QStringLiteral("1$-5"));
    EXPECT_EQ(textOnDisk(int32Value(0)), QStringLiteral("1$0"));
    EXPECT_EQ(textOnDisk(int32Value(42)), QStringLiteral("1$42"));
    EXPECT_EQ(textOnDisk(int32Value(INT_MAX)), QStringLiteral("1$2147483647"));
    EXPECT_EQ(textOnDisk(int32Value(INT_MIN)), QStringLiteral("1$-2147483648"));
}

TEST_F(WriteValue, Int64IsWrittenInDecimal)
{
    EXPECT_EQ(textOnDisk(int64Value(-1)), QStringLiteral("2$-1"));
    EXPECT_EQ(textOnDisk(int64Value(10)), QStringLiteral("2$10"));
    EXPECT_EQ(textOnDisk(int64Value(LLONG_MAX)), QStringLiteral("2$9223372036854775807"));
    EXPECT_EQ(textOnDisk(int64Value(LLONG_MIN)), QStringLiteral("2$-9223372036854775808"));
}

TEST_F(WriteValue, DoubleIsWrittenAsItsBytes)
{
    EXPECT_EQ(textOnDisk(doubleValue(1.0)), QStringLiteral("3$000000000000f03f"));
    EXPECT_EQ(textOnDisk(doubleValue(-0.0)), QStringLiteral("3$0000000000000080"));
    EXPECT_EQ(textOnDisk(doubleValue(std::numeric_limits<double>::infinity())), QStringLiteral("3$000000000000f07f"));
}

TEST_F(WriteValue, BinaryIsWrittenWithTheFourBytesBehindIt)
{
    EXPECT_EQ(textOnDisk(binaryValue({0xDE, 0xAD})), QStringLiteral("4$dead00000000"));
    EXPECT_EQ(textOnDisk(binaryValue({0})), QStringLiteral("4$0000000000"));
}

TEST_F(WriteValue, BinaryGrowsByFourBytesEachTimeItIsWrittenAndReadBack)
{
    VornVariant value = binaryValue({1, 2, 3});
    Bytes expected = {1, 2, 3};
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(write(value), 0U);
        ASSERT_EQ(config().getValue(L"Item", L"Name", value), 0U);
        expected.resize(expected.size() + 4);
        EXPECT_EQ(payloadOf(value), expected);
        EXPECT_EQ(writtenText("Item/Name"), QStringLiteral("4$") + hexOf(expected));
    }
}

TEST_F(WriteValue, DoubleGrowsOnlyOnceItIsBinary)
{
    VornVariant value = doubleValue(1.0);
    ASSERT_EQ(write(value), 0U);
    ASSERT_EQ(config().getValue(L"Item", L"Name", value), 0U);
    EXPECT_EQ(sizeWordOf(value), 12U);
    EXPECT_EQ(textOnDisk(value), QStringLiteral("4$000000000000f03f00000000"));
}

TEST_F(WriteValue, TextIsWrittenUnescaped)
{
    EXPECT_EQ(textOnDisk(textValue(L"Default")), QStringLiteral("5$Default"));
    EXPECT_EQ(textOnDisk(textValue(L"")), QStringLiteral("5$"));
    EXPECT_EQ(textOnDisk(textValue(L"$1%2%1\\n\"a, b\"; =")), QStringLiteral("5$$1%2%1\\n\"a, b\"; ="));
    EXPECT_EQ(lineOnDisk(textValue(L"Default")), "Name=5$Default");
}

TEST_F(WriteValue, MissingBlockIsWrittenAsZeroOrEmpty)
{
    EXPECT_EQ(textOnDisk(emptyValue(VornVariant::kVarInt32)), QStringLiteral("1$0"));
    EXPECT_EQ(textOnDisk(emptyValue(VornVariant::kVarInt64)), QStringLiteral("2$0"));
    EXPECT_EQ(textOnDisk(emptyValue(VornVariant::kVarDouble)), QStringLiteral("3$0000000000000000"));
    EXPECT_EQ(textOnDisk(emptyValue(VornVariant::kVarString)), QStringLiteral("5$"));
}

TEST_F(WriteValue, BinaryWithoutABlockIsWrittenAsInvalid)
{
    EXPECT_EQ(lineOnDisk(emptyValue(VornVariant::kVarBinary)), "Name=@Invalid()");
}

TEST_F(WriteValue, BinaryWithSizeWordZeroIsWrittenAsInvalid)
{
    VornVariant value = binaryValue({1, 2, 3});
    std::memset(value.data, 0, 4);
    EXPECT_EQ(lineOnDisk(value), "Name=@Invalid()");
}

TEST_F(WriteValue, EveryOtherTagIsWrittenAsInvalid)
{
    for (const int valueType : {-1, 0, 6, 7, 8, 9, 100}) {
        ASSERT_EQ(write(int32Value(1)), 0U);
        EXPECT_EQ(lineOnDisk(emptyValue(type(valueType))), "Name=@Invalid()") << valueType;
    }
    for (const int valueType : {6, 7, 8})
        EXPECT_EQ(lineOnDisk(withText(L"abc", valueType)), "Name=@Invalid()") << valueType;
}

TEST_F(WriteValue, InvalidValueReadsBackAsAbsent)
{
    ASSERT_EQ(write(VornVariant()), 0U);
    VornVariant value = int32Value(9);
    EXPECT_EQ(config().getValue(L"Item", L"Name", value), 1U);
    EXPECT_EQ(numberIn<std::int32_t>(value), 9);
}

TEST_F(WriteValue, WrittenValueReplacesTheOneBefore)
{
    ASSERT_EQ(write(int32Value(1)), 0U);
    EXPECT_EQ(textOnDisk(textValue(L"two")), QStringLiteral("5$two"));
}

TEST_F(WriteValue, NullArgumentsAreStatus5)
{
    EXPECT_EQ(WriteValueToReg(nullptr, L"Name", int32Value(1)), 5U);
    EXPECT_EQ(WriteValueToReg(L"Item", nullptr, int32Value(1)), 5U);
    EXPECT_EQ(WriteValueToReg(nullptr, nullptr, int32Value(1)), 5U);
}

TEST_F(WriteValue, WithoutASettingsObjectIsStatus5)
{
    closeStore();
    EXPECT_EQ(write(int32Value(1)), 5U);
}

TEST_F(WriteValue, EmptyKeyIsTheTopLevel)
{
    ASSERT_EQ(WriteValueToReg(L"", L"Top", int32Value(1)), 0U);
    EXPECT_EQ(writtenText("Top"), QStringLiteral("1$1"));
}

TEST_F(WriteValue, KeyIsNotNormalised)
{
    ASSERT_EQ(WriteValueToReg(L"A\\B", L"Name", int32Value(1)), 0U);
    EXPECT_EQ(writtenText("A\\B/Name"), QStringLiteral("1$1"));
    EXPECT_TRUE(writtenText("A/B/Name").isNull());
    VornVariant value;
    EXPECT_EQ(config().getValue(L"A\\B", L"Name", value), 1U);
}

TEST_F(WriteValue, KeyMayHaveAnyLength)
{
    const std::wstring key = longPath(5000);
    ASSERT_EQ(WriteValueToReg(key.c_str(), L"Name", int32Value(1)), 0U);
    EXPECT_EQ(writtenText(key + L"/Name"), QStringLiteral("1$1"));
}

TEST_F(WriteValue, NameMayHaveAnyLengthAndCarryASubPath)
{
    const std::wstring name = longPath(5000);
    ASSERT_EQ(WriteValueToReg(L"Item", name.c_str(), int32Value(1)), 0U);
    EXPECT_EQ(writtenText(L"Item/" + name), QStringLiteral("1$1"));
}

TEST_F(WriteValue, EmptyNameAndSeparatorsWriteNothing)
{
    const std::vector<std::string> before = keysInStore();
    for (const wchar_t* const name : {L"", L"/", L"//"})
        EXPECT_EQ(WriteValueToReg(L"Item", name, int32Value(1)), 0U);
    EXPECT_EQ(keysInStore(), before);
}

TEST_F(WriteValue, GroupThatTheHostHasOpenStaysOpen)
{
    g_globalSettings->beginGroup(QStringLiteral("Open"));
    EXPECT_EQ(write(int32Value(1)), 0U);
    EXPECT_EQ(g_globalSettings->group(), QStringLiteral("Open"));
    g_globalSettings->endGroup();
    EXPECT_EQ(writtenText("Open/Item/Name"), QStringLiteral("1$1"));
}

// Through the file ------------------------------------------------------------------------------------------

namespace
{

const std::vector<std::wstring>& difficultTexts()
{
    static const std::vector<std::wstring> texts = {
        L"",
        L" leading and trailing ",
        L"a, b;c=d[e]#f%g",
        L"quotes \" and ' and \\ and \\\\ and \\x41",
        L"line\nnext\r\n\ttab\x01\x7F",
        L"@Invalid()",
        L"\u00FC\u20AC\uFEFF\uFFFD",
        L"\uFEFFfirst",
        L"\U0001F600\U0010FFFF",
        {L'a', static_cast<wchar_t>(0xD83D), L'b', static_cast<wchar_t>(0xDE00)},
    };
    return texts;
}

std::wstring nameOf(std::size_t index)
{
    return L"Text" + std::to_wstring(index);
}

} // namespace

PROBE(WriteDifficultTexts)
{
    vornConfig()->initRegObject(nullptr, nullptr);
    for (std::size_t i = 0; i < difficultTexts().size(); ++i)
        WriteValueToReg(L"Texts", nameOf(i).c_str(), textValue(difficultTexts()[i]));
    return 0;
}

PROBE(CompareDifficultTexts)
{
    vornConfig()->initRegObject(nullptr, nullptr);
    for (std::size_t i = 0; i < difficultTexts().size(); ++i) {
        VornVariant value;
        if (vornConfig()->getValue(L"Texts", nameOf(i).c_str(), value) != 0 || textIn(value) != difficultTexts()[i])
            std::printf("%zu ", i);
    }
    return 0;
}

TEST(ThroughTheFile, EveryTextSurvivesIntoTheNextProcess)
{
    ASSERT_EQ(Installation::here().run("WriteDifficultTexts").exitCode, 0);
    const ProcessResult result = Installation::here().run("CompareDifficultTexts");
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "");
}

TEST(ThroughTheFile, WhatIsNoCodePointBecomesTheReplacementCharacter)
{
    vornConfig()->initRegObject(nullptr, nullptr);
    const std::wstring text = {L'a', static_cast<wchar_t>(0x110000), static_cast<wchar_t>(0xFFFFFFFF)};
    ASSERT_EQ(WriteValueToReg(L"Item", L"Name", textValue(text)), 0U);
    VornVariant value;
    ASSERT_EQ(vornConfig()->getValue(L"Item", L"Name", value), 0U);
    EXPECT_EQ(textIn(value), L"a\uFFFD\uFFFD");
}

class HandWrittenFile : public testing::Test
{
protected:
    static void writeLine(const std::string& line)
    {
        const auto file = Installation::here().settingsFile();
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "[Item]\n" << line << "\n";
        vornConfig()->initRegObject(nullptr, nullptr);
    }
    static unsigned int read(VornVariant& value) { return vornConfig()->getValue(L"Item", L"Name", value); }
    /// The text of the value of that line.
    static std::wstring textOf(const std::string& line)
    {
        writeLine(line);
        VornVariant value;
        EXPECT_EQ(read(value), 0U);
        EXPECT_EQ(typeOf(value), VornVariant::kVarString);
        return textIn(value);
    }
};

TEST_F(HandWrittenFile, QuotedTextKeepsItsCommas)
{
    EXPECT_EQ(textOf("Name=\"5$a, b; c\""), L"a, b; c");
}

TEST_F(HandWrittenFile, ListOfTextsReadsAsAnEmptyText)
{
    EXPECT_EQ(textOf("Name=5$a, 5$b"), L"");
}

TEST_F(HandWrittenFile, EscapesAreTheSettingsLibrarysBusiness)
{
    EXPECT_EQ(textOf("Name=5$a\\nb\\x20ac\\\\"), L"a\nb\u20AC\\");
}

TEST_F(HandWrittenFile, TextWithoutAMarkIsText)
{
    EXPECT_EQ(textOf("Name=7"), L"7");
}

TEST_F(HandWrittenFile, NumberStoredByAnotherProgramIsText)
{
    EXPECT_EQ(textOf("Name=@Variant(\\0\\0\\0\\x2\\0\\0\\0*)"), L"42");
}

TEST_F(HandWrittenFile, BytesStoredByAnotherProgramAreReadAsText)
{
    writeLine("Name=@ByteArray(1$42)");
    VornVariant value;
    ASSERT_EQ(read(value), 0U);
    EXPECT_EQ(typeOf(value), VornVariant::kVarInt32);
    EXPECT_EQ(numberIn<std::int32_t>(value), 42);
}

TEST_F(HandWrittenFile, InvalidValueIsAbsent)
{
    writeLine("Name=@Invalid()");
    VornVariant value;
    EXPECT_EQ(read(value), 1U);
}

TEST_F(HandWrittenFile, EmptyValueIsWhatTheSettingsLibrarySays)
{
    writeLine("Name=");
    VornVariant value;
    const bool isNull =
        QSettings(g_globalSettings->fileName(), QSettings::NativeFormat).value(QStringLiteral("Item/Name")).isNull();
    EXPECT_EQ(read(value), isNull ? 1U : 0U);
    EXPECT_EQ(textIn(value), L"");
}

TEST_F(HandWrittenFile, UnknownTagIsFoundButChangesNothing)
{
    writeLine("Name=6$x");
    VornVariant value = int32Value(3);
    EXPECT_EQ(read(value), 0U);
    EXPECT_EQ(typeOf(value), VornVariant::kVarInt32);
    EXPECT_EQ(numberIn<std::int32_t>(value), 3);
}

TEST_F(HandWrittenFile, KeyWithoutAValueIsWhatTheSettingsLibrarySays)
{
    writeLine("Name");
    VornVariant value;
    const bool isNull =
        QSettings(g_globalSettings->fileName(), QSettings::NativeFormat).value(QStringLiteral("Item/Name")).isNull();
    EXPECT_EQ(read(value), isNull ? 1U : 0U);
}
