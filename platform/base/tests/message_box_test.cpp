// The message box without a display: by handler, on standard error, on a terminal, and where displays cannot be
// reached.

#include <array>
#include <chrono>
#include <thread>
#include <tuple>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

#include "VrPlatformBase/VrPlatformBase.h"
#include "child_process.h"
#include "temporary_directory.h"

namespace
{

using std::chrono::seconds;
using std::chrono::steady_clock;

struct Call {
    HWND owner = nullptr;
    const wchar_t* text = nullptr;
    const wchar_t* caption = nullptr;
    unsigned int style = 0;
    int count = 0;
};

Call lastCall;

int answerRetry(HWND owner, const wchar_t* text, const wchar_t* caption, unsigned int style)
{
    lastCall = {owner, text, caption, style, lastCall.count + 1};
    return IDRETRY;
}

int answerYes(HWND, const wchar_t*, const wchar_t*, unsigned int)
{
    return IDYES;
}

TEST(MessageBoxHandlerTest, GetsExactlyTheArgumentsAndGivesTheAnswer)
{
    VrSetMessageBoxHandler(answerRetry);
    int owner = 0;
    const wchar_t* text = L"text";
    const wchar_t* caption = L"caption";
    EXPECT_EQ(MessageBoxW(&owner, text, caption, 0xABCD), IDRETRY);
    EXPECT_EQ(lastCall.owner, &owner);
    EXPECT_EQ(lastCall.text, text);
    EXPECT_EQ(lastCall.caption, caption);
    EXPECT_EQ(lastCall.style, 0xABCDU);
    EXPECT_EQ(lastCall.count, 1);
}

TEST(MessageBoxHandlerTest, GetsNullTextsAsTheyAre)
{
    VrSetMessageBoxHandler(answerRetry);
    EXPECT_EQ(MessageBoxW(nullptr, nullptr, nullptr, 0), IDRETRY);
    EXPECT_EQ(lastCall.text, nullptr);
    EXPECT_EQ(lastCall.caption, nullptr);
}

TEST(MessageBoxHandlerTest, ServesAllThreads)
{
    VrSetMessageBoxHandler(answerRetry);
    int answer = 0;
    std::thread([&] { answer = MessageBoxW(nullptr, L"", L"", MB_OK); }).join();
    EXPECT_EQ(answer, IDRETRY);
}

TEST(MessageBoxHandlerTest, InstallingReturnsTheFormerOne)
{
    EXPECT_EQ(VrSetMessageBoxHandler(answerRetry), nullptr);
    EXPECT_EQ(VrSetMessageBoxHandler(answerYes), answerRetry);
    EXPECT_EQ(VrSetMessageBoxHandler(nullptr), answerYes);
    EXPECT_EQ(VrSetMessageBoxHandler(nullptr), nullptr);
}

TEST(MessageBoxHandlerTest, NullRestoresTheDefault)
{
    VrSetMessageBoxHandler(answerYes);
    VrSetMessageBoxHandler(nullptr);
    testing::internal::CaptureStderr();
    const int answer = MessageBoxW(nullptr, L"text", L"caption", MB_YESNO);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\n");
    EXPECT_EQ(answer, IDNO);
}

class MessageBoxProcessTest : public testing::Test
{
protected:
    using Arguments = std::vector<std::string>;

    [[nodiscard]] ChildProcess::Environment environment() const
    {
        return {{"HOME", m_home.path()},
                {"DISPLAY", m_display},
                {"WAYLAND_DISPLAY", ""},
                {"QT_QPA_PLATFORM", m_platform},
                {"LC_ALL", "C"}};
    }
    [[nodiscard]] ChildProcess start(Arguments arguments, Streams streams = Streams::Pipes) const
    {
        arguments.insert(arguments.begin(), PLAIN_HOST);
        return {arguments, environment(), streams};
    }

    TemporaryDirectory m_home;
    std::string m_display;
    std::string m_platform;
};

TEST_F(MessageBoxProcessTest, WritesCaptionAndText)
{
    ChildProcess host = start({"0", "Two\nlines", "Caption"});
    EXPECT_EQ(host.exitCode(), IDOK);
    EXPECT_EQ(host.errors(), "Caption: Two\nlines\n");
    EXPECT_EQ(host.output(), "answer=1\n");
}

TEST_F(MessageBoxProcessTest, AnswersCautiously)
{
    struct Row {
        UINT style;
        int answer;
    };
    for (const Row& row :
         {Row{MB_OK, IDOK}, Row{MB_OKCANCEL, IDCANCEL}, Row{MB_YESNOCANCEL, IDCANCEL}, Row{MB_YESNO, IDNO},
          Row{MB_RETRYCANCEL, IDCANCEL}, Row{MB_ICONERROR | MB_OK, IDOK}, Row{MB_ICONQUESTION | MB_YESNO, IDNO}})
        EXPECT_EQ(start({std::to_string(row.style), "Text", "Caption"}).exitCode(), row.answer) << row.style;
}

TEST_F(MessageBoxProcessTest, WritesUtf8InTheCLocale)
{
    ChildProcess host = start({"0", "Größe 图 \U0001F600", "Übersicht"});
    EXPECT_EQ(host.exitCode(), IDOK);
    EXPECT_EQ(host.errors(), "Übersicht: Größe 图 \U0001F600\n");
}

TEST_F(MessageBoxProcessTest, WritesNoInvalidAndNoControlCharacters)
{
    ChildProcess host = start({"0", "", "C", "bad-text"});
    EXPECT_EQ(host.exitCode(), IDOK);
    EXPECT_EQ(host.errors(), "C: a\uFFFD\uFFFDz\n");
}

TEST_F(MessageBoxProcessTest, NullTextsCountAsEmpty)
{
    ChildProcess host = start({"4", "", "", "null-texts"});
    EXPECT_EQ(host.exitCode(), IDNO);
    EXPECT_EQ(host.errors(), "\n");
}

TEST_F(MessageBoxProcessTest, LongTextIsWrittenWhole)
{
    const std::string text(100000, 'x');
    ChildProcess host = start({"0", text, "C"});
    EXPECT_EQ(host.exitCode(), IDOK);
    EXPECT_EQ(host.errors(), "C: " + text + "\n");
}

TEST_F(MessageBoxProcessTest, HostOutlivesClosedStandardError)
{
    ChildProcess host = start({"4", std::string(100000, 'x'), "C"});
    host.closeErrors();
    EXPECT_EQ(host.exitCode(), IDNO);
}

TEST_F(MessageBoxProcessTest, GivesUpAReaderThatTakesNothing)
{
    // The text is more than a pipe holds, and nobody reads it.
    const std::string command = "{ $0 4 $1 C 2>&1 >&3 | sleep 30; } 3>&1";
    ChildProcess shell({"/bin/sh", "-c", command, PLAIN_HOST, std::string(100000, 'x')}, environment());
    const auto start = steady_clock::now();
    while (shell.output().empty() && steady_clock::now() - start < seconds(20))
        EXPECT_EQ(shell.exitCode(seconds(1)), -1);
    EXPECT_EQ(shell.output(), "answer=7\n");
}

TEST_F(MessageBoxProcessTest, InputThatIsNoTerminalIsNotRead)
{
    ChildProcess host = start({"4", "t", "C"});
    host.type("yes\n");
    EXPECT_EQ(host.exitCode(), IDNO);
    EXPECT_EQ(host.errors(), "C: t\n");
}

class TerminalTest : public MessageBoxProcessTest
{
protected:
    int answerTo(UINT style, std::string_view typed)
    {
        ChildProcess host = start({std::to_string(style), "Go on?", "Caption"}, Streams::Terminal);
        EXPECT_TRUE(host.waitForError("] "));
        host.type(typed);
        const int answer = host.exitCode();
        m_screen = host.errors();
        return answer;
    }

    std::string m_screen;
};

TEST_F(TerminalTest, ShowsCaptionTextAndPrompt)
{
    EXPECT_EQ(answerTo(MB_YESNO | MB_ICONQUESTION, "yes\n"), IDYES);
    EXPECT_EQ(m_screen, "Caption\r\nGo on?\r\n[Yes/No] yes\r\n");
}

TEST_F(TerminalTest, TypedAnswersAreTaken)
{
    EXPECT_EQ(answerTo(MB_YESNO, "Y\n"), IDYES);
    EXPECT_EQ(answerTo(MB_YESNO, "n\n"), IDNO);
    EXPECT_EQ(answerTo(MB_YESNOCANCEL, "cancel\n"), IDCANCEL);
    EXPECT_EQ(answerTo(MB_RETRYCANCEL, "retry\n"), IDRETRY);
    EXPECT_EQ(answerTo(MB_OKCANCEL, "o\n"), IDOK);
}

TEST_F(TerminalTest, EmptyLineIsTheCautiousAnswer)
{
    EXPECT_EQ(answerTo(MB_YESNO, "\n"), IDNO);
    EXPECT_EQ(answerTo(MB_OK, "\n"), IDOK);
}

TEST_F(TerminalTest, EndOfInputIsTheCautiousAnswer)
{
    EXPECT_EQ(answerTo(MB_YESNO, "\x04"), IDNO);
    EXPECT_EQ(answerTo(MB_OK, "\x04"), IDOK);
}

TEST_F(TerminalTest, AsksAgainAfterOtherInput)
{
    EXPECT_EQ(answerTo(MB_YESNO, "maybe\nyes\n"), IDYES);
    const std::size_t first = m_screen.find("[Yes/No] ");
    EXPECT_NE(m_screen.find("[Yes/No] ", first + 1), std::string::npos) << m_screen;
}

TEST_F(TerminalTest, OverlongLineIsNoAnswer)
{
    EXPECT_EQ(answerTo(MB_YESNO, "y" + std::string(1000, ' ') + "x\nn\n"), IDNO);
    EXPECT_EQ(answerTo(MB_YESNO, std::string(1000, 'y') + "\ny\n"), IDYES);
}

TEST_F(TerminalTest, WhatIsTypedAheadStaysTheHosts)
{
    const std::string command = R"("$0" 4 t C; read rest; echo "rest=$rest")";
    ChildProcess shell({"/bin/sh", "-c", command, PLAIN_HOST}, environment(), Streams::Terminal);
    ASSERT_TRUE(shell.waitForError("] "));
    shell.type("yes\nfor the shell\n");
    EXPECT_EQ(shell.exitCode(), 0);
    EXPECT_EQ(shell.output(), "answer=6\nrest=for the shell\n");
}

TEST_F(TerminalTest, ProcessInTheBackgroundIsNotStopped)
{
    const std::string command = R"(stty tostop; set -m; "$0" 4 Text Caption & wait $!)";
    ChildProcess shell({"/bin/bash", "-c", command, PLAIN_HOST}, environment(), Streams::Terminal);
    EXPECT_EQ(shell.exitCode(), IDNO);
    EXPECT_EQ(shell.output(), "answer=7\n");
    EXPECT_NE(shell.errors().find("Caption: Text\r\n"), std::string::npos) << shell.errors();
}

TEST_F(TerminalTest, InputFromElsewhereMeansNoTerminal)
{
    ChildProcess shell({"/bin/sh", "-c", R"("$0" 4 t C </dev/null)", PLAIN_HOST}, environment(), Streams::Terminal);
    EXPECT_EQ(shell.exitCode(), IDNO);
    EXPECT_EQ(shell.errors(), "C: t\r\n");
}

class UnreachableDisplayTest : public MessageBoxProcessTest
{
protected:
    /// Answers cautiously on standard error, where nothing else comes out.
    void expectPassedOver(const Arguments& words, seconds limit)
    {
        const auto begin = steady_clock::now();
        Arguments arguments{"4", "Text", "Caption"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        ChildProcess host = start(arguments);
        const int answer = host.exitCode();
        EXPECT_EQ(std::make_tuple(answer, host.errors(), host.output()),
                  std::make_tuple(IDNO, std::string("Caption: Text\n"), std::string("answer=7\n")));
        EXPECT_LT(steady_clock::now() - begin, limit);
    }
};

TEST_F(UnreachableDisplayTest, DisplayWithoutServerIsPassedOver)
{
    m_display = ":4099";
    expectPassedOver({}, seconds(30));
}

TEST_F(UnreachableDisplayTest, SenselessDisplayIsPassedOver)
{
    m_display = "no such display";
    expectPassedOver({}, seconds(30));
}

TEST_F(UnreachableDisplayTest, HostThatIgnoresItsChildrenIsNotHeldUp)
{
    m_display = ":4099";
    expectPassedOver({"ignore-children"}, seconds(30));
}

TEST_F(UnreachableDisplayTest, HostThatReapsChildrenItselfIsNotHeldUp)
{
    m_display = ":4099";
    expectPassedOver({"reap-children"}, seconds(30));
}

TEST_F(UnreachableDisplayTest, OtherThreadsMayAskToo)
{
    m_display = ":4099";
    expectPassedOver({"thread"}, seconds(30));
}

TEST_F(UnreachableDisplayTest, InvisiblePlatformsCountAsNoDisplay)
{
    m_display = ":4099";
    m_platform = "offscreen";
    expectPassedOver({}, seconds(5));
    m_platform = "minimal";
    expectPassedOver({}, seconds(5));
}

TEST_F(UnreachableDisplayTest, TheTerminalIsAskedInstead)
{
    m_display = ":4099";
    ChildProcess host = start({"4", "Text", "Caption"}, Streams::Terminal);
    ASSERT_TRUE(host.waitForError("[Yes/No] "));
    host.type("y\n");
    EXPECT_EQ(host.exitCode(), IDYES);
    EXPECT_EQ(host.errors(), "Caption\r\nText\r\n[Yes/No] y\r\n");
}

/// Takes connections to a display and never says a word.
class SilentDisplay final
{
public:
    SilentDisplay() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        for (m_number = 200; m_number < 2000 && !listenThere(); ++m_number) {
        }
    }
    [[nodiscard]] std::string name() const { return "127.0.0.1:" + std::to_string(m_number); }
    [[nodiscard]] bool wasCalled() const
    {
        return vrplatformbase::internal::waitFor(m_socket.get(), POLLIN, std::chrono::steady_clock::now());
    }

private:
    [[nodiscard]] bool listenThere() const
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(6000 + m_number));
        return bind(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
               listen(m_socket.get(), 4) == 0;
    }

    vrplatformbase::internal::Descriptor m_socket;
    int m_number = 0;
};

TEST_F(UnreachableDisplayTest, SilentDisplayIsPassedOverInBoundedTime)
{
    const SilentDisplay display;
    m_display = display.name();
    expectPassedOver({}, seconds(25));
    EXPECT_TRUE(display.wasCalled());
}

TEST_F(UnreachableDisplayTest, HelperEndsWithoutASignalAndWithoutAWord)
{
    m_display = ":4099";
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ChildProcess helper({"/bin/bash", "-c", R"(exec "$0" 3>&"$1")", HELPER, std::to_string(ends[1])}, environment());
    close(ends[1]);
    const vrplatformbase::internal::Descriptor ours(ends[0]);
    // Style and the lengths of the two texts, then the texts.
    const std::array<std::uint32_t, 3> header{4, 4, 7};
    ASSERT_EQ(send(ours.get(), header.data(), sizeof header, 0), static_cast<ssize_t>(sizeof header));
    ASSERT_EQ(send(ours.get(), "TextCaption", 11, 0), 11);
    EXPECT_EQ(helper.exitCode(), 1);
    EXPECT_EQ(helper.output() + helper.errors(), "");
}

TEST_F(UnreachableDisplayTest, HelperStartedByHandEndsAtOnce)
{
    ChildProcess helper({"/bin/bash", "-c", R"(exec "$0" 3>&-)", HELPER}, environment());
    EXPECT_EQ(helper.exitCode(), 1);
}

} // namespace
