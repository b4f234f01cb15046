// The message box on a real display, whose buttons are really pressed.

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VrPlatformBase/VrPlatformBase.h"
#include "child_process.h"
#include "temporary_directory.h"
#include "virtual_display.h"

namespace
{

class DialogTest : public testing::Test
{
protected:
    using Arguments = std::vector<std::string>;

    void SetUp() override { ASSERT_FALSE(m_display.name().empty()) << m_display.messages(); }

    [[nodiscard]] ChildProcess start(const std::string& host, UINT style, const Arguments& words = {},
                                     Streams streams = Streams::Pipes) const
    {
        Arguments command{host, std::to_string(style), "Go on?", "Question"};
        command.insert(command.end(), words.begin(), words.end());
        return {command, environment(), streams};
    }

    [[nodiscard]] ChildProcess::Environment environment() const
    {
        return {
            {"HOME", m_home.path()}, {"XDG_RUNTIME_DIR", m_home.path()}, {"DISPLAY", m_display.name()},
            {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", m_platform},    {"LC_ALL", "C"},
        };
    }

    /// Waits for the dialog and presses the key in it; the host's exit code.
    int answerTo(ChildProcess& host, const std::string& key)
    {
        const std::string window = m_display.windowOf("Question");
        EXPECT_FALSE(window.empty()) << host.errors();
        m_dialogProcess = m_display.processOf(window);
        m_display.press(window, key);
        return host.exitCode();
    }

    int answerTo(const std::string& program, UINT style, const std::string& key)
    {
        ChildProcess host = start(program, style);
        const int answer = answerTo(host, key);
        EXPECT_EQ(host.errors(), "");
        EXPECT_EQ(host.output(), "answer=" + std::to_string(answer) + "\n");
        return answer;
    }

    TemporaryDirectory m_home;
    VirtualDisplay m_display;
    std::string m_platform;
    pid_t m_dialogProcess = -1;
};

class BothHostsTest : public DialogTest, public testing::WithParamInterface<const char*>
{
};

TEST_P(BothHostsTest, YesAndNoArePressed)
{
    EXPECT_EQ(answerTo(GetParam(), MB_YESNO | MB_ICONQUESTION, "alt+y"), IDYES);
    EXPECT_EQ(answerTo(GetParam(), MB_YESNO | MB_ICONWARNING, "alt+n"), IDNO);
}

TEST_P(BothHostsTest, OkAndCancelArePressed)
{
    EXPECT_EQ(answerTo(GetParam(), MB_OKCANCEL | MB_ICONERROR, "Return"), IDOK);
    EXPECT_EQ(answerTo(GetParam(), MB_YESNOCANCEL, "Escape"), IDCANCEL);
}

TEST_P(BothHostsTest, RetryIsChosen)
{
    EXPECT_EQ(answerTo(GetParam(), MB_RETRYCANCEL | MB_ICONINFORMATION, "Return"), IDRETRY);
}

TEST_P(BothHostsTest, EscapeIsTheCautiousAnswer)
{
    EXPECT_EQ(answerTo(GetParam(), MB_YESNO, "Escape"), IDNO);
    EXPECT_EQ(answerTo(GetParam(), MB_OK, "Escape"), IDOK);
}

TEST_P(BothHostsTest, ReturnIsTheDefaultButton)
{
    EXPECT_EQ(answerTo(GetParam(), MB_YESNO, "Return"), IDYES);
    EXPECT_EQ(answerTo(GetParam(), MB_YESNO | 0x100U, "Return"), IDNO);
    EXPECT_EQ(answerTo(GetParam(), MB_YESNO | 0x200U, "Return"), IDYES);
}

TEST_P(BothHostsTest, ButtonIsClickedWithTheMouse)
{
    ChildProcess host = start(GetParam(), MB_OK);
    const std::string window = m_display.windowOf("Question");
    ASSERT_FALSE(window.empty());
    m_display.click(window, 45, 25);
    EXPECT_EQ(host.exitCode(), IDOK);
}

INSTANTIATE_TEST_SUITE_P(Hosts, BothHostsTest, testing::Values(PLAIN_HOST, WIDGET_HOST),
                         [](const auto& host) { return host.index == 0 ? "Plain" : "Widget"; });

TEST_F(DialogTest, BoxOfAQApplicationIsItsOwn)
{
    ChildProcess host = start(WIDGET_HOST, MB_YESNO);
    EXPECT_EQ(answerTo(host, "alt+y"), IDYES);
    EXPECT_EQ(m_dialogProcess, host.pid());
}

TEST_F(DialogTest, ApplicationGoesOnAfterItsOnlyWindowWasABox)
{
    ChildProcess host = start(WIDGET_HOST, MB_YESNO, {"in-loop"});
    EXPECT_EQ(answerTo(host, "alt+y"), IDYES);
    EXPECT_EQ(m_dialogProcess, host.pid());
    EXPECT_EQ(host.output(), "answer=6\nstill running\n");
}

TEST_F(DialogTest, HostWithoutApplicationGetsADialogOfAnotherProcess)
{
    ChildProcess host = start(PLAIN_HOST, MB_YESNO);
    EXPECT_EQ(answerTo(host, "alt+y"), IDYES);
    EXPECT_GT(m_dialogProcess, 0);
    EXPECT_NE(m_dialogProcess, host.pid());
}

TEST_F(DialogTest, OtherThreadOfAQApplicationGetsADialogOfAnotherProcess)
{
    ChildProcess host = start(WIDGET_HOST, MB_YESNO, {"thread"});
    EXPECT_EQ(answerTo(host, "alt+y"), IDYES);
    EXPECT_NE(m_dialogProcess, host.pid());
}

TEST_F(DialogTest, ConsoleApplicationGetsADialogOfAnotherProcess)
{
    ChildProcess host = start(WIDGET_HOST, MB_YESNO, {"core"});
    EXPECT_EQ(answerTo(host, "alt+n"), IDNO);
    EXPECT_NE(m_dialogProcess, host.pid());
}

TEST_F(DialogTest, InvisibleQApplicationWritesToStandardError)
{
    m_platform = "offscreen";
    ChildProcess host = start(WIDGET_HOST, MB_YESNO);
    EXPECT_EQ(host.exitCode(), IDNO);
    EXPECT_EQ(host.errors(), "Question: Go on?\n");
}

TEST_F(DialogTest, DisplayIsPreferredToTheTerminal)
{
    ChildProcess host = start(PLAIN_HOST, MB_YESNO, {}, Streams::Terminal);
    EXPECT_EQ(answerTo(host, "alt+y"), IDYES);
    EXPECT_EQ(host.errors(), "");
}

TEST_F(DialogTest, HostsThatDoNotWaitForChildrenGetTheirAnswer)
{
    for (const char* word : {"ignore-children", "reap-children"}) {
        ChildProcess host = start(PLAIN_HOST, MB_YESNO, {word});
        EXPECT_EQ(answerTo(host, "alt+y"), IDYES) << word;
    }
}

TEST_F(DialogTest, WaitsAsLongAsTheUserThinks)
{
    ChildProcess host = start(PLAIN_HOST, MB_YESNO);
    EXPECT_EQ(host.exitCode(std::chrono::seconds(13)), -1) << "longer than a display may take to be reached";
    EXPECT_EQ(answerTo(host, "alt+y"), IDYES);
}

TEST_F(DialogTest, TextsOfAllKindsArrive)
{
    const std::string title = "Title Größe 图 \U0001F600";
    ChildProcess host({PLAIN_HOST, "0", std::string(3000, 'x') + "\U0001F600", title}, environment());
    const std::string window = m_display.windowOf("Title .*");
    ASSERT_FALSE(window.empty());
    EXPECT_EQ(m_display.titleOf(window), title);
    m_display.press(window, "Return");
    EXPECT_EQ(host.exitCode(), IDOK);
}

TEST_F(DialogTest, MarkupIsShownAsItIs)
{
    ChildProcess plain({PLAIN_HOST, "0", "<h1>a</h1><h1>a</h1><h1>a</h1>", "Markup"}, environment());
    const std::string window = m_display.windowOf("Markup");
    ASSERT_FALSE(window.empty());
    // As rich text, the three headings would stand one above the other.
    const std::string geometry =
        outputOf({"xdotool", "getwindowgeometry", "--shell", window}, {{"DISPLAY", m_display.name()}});
    const int height = std::stoi(geometry.substr(geometry.find("HEIGHT=") + 7));
    EXPECT_LT(height, 130);
    m_display.press(window, "Return");
    EXPECT_EQ(plain.exitCode(), IDOK);
}

TEST_F(DialogTest, WhenTheHelperIsKilledTheTextGoesToStandardError)
{
    ChildProcess host = start(PLAIN_HOST, MB_YESNO);
    const std::string window = m_display.windowOf("Question");
    ASSERT_FALSE(window.empty());
    ASSERT_GT(m_display.processOf(window), 0);
    kill(m_display.processOf(window), SIGKILL);
    EXPECT_EQ(host.exitCode(), IDNO);
    EXPECT_EQ(host.errors(), "Question: Go on?\n");
}

TEST_F(DialogTest, WhenTheDisplayGoesAwayTheTextGoesToStandardError)
{
    ChildProcess host = start(PLAIN_HOST, MB_YESNO);
    ASSERT_FALSE(m_display.windowOf("Question").empty());
    m_display.stop();
    EXPECT_EQ(host.exitCode(), IDNO);
    EXPECT_EQ(host.errors(), "Question: Go on?\n");
}

TEST_F(DialogTest, WhenTheHostIsKilledTheDialogGoes)
{
    ChildProcess host = start(PLAIN_HOST, MB_YESNO);
    ASSERT_FALSE(m_display.windowOf("Question").empty());
    kill(host.pid(), SIGKILL);
    EXPECT_TRUE(m_display.isWithoutWindow("Question"));
}

class PlaceTest : public DialogTest, public testing::WithParamInterface<const char*>
{
protected:
    void put(const std::string& file, const std::filesystem::path& directory) const
    {
        std::filesystem::create_directories(directory);
        std::filesystem::copy(file, directory);
    }
};

TEST_P(PlaceTest, HelperIsFoundThere)
{
    const std::filesystem::path prefix = m_home.path();
    put(LIBRARY, prefix / "lib");
    put(HELPER, prefix / GetParam());
    put(UI_LIBRARY, prefix / GetParam());
    ChildProcess::Environment installed = environment();
    installed["LD_LIBRARY_PATH"] = prefix / "lib";
    ChildProcess host({PLAIN_HOST, "4", "Go on?", "Question"}, installed);
    const std::string window = m_display.windowOf("Question");
    ASSERT_FALSE(window.empty()) << host.errors();
    const auto process = "/proc/" + std::to_string(m_display.processOf(window)) + "/exe";
    EXPECT_EQ(std::filesystem::read_symlink(process), prefix / GetParam() / "VrMessageBox");
    m_display.press(window, "alt+y");
    EXPECT_EQ(host.exitCode(), IDYES);
}

INSTANTIATE_TEST_SUITE_P(Places, PlaceTest, testing::Values("lib", "lib/vruinfo", "libexec/vruinfo"),
                         [](const auto& place) { return "Number" + std::to_string(place.index); });

TEST_F(DialogTest, WithoutItsHelperTheTextGoesToStandardError)
{
    std::filesystem::create_directory(m_home.path() + "/lib");
    std::filesystem::copy(LIBRARY, m_home.path() + "/lib");
    ChildProcess::Environment alone = environment();
    alone["LD_LIBRARY_PATH"] = m_home.path() + "/lib";
    ChildProcess host({PLAIN_HOST, "4", "Go on?", "Question"}, alone);
    EXPECT_EQ(host.exitCode(), IDNO);
    EXPECT_EQ(host.errors(), "Question: Go on?\n");
}

} // namespace
