// The installation's INI files.
#include <array>
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "long_path.h"
#include "start_words.h"
#include "unprivileged.h"

using namespace vrtest;

namespace
{

constexpr wchar_t kCanary = L'\u2620';
constexpr wchar_t kIni[] = L"VORNA.ini";
constexpr std::size_t kLongestIniPath = 1022;

std::string textOf(const VornVariant& value)
{
    std::uint32_t bytes = 0;
    std::memcpy(&bytes, value.data, sizeof bytes);
    std::wstring text((bytes - sizeof bytes) / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), static_cast<const char*>(value.data) + sizeof bytes, bytes - sizeof bytes);
    EXPECT_EQ(text.back(), L'\0');
    text.pop_back();
    return utf8(text);
}

/// Members of a variant are not aligned; they are copied before anything refers to them.
VornVariant::VarType typeOf(const VornVariant& value)
{
    return value.type;
}

const void* blockOf(const VornVariant& value)
{
    return value.data;
}

std::int32_t numberOf(const VornVariant& value)
{
    std::int32_t number = 0;
    std::memcpy(&number, static_cast<const char*>(value.data) + sizeof number, sizeof number);
    return number;
}

std::uint32_t sizeWordOf(const VornVariant& value)
{
    std::uint32_t size = 0;
    std::memcpy(&size, value.data, sizeof size);
    return size;
}

/// A buffer with canaries from its end on.
class GuardedBuffer
{
public:
    explicit GuardedBuffer(std::size_t capacity) : m_capacity(capacity), m_room(capacity + kGuards, kCanary) {}
    wchar_t* data() { return m_room.data(); }
    std::string text() const { return utf8(m_room.substr(0, m_room.find(L'\0'))); }
    /// Characters from the first that differs to the end of the guards that still are what they were.
    bool isUntouchedFrom(std::size_t position) const
    {
        return m_room.find_first_not_of(kCanary, position) == std::wstring::npos;
    }
    bool isUntouched() const { return isUntouchedFrom(0); }
    bool areGuardsWhole() const { return isUntouchedFrom(m_capacity); }

private:
    static constexpr std::size_t kGuards = 16;
    std::size_t m_capacity;
    std::wstring m_room;
};

class IniTest : public testing::Test
{
protected:
    IniTest() : m_here(Installation::here()), m_config(*vornConfig()) {}

    void writeIni(const std::string& bytes) const { m_here.write("VORNA.ini", bytes); }
    unsigned int readString(GuardedBuffer& buffer, unsigned int size) const
    {
        return m_config.readIniString(L"Product", L"Key", buffer.data(), size, kIni);
    }
    unsigned int readInt(int& value) const { return m_config.readIniInt(L"Product", L"Key", value, kIni); }
    unsigned int getValue(VornVariant& value, VornVariant::VarType type) const
    {
        return m_config.getIniValue(L"Product", L"Key", value, type, kIni);
    }

    const Installation& m_here;
    VornaConfig& m_config;
};

} // namespace

/// Reads the key "Key" of section "Product" of "VORNA.ini" both ways, and prints what came.
PROBE(read)
{
    std::array<wchar_t, 64> text{};
    int number = 77;
    const unsigned int textStatus = vornConfig()->readIniString(L"Product", L"Key", text.data(), text.size(), kIni);
    const unsigned int numberStatus = vornConfig()->readIniInt(L"Product", L"Key", number, kIni);
    std::cout << textStatus << " '" << utf8(text.data()) << "' " << numberStatus << " " << number << "\n";
    return 0;
}

/// The status of the path of an INI file of that name, its length, and whether nothing behind the buffer changed.
PROBE(path)
{
    GuardedBuffer path(kVornPathCapacity);
    const unsigned int status = vornConfig()->getIniFilePath(path.data(), wide(arguments.at(0)).c_str());
    std::cout << status << " " << path.text().size() << " " << path.areGuardsWhole() << "\n";
    return 0;
}

namespace
{

// ---- The path

TEST_F(IniTest, PathIsTheProgramDirectoryAndTheName)
{
    GuardedBuffer path(kVornPathCapacity);
    EXPECT_EQ(m_config.getIniFilePath(path.data(), kIni), 0U);
    EXPECT_EQ(path.text(), (m_here.programDir() / "VORNA.ini").string());
    EXPECT_TRUE(path.areGuardsWhole());
}

TEST_F(IniTest, PathDoesNotAskForTheFile)
{
    GuardedBuffer path(kVornPathCapacity);
    EXPECT_EQ(m_config.getIniFilePath(path.data(), L"no such file"), 0U);
}

TEST_F(IniTest, PathOf1022CharactersIsGiven)
{
    const std::size_t room = kLongestIniPath - m_here.programDir().string().size() - 1;
    GuardedBuffer path(kVornPathCapacity);
    EXPECT_EQ(m_config.getIniFilePath(path.data(), wideOf(room).c_str()), 0U);
    EXPECT_EQ(path.text().size(), kLongestIniPath);
    EXPECT_TRUE(path.areGuardsWhole());
}

TEST_F(IniTest, PathOf1023CharactersGives7)
{
    const std::size_t room = kLongestIniPath - m_here.programDir().string().size();
    GuardedBuffer path(kVornPathCapacity);
    EXPECT_EQ(m_config.getIniFilePath(path.data(), wideOf(room).c_str()), 7U);
    EXPECT_TRUE(path.areGuardsWhole());
}

TEST_F(IniTest, PathOfAVeryLongNameGives7)
{
    GuardedBuffer path(kVornPathCapacity);
    EXPECT_EQ(m_config.getIniFilePath(path.data(), wideOf(100000).c_str()), 7U);
    EXPECT_TRUE(path.areGuardsWhole());
}

TEST_F(IniTest, NullPathOrNameGives7)
{
    GuardedBuffer path(kVornPathCapacity);
    EXPECT_EQ(m_config.getIniFilePath(nullptr, kIni), 7U);
    EXPECT_EQ(m_config.getIniFilePath(path.data(), nullptr), 7U);
}

TEST_F(IniTest, PathIsGivenInLongProgramDirectories)
{
    // With the separator 1013 characters, and 9 of the name.
    EXPECT_EQ(LongInstallation(1012).run("path", {"VORNA.ini"}).out, "0 1022 1\n");
    EXPECT_EQ(LongInstallation(1013).run("path", {"VORNA.ini"}).out, "7 1014 1\n");
}

TEST_F(IniTest, PathIsEmptyAndStatus7WithoutAProgramDirectory)
{
    // The executable's own path, "/host" behind the directory, is too long to be told.
    EXPECT_EQ(LongInstallation(1017).run("path", {"x"}).out, "0 1019 1\n");
    EXPECT_EQ(LongInstallation(1018).run("path", {"x"}).out, "7 0 1\n");
}

// ---- Texts

TEST_F(IniTest, StringIsRead)
{
    writeIni("[Product]\nKey=some text\n");
    GuardedBuffer buffer(64);
    EXPECT_EQ(readString(buffer, 64), 0U);
    EXPECT_EQ(buffer.text(), "some text");
    EXPECT_TRUE(buffer.areGuardsWhole());
}

TEST_F(IniTest, StringBeyondTheBmpIsRead)
{
    writeIni("[Product]\nKey=Größe 図 \U0001F600\n");
    GuardedBuffer buffer(64);
    EXPECT_EQ(readString(buffer, 64), 0U);
    EXPECT_EQ(buffer.text(), "Größe 図 \U0001F600");
}

TEST_F(IniTest, StringOfTwoLessThanTheSizeIsReadWhole)
{
    writeIni("[Product]\nKey=12345678\n");
    GuardedBuffer buffer(10);
    EXPECT_EQ(readString(buffer, 10), 0U);
    EXPECT_EQ(buffer.text(), "12345678");
}

TEST_F(IniTest, LongerStringIsCutAndLastCharacterOfTheBufferNeverWritten)
{
    writeIni("[Product]\nKey=123456789\n");
    GuardedBuffer buffer(10);
    EXPECT_EQ(readString(buffer, 10), 0U);
    EXPECT_EQ(buffer.text(), "12345678");
    EXPECT_TRUE(buffer.isUntouchedFrom(9));
}

TEST_F(IniTest, StringSizeBelow2Gives1AndTouchesNothing)
{
    writeIni("[Product]\nKey=text\n");
    GuardedBuffer buffer(4);
    EXPECT_EQ(readString(buffer, 0), 1U);
    EXPECT_EQ(readString(buffer, 1), 1U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(IniTest, StringSize2HasRoomForTheTerminatorOnly)
{
    writeIni("[Product]\nKey=text\n");
    GuardedBuffer buffer(2);
    EXPECT_EQ(readString(buffer, 2), 1U);
    EXPECT_TRUE(buffer.isUntouchedFrom(1));
}

TEST_F(IniTest, StringSize3ReceivesOneCharacter)
{
    writeIni("[Product]\nKey=text\n");
    GuardedBuffer buffer(3);
    EXPECT_EQ(readString(buffer, 3), 0U);
    EXPECT_EQ(buffer.text(), "t");
    EXPECT_TRUE(buffer.isUntouchedFrom(2));
}

TEST_F(IniTest, StringWithNullOrEmptyNamesGives1)
{
    writeIni("[Product]\nKey=text\n[]\n=text\n");
    GuardedBuffer buffer(64);
    for (const auto& [section, key] : std::vector<std::pair<const wchar_t*, const wchar_t*>>{
             {nullptr, L"Key"}, {L"", L"Key"}, {L"Product", nullptr}, {L"Product", L""}})
        EXPECT_EQ(m_config.readIniString(section, key, buffer.data(), 64, kIni), 1U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(IniTest, StringWithoutBufferGives1)
{
    writeIni("[Product]\nKey=text\n");
    EXPECT_EQ(m_config.readIniString(L"Product", L"Key", nullptr, 64, kIni), 1U);
}

TEST_F(IniTest, StringThatIsMissingOrEmptyGives1)
{
    GuardedBuffer buffer(64);
    EXPECT_EQ(readString(buffer, 64), 1U) << "no file";
    writeIni("");
    EXPECT_EQ(readString(buffer, 64), 1U) << "empty file";
    writeIni("[Other]\nKey=text\n");
    EXPECT_EQ(readString(buffer, 64), 1U) << "no section";
    writeIni("[Product]\nOther=text\n");
    EXPECT_EQ(readString(buffer, 64), 1U) << "no key";
    writeIni("[Product]\nKey=\n");
    EXPECT_EQ(readString(buffer, 64), 1U) << "empty text";
    EXPECT_TRUE(buffer.areGuardsWhole());
}

TEST_F(IniTest, StringFromAFileWithATooLongPathGives7)
{
    GuardedBuffer buffer(64);
    const std::wstring name = wideOf(kLongestIniPath - m_here.programDir().string().size());
    EXPECT_EQ(m_config.readIniString(L"Product", L"Key", buffer.data(), 64, name.c_str()), 7U);
    EXPECT_TRUE(buffer.isUntouched());
}

TEST_F(IniTest, ArgumentsAreLookedAtBeforeThePath)
{
    GuardedBuffer buffer(64);
    const std::wstring name = wideOf(2000);
    EXPECT_EQ(m_config.readIniString(L"", L"Key", buffer.data(), 64, name.c_str()), 1U);
    EXPECT_EQ(m_config.readIniString(L"Product", L"Key", buffer.data(), 1, name.c_str()), 1U);
}

TEST_F(IniTest, OtherFilesAreReadByTheirNames)
{
    m_here.write("product.ini", "[Product]\nKey=other\n");
    GuardedBuffer buffer(64);
    EXPECT_EQ(m_config.readIniString(L"Product", L"Key", buffer.data(), 64, L"product.ini"), 0U);
    EXPECT_EQ(buffer.text(), "other");
}

// ---- Integers

TEST_F(IniTest, IntegersAreRead)
{
    struct Row {
        const char* text;
        int value;
        unsigned int status;
    };
    for (const Row& row : {Row{"0", 0, 0}, Row{"26", 26, 0}, Row{"2147483647", 2147483647, 0}, Row{"text", 0, 0},
                           Row{"-5", -5, 1}, Row{"-1", -1, 1}, Row{"-0", 0, 0}}) {
        writeIni(std::string("[Product]\nKey=") + row.text + "\n");
        int value = 77;
        EXPECT_EQ(readInt(value), row.status) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST_F(IniTest, AbsentIntegerIsStoredAsMinus1AndGives1)
{
    writeIni("[Product]\nOther=1\n");
    int value = 77;
    EXPECT_EQ(readInt(value), 1U);
    EXPECT_EQ(value, -1);
}

TEST_F(IniTest, IntegerWithoutAFileGives1AndIsUntouched)
{
    int value = 77;
    EXPECT_EQ(readInt(value), 1U);
    EXPECT_EQ(value, 77);
}

TEST_F(IniTest, IntegerWithNullOrEmptyNamesGives1AndIsUntouched)
{
    writeIni("[Product]\nKey=5\n");
    int value = 77;
    EXPECT_EQ(m_config.readIniInt(nullptr, L"Key", value, kIni), 1U);
    EXPECT_EQ(m_config.readIniInt(L"", L"Key", value, kIni), 1U);
    EXPECT_EQ(m_config.readIniInt(L"Product", nullptr, value, kIni), 1U);
    EXPECT_EQ(m_config.readIniInt(L"Product", L"", value, kIni), 1U);
    EXPECT_EQ(value, 77);
}

TEST_F(IniTest, IntegerFromAFileWithATooLongPathGives7AndIsUntouched)
{
    int value = 77;
    EXPECT_EQ(m_config.readIniInt(L"Product", L"Key", value, wideOf(2000).c_str()), 7U);
    EXPECT_EQ(value, 77);
}

// ---- Values

TEST_F(IniTest, ValueTextIsRead)
{
    writeIni("[Product]\nKey=some text\n");
    VornVariant value;
    EXPECT_EQ(getValue(value, VornVariant::kVarString), 0U);
    EXPECT_EQ(typeOf(value), VornVariant::kVarString);
    EXPECT_EQ(textOf(value), "some text");
    EXPECT_EQ(sizeWordOf(value), 4U + (9U + 1U) * 4U);
}

TEST_F(IniTest, ValueTextReplacesWhatWasThere)
{
    writeIni("[Product]\nKey=new\n");
    VornVariant value;
    value.setString(L"something rather longer", VornVariant::kVarString);
    EXPECT_EQ(getValue(value, VornVariant::kVarString), 0U);
    EXPECT_EQ(textOf(value), "new");
}

TEST_F(IniTest, ValueTextIsCutAt1021Characters)
{
    VornVariant value;
    writeIni("[Product]\nKey=" + std::string(1021, 'x') + "\n");
    EXPECT_EQ(getValue(value, VornVariant::kVarString), 0U);
    EXPECT_EQ(textOf(value).size(), 1021U);
    writeIni("[Product]\nKey=" + std::string(1022, 'x') + "\n");
    EXPECT_EQ(getValue(value, VornVariant::kVarString), 0U);
    EXPECT_EQ(textOf(value).size(), 1021U);
}

TEST_F(IniTest, EmptyValueTextGives1AndLeavesTheValue)
{
    writeIni("[Product]\nKey=\n");
    VornVariant value;
    value.setString(L"former", VornVariant::kVarString);
    EXPECT_EQ(getValue(value, VornVariant::kVarString), 1U);
    EXPECT_EQ(textOf(value), "former");
}

TEST_F(IniTest, ValueIntegerIsRead)
{
    writeIni("[Product]\nKey=26\n");
    VornVariant value;
    value.setString(L"former", VornVariant::kVarString);
    EXPECT_EQ(getValue(value, VornVariant::kVarInt32), 0U);
    EXPECT_EQ(typeOf(value), VornVariant::kVarInt32);
    EXPECT_EQ(sizeWordOf(value), 8U);
    EXPECT_EQ(numberOf(value), 26);
}

TEST_F(IniTest, ValueIntegerOverwritesTheNumberInItsBlock)
{
    VornVariant value;
    writeIni("[Product]\nKey=26\n");
    ASSERT_EQ(getValue(value, VornVariant::kVarInt32), 0U);
    const void* const block = blockOf(value);
    writeIni("[Product]\nKey=27\n");
    EXPECT_EQ(getValue(value, VornVariant::kVarInt32), 0U);
    EXPECT_EQ(blockOf(value), block);
    EXPECT_EQ(numberOf(value), 27);
}

TEST_F(IniTest, NegativeOrAbsentValueIntegerGives1AndLeavesTheValue)
{
    VornVariant value;
    value.setString(L"former", VornVariant::kVarString);
    writeIni("[Product]\nKey=-5\n");
    EXPECT_EQ(getValue(value, VornVariant::kVarInt32), 1U);
    writeIni("[Product]\nOther=5\n");
    EXPECT_EQ(getValue(value, VornVariant::kVarInt32), 1U);
    EXPECT_EQ(textOf(value), "former");
}

TEST_F(IniTest, ValueOfAnotherTypeGives2AndLeavesTheValue)
{
    writeIni("[Product]\nKey=5\n");
    VornVariant value;
    value.setString(L"former", VornVariant::kVarString);
    for (const int type : {0, 2, 3, 4, 6, 7, 8, 9, -1})
        EXPECT_EQ(getValue(value, static_cast<VornVariant::VarType>(type)), 2U) << type;
    EXPECT_EQ(typeOf(value), VornVariant::kVarString);
    EXPECT_EQ(textOf(value), "former");
}

TEST_F(IniTest, ValueWithNullOrEmptyNamesGives1WhateverTheType)
{
    VornVariant value;
    EXPECT_EQ(m_config.getIniValue(nullptr, L"Key", value, VornVariant::kVarBinary, kIni), 1U);
    EXPECT_EQ(m_config.getIniValue(L"", L"Key", value, VornVariant::kVarString, kIni), 1U);
    EXPECT_EQ(m_config.getIniValue(L"Product", nullptr, value, VornVariant::kVarInt32, kIni), 1U);
    EXPECT_EQ(m_config.getIniValue(L"Product", L"", value, VornVariant::kVarString, kIni), 1U);
    EXPECT_EQ(typeOf(value), VornVariant::kVarNone);
}

TEST_F(IniTest, ValueFromAFileWithATooLongPathGives7)
{
    VornVariant value;
    const std::wstring name = wideOf(2000);
    EXPECT_EQ(m_config.getIniValue(L"Product", L"Key", value, VornVariant::kVarString, name.c_str()), 7U);
    EXPECT_EQ(m_config.getIniValue(L"Product", L"Key", value, VornVariant::kVarInt32, name.c_str()), 7U);
    EXPECT_EQ(typeOf(value), VornVariant::kVarNone);
}

TEST_F(IniTest, ExportedReaderReadsTheProductsFile)
{
    writeIni("[Product]\nKey=text\nNumber=5\n");
    VornVariant value;
    EXPECT_TRUE(GetVornIniConfigValue(L"Product", L"Key", value, VornVariant::kVarString));
    EXPECT_EQ(textOf(value), "text");
    EXPECT_TRUE(GetVornIniConfigValue(L"Product", L"Number", value, VornVariant::kVarInt32));
    EXPECT_EQ(numberOf(value), 5);
}

TEST_F(IniTest, ExportedReaderIsFalseForWhatIsNotThere)
{
    VornVariant value;
    EXPECT_FALSE(GetVornIniConfigValue(L"Product", L"Key", value, VornVariant::kVarString)) << "no file";
    writeIni("[Product]\nKey=text\n");
    EXPECT_FALSE(GetVornIniConfigValue(L"NoSection", L"Key", value, VornVariant::kVarString));
    EXPECT_FALSE(GetVornIniConfigValue(L"Product", L"NoKey", value, VornVariant::kVarString));
    EXPECT_FALSE(GetVornIniConfigValue(L"Product", L"Key", value, VornVariant::kVarBinary));
    EXPECT_FALSE(GetVornIniConfigValue(nullptr, L"Key", value, VornVariant::kVarString));
    EXPECT_EQ(typeOf(value), VornVariant::kVarNone);
}

// ---- Bad files

TEST_F(IniTest, UnreadableFileGives1AndTouchesNothing)
{
    writeIni("[Product]\nKey=5\n");
    setMode(m_here.programDir() / "VORNA.ini", 0);
    EXPECT_EQ(runUnprivileged(m_here, "read").out, "1 '' 1 77\n");
}

TEST_F(IniTest, DirectoryInItsPlaceGives1)
{
    std::filesystem::create_directory(m_here.programDir() / "VORNA.ini");
    EXPECT_EQ(m_here.run("read").out, "1 '' 1 -1\n");
}

TEST_F(IniTest, BinaryFileGives1)
{
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += static_cast<char>((i * 7919 + i / 256) & 0xFF);
    writeIni(bytes);
    EXPECT_EQ(m_here.run("read").out, "1 '' 1 -1\n");
}

TEST_F(IniTest, KeyIsFoundBetweenBinaryLines)
{
    writeIni("\x01\xFF\xFE\x80[[[\n[Product]\n\xC3\x28=\x80\nKey=5\n\xFF\xFF");
    EXPECT_EQ(m_here.run("read").out, "0 '5' 0 5\n");
}

TEST_F(IniTest, FilesAreNeverWritten)
{
    const std::string bytes = "; kept as it is\r\n[Product]\r\nCompanyName=Acme\r\n";
    writeIni(bytes);
    m_here.installLanguage("en-US");
    ASSERT_EQ(m_here.run("start", {"-", "-", "en-US"}).out, "0 Acme/VORNA/en-US/Default\n");
    EXPECT_EQ(readFile(m_here.programDir() / "VORNA.ini"), bytes);
}

TEST_F(IniTest, StartOnABinaryFileFallsBack)
{
    m_here.installLanguage("en-US");
    using namespace std::string_literals;
    writeIni("\x7F\x45LF\0\x01\x02\0\0\n\n\0\0[Product\0]"s);
    EXPECT_EQ(m_here.run("start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNA/en-US/Default\n");
}

TEST_F(IniTest, StartOnAnUnreadableFileFallsBack)
{
    m_here.installLanguage("en-US");
    writeIni("[Product]\nCompanyName=Acme\nProductName=Draw\n");
    setMode(m_here.programDir() / "VORNA.ini", 0);
    EXPECT_EQ(runUnprivileged(m_here, "start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNA/en-US/Default\n");
}

TEST_F(IniTest, StartOnADirectoryInItsPlaceFallsBack)
{
    m_here.installLanguage("en-US");
    std::filesystem::create_directory(m_here.programDir() / "VORNA.ini");
    EXPECT_EQ(m_here.run("start", {"-", "-", "en-US"}).out, "0 HALVIK/VORNA/en-US/Default\n");
}

} // namespace
