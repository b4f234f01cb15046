// The settings object behind the tree, and its file.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"
#include "config/icons.h"
#include "config/identity_names.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

/// The settings object with two manners of its own. It writes itself back, from the event loop, under the store lock:
/// threads that work on the store meanwhile wait, as they do for each other. And it writes nothing back while a lock
/// file stands that was found at the beginning and could not be removed: the settings library would wait for its holder
/// without end.
class BackingSettings final : public QSettings
{
public:
    using QSettings::QSettings;

    /// A lock file found now was left behind: opening does not lock, and whoever still writes makes a new one.
    void removeLeftLock()
    {
        const QString lock = fileName() + QStringLiteral(".lock");
        if (!QFile::remove(lock) && QFile::exists(lock))
            m_leftLock = lock;
    }
    [[nodiscard]] bool isLockedOut() const { return !m_leftLock.isEmpty() && QFile::exists(m_leftLock); }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::UpdateRequest && isLockedOut())
            return true;
        const std::lock_guard<VrLocker> lock(storeLock());
        return QSettings::event(event);
    }

private:
    QString m_leftLock;
};

/// Whether the file has values that are no texts. The library never writes such; another program may have.
bool hasForeignValues(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const uchar* const bytes = file.map(0, file.size());
    const auto size = static_cast<int>(std::min<qint64>(file.size(), std::numeric_limits<int>::max()));
    return bytes && QByteArray::fromRawData(reinterpret_cast<const char*>(bytes), size).contains("@Variant(");
}

bool mayBeWrittenBack(QSettings* settings)
{
    const auto* const backing = dynamic_cast<BackingSettings*>(settings);
    return !backing || !backing->isLockedOut();
}

/// The settings library knows how a file's name is encoded only until its own global objects are destroyed, and that is
/// before ours are: in a home whose name is not ASCII, what is written back then would land in another directory. Exit
/// handlers run before; this one is registered when those global objects are there.
void writeBackAtExit()
{
    if (g_globalSettings && mayBeWrittenBack(g_globalSettings))
        g_globalSettings->sync();
}

/// Deleting writes back; an object that may not do that is left alone instead, until the process is gone.
void close(QSettings* settings)
{
    static auto* const kLeftAlone = new std::vector<const QSettings*>;
    if (mayBeWrittenBack(settings))
        delete settings;
    else
        kLeftAlone->push_back(settings);
}

QString iniText(VornaConfig& config, const wchar_t* key, const wchar_t* fallback)
{
    std::array<wchar_t, kNameSize> text{};
    const unsigned int status = config.readIniString(kProductSection, key, text.data(), kNameSize, kProductIni);
    return toQString(status == Vorn::eOk ? text.data() : fallback);
}

QString givenOrIniText(const wchar_t* given, VornaConfig& config, const wchar_t* key, const wchar_t* fallback)
{
    return isEmpty(given) ? iniText(config, key, fallback) : toQString(given);
}

} // namespace

void VornaConfig::initRegObject(const wchar_t* company, const wchar_t* product)
{
    if (g_globalSettings)
        return;
    const QString companyName = givenOrIniText(company, *this, kCompanyNameKey, kDefaultCompany);
    const QString productName = givenOrIniText(product, *this, kProductNameKey, kDefaultProduct);
    const QString version = iniText(*this, kVersionKey, kRelease);
    const QString organisation = companyName + QLatin1Char('/') + productName + QLatin1Char('/') + version;
    auto settings =
        std::make_unique<BackingSettings>(QSettings::NativeFormat, QSettings::UserScope, organisation, productName);
    settings->removeLeftLock();
    // A colour or a font reads as nothing, and would be written back so, while nobody here knows pictures.
    if (hasForeignValues(settings->fileName()))
        loadIconLibrary();
    g_globalSettings = settings.release();
    static const int kRegistered = std::atexit(writeBackAtExit);
    Q_UNUSED(kRegistered)
}

void VornaConfig::uinitRegObject()
{
    close(g_globalSettings);
    g_globalSettings = nullptr;
    deleteIcons();
}

bool getConfigPath(int capacity, char* buffer)
{
    if (!g_globalSettings || !buffer)
        return false;
    const QByteArray path = QFile::encodeName(g_globalSettings->fileName());
    if (path.isEmpty() || path.size() >= capacity)
        return false;
    std::copy_n(path.constData(), path.size() + 1, buffer);
    return true;
}
