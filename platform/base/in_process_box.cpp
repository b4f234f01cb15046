#include <QCoreApplication>
#include <QThread>
#include <QVariant>

#include <dlfcn.h>

#include "companion_file.h"
#include "message_box_ways.h"
#include "visible_platform.h"

namespace vrplatformbase::internal
{

namespace
{

using ShowFunction = int (*)(const wchar_t* text, const wchar_t* caption, unsigned int style);

// Qt's Gui and Widgets libraries are no part of this one, so that hosts without windows do not load them: the
// application object is asked through its meta object, and the box itself is in a library loaded here.
bool canShowHere()
{
    const QCoreApplication* app = QCoreApplication::instance();
    if (app == nullptr || app->thread() != QThread::currentThread() || QCoreApplication::closingDown())
        return false;
    const std::string platform = app->property("platformName").toString().toStdString();
    return app->inherits("QApplication") && isVisiblePlatform(platform);
}

ShowFunction loadShowFunction()
{
    const std::optional<std::string> path = findCompanion("libVrMessageBoxUi.so");
    if (!path)
        return nullptr;
    void* library = dlopen(path->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr)
        return nullptr;
    return reinterpret_cast<ShowFunction>(dlsym(library, "VrShowQtMessageBox"));
}

} // namespace

std::optional<int> askInProcess(const Question& question)
{
    if (!canShowHere())
        return std::nullopt;
    static const ShowFunction show = loadShowFunction();
    if (show == nullptr)
        return std::nullopt;
    return show(question.text, question.caption, question.style);
}

} // namespace vrplatformbase::internal
