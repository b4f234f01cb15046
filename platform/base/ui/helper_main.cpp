// The helper program: shows the dialog of a process that has no application object, in a process that may fail. It is
// started by the library, never by hand.

#include <string>
#include <thread>

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>

#include <poll.h>
#include <sys/resource.h>

#include "descriptor_io.h"
#include "helper_protocol.h"
#include "ui/message_box_ui.h"
#include "visible_platform.h"

namespace internal = vrplatformbase::internal;

namespace
{

constexpr int kFailed = 1;

struct Question {
    std::uint32_t style = 0;
    std::wstring text;
    std::wstring caption;
};

// Ends at once: there is nothing to save, and the host waits.
[[noreturn]] void leave(int exitCode)
{
    _exit(exitCode);
}

// Qt ends the process by a signal when the display cannot be reached. Here that is an ordinary failure, of which
// neither a message nor a core file is kept.
void leaveWhenFatal(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*message*/)
{
    if (type == QtFatalMsg)
        leave(kFailed);
}

void failQuietly()
{
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    qInstallMessageHandler(leaveWhenFatal);
}

std::wstring receiveText(std::uint32_t bytes)
{
    std::string text(bytes, '\0');
    if (!internal::receiveAll(internal::kHelperSocket, text.data(), text.size(), std::nullopt))
        leave(kFailed);
    return QString::fromStdString(text).toStdWString();
}

Question receiveQuestion()
{
    internal::QuestionHeader header{};
    if (!internal::receiveAll(internal::kHelperSocket, &header, sizeof header, std::nullopt))
        leave(kFailed);
    Question question;
    question.style = header.style;
    question.text = receiveText(header.textBytes);
    question.caption = receiveText(header.captionBytes);
    return question;
}

void sendByte(char byte)
{
    if (!internal::sendAll(internal::kHelperSocket, {&byte, 1}, std::nullopt))
        leave(kFailed);
}

// Also while Qt waits for a display that says nothing, hence a thread.
void leaveWithTheHost()
{
    std::thread([] {
        static_cast<void>(internal::waitFor(internal::kHelperSocket, POLLRDHUP, std::nullopt));
        leave(kFailed);
    }).detach();
}

void installButtonTexts(QApplication& app)
{
    auto* texts = new QTranslator(&app); // NOLINT(cppcoreguidelines-owning-memory) the application's child
    if (texts->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                    QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(texts);
}

} // namespace

int main(int argc, char** argv)
{
    failQuietly();
    const Question question = receiveQuestion();
    leaveWithTheHost();
    QApplication app(argc, argv);
    if (!internal::isVisiblePlatform(QGuiApplication::platformName().toStdString()))
        leave(kFailed);
    installButtonTexts(app);
    // Runs when the box waits for events.
    QTimer::singleShot(0, &app, [] { sendByte(internal::kDialogShown); });
    const int answer = VrShowQtMessageBox(question.text.c_str(), question.caption.c_str(), question.style);
    sendByte(static_cast<char>(answer));
    leave(0);
}
