// The settings object behind the tree, and its file.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <random>
#include <string_view>
#include <thread>
#include <vector>

#include <QtCore/QByteArray>
#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QSettings>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "VrUInfo/VornaConfig.h"
#include "config/icons.h"
#include "config/identity_names.h"
#include "place/user_settings.h"
#include "provision/bounded_values.h"
#include "provision/picture_values.h"
#include "provision/text_encoding.h"
#include "store/store_group.h"
#include "text/owned_text.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

/// The settings object with three manners of its own. It writes itself back, from the event loop, under the store lock:
/// threads that work on the store meanwhile wait, as they do for each other. And it writes nothing back where the
/// settings library would wait without end: while a lock file stands that was found at the beginning and could not be
/// removed, and while a pipe stands in the place of the file. And it waits for another process's write in a way of its
/// own.
class BackingSettings final : public QSettings
{
public:
    using QSettings::QSettings;

    /// A lock file found now was left behind: opening does not lock, and whoever still writes makes a new one.
    void removeLeftLock()
    {
        const QString lock = fileName() + QStringLiteral(".lock");
        if (!QFile::remove(lock) && isTaken(lock))
            m_leftLock = lock;
    }
    /// From here on nothing is written back.
    void keepFile() { m_isKept = true; }
    [[nodiscard]] bool mayBeWrittenBack() const
    {
        const bool isLockedOut = !m_leftLock.isEmpty() && isTaken(m_leftLock);
        return !m_isKept && !isLockedOut && hasAnEnd(fileName());
    }
    /// Waits while another process writes, which takes it moments. The settings library itself would look again after a
    /// tenth of a second, and then ever more seldom: of eight processes that end at once the last would wait for twelve
    /// seconds. Each waits in steps of its own, so that they do not meet again.
    void awaitOtherWriter() const
    {
        constexpr auto kLongest = std::chrono::milliseconds(500);
        const QString lock = fileName() + QStringLiteral(".lock");
        std::minstd_rand random(static_cast<unsigned int>(getpid()));
        const auto end = std::chrono::steady_clock::now() + kLongest;
        while (QFile::exists(lock) && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::microseconds(500 + random() % 8000));
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::UpdateRequest) {
            if (!mayBeWrittenBack())
                return true;
            awaitOtherWriter();
        }
        const std::lock_guard<VrLocker> lock(storeLock());
        return QSettings::event(event);
    }

private:
    QString m_leftLock;
    bool m_isKept = false;
};

/// An ordinary file, for reading; anything else has no size.
class PlainFile final
{
public:
    explicit PlainFile(const QString& path) :
        m_descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;
    ~PlainFile()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    [[nodiscard]] std::size_t size() const
    {
        struct stat status = {};
        const bool isThere = m_descriptor >= 0 && fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
        return isThere ? static_cast<std::size_t>(status.st_size) : 0;
    }
    /// \return how many bytes; 0 at the end, and on an error
    [[nodiscard]] std::size_t read(char* place, std::size_t room) const
    {
        return static_cast<std::size_t>(std::max<ssize_t>(0, ::read(m_descriptor, place, room)));
    }

private:
    int m_descriptor;
};

/// Whether the file has values that are no texts. The library never writes such; another program may have. A file that
/// is not big is read in one piece, into memory that the settings library has just used for it and given back.
bool hasForeignValues(const QString& path)
{
    constexpr std::string_view kMark = "@Variant(";
    constexpr std::size_t kLongestPiece = 65536;
    const PlainFile file(path);
    const std::size_t size = std::min(file.size(), kLongestPiece);
    if (size < kMark.size())
        return false;
    QByteArray piece(static_cast<int>(size), Qt::Uninitialized);
    std::size_t kept = 0;
    while (const std::size_t more = file.read(piece.data() + kept, size - kept)) {
        const std::string_view text(piece.constData(), kept + more);
        if (text.find(kMark) != std::string_view::npos)
            return true;
        kept = std::min(text.size(), kMark.size() - 1); // the mark may stand across two pieces
        std::copy_n(text.end() - kept, kept, piece.begin());
    }
    return false;
}

/// Reads nothing, and leaves the file as it is.
void setAside(std::unique_ptr<BackingSettings>& settings)
{
    const QString nothing = settings->fileName() + QStringLiteral("/nothing.conf");
    settings = std::make_unique<BackingSettings>(nothing, QSettings::NativeFormat);
    settings->keepFile();
}

/// A colour or a font reads as nothing, and would be written back so, while nobody here knows pictures. A picture ends
/// the process that reads it without an application object, and so does a value that has no end in memory: then the
/// file is not read, and stays as it is.
void prepareForForeignValues(std::unique_ptr<BackingSettings>& settings)
{
    const QString file = settings->fileName();
    if (!hasForeignValues(file))
        return;
    const bool arePicturesIn = !arePicturesWelcome() && hasPictureValues(file);
    if (arePicturesIn && arePicturesKnown())
        return setAside(settings);
    if (arePicturesIn)
        settings->keepFile();
    else
        loadIconLibrary();
    if (!canTakeValuesApart(*settings))
        setAside(settings);
}

bool mayBeWrittenBack(QSettings* settings)
{
    const auto* const backing = dynamic_cast<BackingSettings*>(settings);
    return !backing || backing->mayBeWrittenBack();
}

/// The settings library knows how a file's name is encoded only until its own global objects are destroyed, and that is
/// before ours are: in a home whose name is not ASCII, what is written back then would land in another directory. Exit
/// handlers run before; this one is registered when those global objects are there.
void writeBackAtExit()
{
    if (!g_globalSettings || !mayBeWrittenBack(g_globalSettings))
        return;
    if (const auto* const backing = dynamic_cast<BackingSettings*>(g_globalSettings))
        backing->awaitOtherWriter();
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
    auto settings = openUserSettings<BackingSettings>(organisation, productName);
    settings->removeLeftLock();
    prepareForForeignValues(settings);
    keepEscapes(*settings);
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
