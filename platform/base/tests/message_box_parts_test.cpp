// The rules inside the message box that need neither a display nor a terminal.

#include <string>

#include <gtest/gtest.h>

#include "message_box_style.h"
#include "terminal_answer.h"
#include "visible_platform.h"
#include "wide_text.h"

namespace
{

using namespace vrplatformbase::internal;

std::string utf8Of(std::uint32_t number)
{
    return toUtf8(std::wstring(1, static_cast<wchar_t>(number)).c_str());
}

TEST(WideTextTest, BothSidesOfEachLengthLimit)
{
    EXPECT_EQ(utf8Of(0x7F), "\x7F");
    EXPECT_EQ(utf8Of(0x80), "\xC2\x80");
    EXPECT_EQ(utf8Of(0x7FF), "\xDF\xBF");
    EXPECT_EQ(utf8Of(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(utf8Of(0xFFFF), "\xEF\xBF\xBF");
    EXPECT_EQ(utf8Of(0x10000), "\xF0\x90\x80\x80");
    EXPECT_EQ(utf8Of(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(WideTextTest, WhatIsNoCharacterIsReplaced)
{
    for (const std::uint32_t number : {0xD800U, 0xDBFFU, 0xDC80U, 0xDFFFU, 0x110000U, 0x7FFFFFFFU, 0xFFFFFFFFU})
        EXPECT_EQ(utf8Of(number), "\xEF\xBF\xBD") << std::hex << number;
}

TEST(WideTextTest, NeighboursOfTheSurrogatesAreKept)
{
    EXPECT_EQ(utf8Of(0xD7FF), "\xED\x9F\xBF");
    EXPECT_EQ(utf8Of(0xE000), "\xEE\x80\x80");
}

TEST(WideTextTest, PrintableTextKeepsLinesAndTabsAndLosesOtherControls)
{
    EXPECT_EQ(toPrintableUtf8(L"a\r\nb\tc\x1B[2J\x07\x7F\x80\x9B"
                              L"d\u00A0e"),
              "a\nb\tc[2Jd\u00A0e");
}

TEST(MessageBoxStyleTest, EachStyleHasItsButtonsAndCautiousAnswer)
{
    struct Row {
        unsigned int style;
        const char* prompt;
        int cautious;
    };
    for (const Row& row :
         {Row{MB_OK, "[OK] ", IDOK}, Row{MB_OKCANCEL, "[OK/Cancel] ", IDCANCEL},
          Row{MB_YESNOCANCEL, "[Yes/No/Cancel] ", IDCANCEL}, Row{MB_YESNO, "[Yes/No] ", IDNO},
          Row{MB_RETRYCANCEL, "[Retry/Cancel] ", IDCANCEL}, Row{MB_YESNO | MB_ICONERROR, "[Yes/No] ", IDNO},
          Row{MB_YESNO | 0x100U, "[Yes/No] ", IDNO}, Row{0x0FU, "[OK] ", IDOK}}) {
        EXPECT_EQ(promptOf(buttonSetOf(row.style)), row.prompt) << row.style;
        EXPECT_EQ(buttonSetOf(row.style).cautious, row.cautious) << row.style;
    }
}

TEST(MessageBoxStyleTest, OnlyAnswersOfTheButtonsAreOffered)
{
    const ButtonSet& buttons = buttonSetOf(MB_YESNO);
    EXPECT_TRUE(offers(buttons, IDYES));
    EXPECT_TRUE(offers(buttons, IDNO));
    for (const int answer : {0, IDOK, IDCANCEL, IDRETRY, 8, -1})
        EXPECT_FALSE(offers(buttons, answer)) << answer;
}

TEST(TerminalAnswerTest, WordOrFirstLetterWithoutCaseAnswers)
{
    struct Row {
        unsigned int style;
        const char* line;
        int answer;
    };
    for (const Row& row :
         {Row{MB_YESNOCANCEL, "y", IDYES}, Row{MB_YESNOCANCEL, "Y", IDYES}, Row{MB_YESNOCANCEL, "yes", IDYES},
          Row{MB_YESNOCANCEL, "YES", IDYES}, Row{MB_YESNOCANCEL, "yEs", IDYES}, Row{MB_YESNOCANCEL, "  yes\t", IDYES},
          Row{MB_YESNOCANCEL, "y\r", IDYES}, Row{MB_YESNOCANCEL, "n", IDNO}, Row{MB_YESNOCANCEL, "No", IDNO},
          Row{MB_YESNOCANCEL, "c", IDCANCEL}, Row{MB_YESNOCANCEL, "cancel", IDCANCEL},
          Row{MB_RETRYCANCEL, "r", IDRETRY}, Row{MB_RETRYCANCEL, "retry", IDRETRY}, Row{MB_OKCANCEL, "ok", IDOK}})
        EXPECT_EQ(answerOf(buttonSetOf(row.style), row.line), row.answer) << row.line;
}

TEST(TerminalAnswerTest, EmptyLineIsTheCautiousAnswer)
{
    EXPECT_EQ(answerOf(buttonSetOf(MB_YESNO), ""), IDNO);
    EXPECT_EQ(answerOf(buttonSetOf(MB_YESNOCANCEL), " \t"), IDCANCEL);
    EXPECT_EQ(answerOf(buttonSetOf(MB_OK), ""), IDOK);
}

TEST(TerminalAnswerTest, OtherLinesAreNoAnswer)
{
    for (const char* line : {"maybe", "ye", "yess", "yn", "y n", "c", "ok", "1"})
        EXPECT_EQ(answerOf(buttonSetOf(MB_YESNO), line), std::nullopt) << line;
}

TEST(TerminalAnswerTest, AnyLineIsTheAnswerOfASingleButton)
{
    EXPECT_EQ(answerOf(buttonSetOf(MB_OK), "whatever"), IDOK);
}

TEST(VisiblePlatformTest, OffscreenAndMinimalAreInvisible)
{
    for (const char* name : {"offscreen", "minimal", "minimalegl", "offscreen:enable_fonts", "minimal;xcb"})
        EXPECT_FALSE(isVisiblePlatform(name)) << name;
    for (const char* name : {"", "xcb", "wayland;offscreen", "xcb:minimal", "minimalist"})
        EXPECT_TRUE(isVisiblePlatform(name)) << name;
}

} // namespace
