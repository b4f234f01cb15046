// A host with an application object: a QApplication, or with the word "core" a QCoreApplication. With "in-loop" it asks
// while the event loop runs, and goes on for a while after the answer.

#include <memory>

#include <QApplication>
#include <QTimer>

#include "message_box_host.h"

namespace
{

int askInLoop(const MessageBoxHost& host)
{
    int answer = 0;
    QTimer::singleShot(0, qApp, [&] {
        answer = host.ask();
        QTimer::singleShot(500, qApp, [] { std::printf("still running\n"); });
        QTimer::singleShot(600, qApp, &QCoreApplication::quit);
    });
    QCoreApplication::exec();
    return answer;
}

} // namespace

int main(int argc, char** argv)
{
    const MessageBoxHost host(argc, argv);
    std::unique_ptr<QCoreApplication> app;
    if (host.has("core"))
        app = std::make_unique<QCoreApplication>(argc, argv);
    else
        app = std::make_unique<QApplication>(argc, argv);
    return host.has("in-loop") ? askInLoop(host) : host.ask();
}
