// The user's list of installed products: one file for all releases, not part of the settings tree.
#include <algorithm>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>

#include "VrUInfo/FirstRun.h"
#include "VrUInfo/VornaConfig.h"
#include "place/file_kind.h"
#include "place/program_place.h"
#include "provision/bounded_values.h"
#include "provision/text_encoding.h"
#include "text/wide_text.h"

using namespace vruinfo::internal;

namespace
{

/// The entry of one release.
struct ProductEntry {
    QString key;
    QString displayName;
    QString productCode;
    QString languageName;
    QString version;
};

/// The list lies below the company's own name, whoever the host started as.
QString listDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::HomeLocation) + QStringLiteral("/.local/share/HALVIK");
}

bool makeDirectory(const QString& path)
{
    const QDir directory(path);
    if (directory.exists())
        return true;
    directory.mkdir(path);
    return directory.exists();
}

/// Whoever finds a lock file takes it for left behind. The permissions are what they are on purpose; a file that a link
/// in its place leads to never gets them.
/// \return false when it cannot be removed: the settings library would wait for its holder without end
bool removeLeftLock(const QString& lock)
{
    if (!isTaken(lock))
        return true;
    [[maybe_unused]] const int ignored =
        fchmodat(AT_FDCWD, QFile::encodeName(lock).constData(), S_IROTH | S_IWOTH, AT_SYMLINK_NOFOLLOW);
    return QFile::remove(lock) || !isTaken(lock);
}

QString displayBase(const QString& productCode)
{
    if (productCode == QLatin1String("VORNAM"))
        return QStringLiteral("VORNA Mech");
    if (productCode == QLatin1String("VORNAA"))
        return QStringLiteral("VORNA Arch");
    return productCode;
}

/// The list knows two: every language but simplified Chinese counts as English.
QString languageCode(const QString& languageName)
{
    return languageName == QLatin1String("zh-CN") ? QStringLiteral("Chs") : QStringLiteral("Enu");
}

ProductEntry entryOf(const VornaConfig& config)
{
    ProductEntry entry;
    getProductName(config.productName(), entry.productCode);
    getLangName(config.language().shortName(), entry.languageName);
    entry.version = toQString(config.version());
    entry.displayName = displayBase(entry.productCode) + QLatin1Char(' ') + entry.version + QLatin1Char(' ') +
                        languageCode(entry.languageName);
    entry.key = QString(entry.displayName).replace(QLatin1Char(' '), QLatin1Char('_'));
    return entry;
}

/// Adds the entry to the numbered names; false when it is one of them.
bool addToNumbers(QSettings& settings, const QString& entryKey)
{
    settings.beginGroup(QStringLiteral("InstalledProducts"));
    const QStringList numbers = settings.childKeys();
    const bool isListed = std::any_of(numbers.cbegin(), numbers.cend(), [&](const QString& number) {
        return settings.value(number).toString() == entryKey;
    });
    if (!isListed)
        settings.setValue(QString::number(numbers.size() + 1), entryKey);
    settings.endGroup();
    return !isListed;
}

/// Without an application object the settings library's own answer would be a warning and an empty text.
QString programLocation()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    const QString directory = toQString(programDirectory());
    return directory.size() > 1 ? directory.chopped(1) : directory; // without its separator
}

void setTextOr(const wchar_t* text, const QString& fallback, QString& out)
{
    out = text && text[0] != L'\0' ? toQString(text) : fallback;
}

} // namespace

bool VornaConfig::createProductsConfigReg()
{
    const QString directory = listDirectory();
    if (!makeDirectory(directory))
        return false;
    const QString file = directory + QStringLiteral("/VR2D.conf");
    if (!removeLeftLock(file + QStringLiteral(".lock")) || !hasAnEnd(file))
        return true;
    const ProductEntry entry = entryOf(*this);
    QSettings settings(file, QSettings::NativeFormat);
    if (!canTakeValuesApart(settings))
        return true;
    keepEscapes(settings);
    if (addToNumbers(settings, entry.key))
        wrirteProductInfo(settings, entry.key, entry.displayName, entry.productCode, entry.languageName, entry.version);
    return true;
}

bool CreateProductsConfigReg()
{
    VornaConfig* const config = vornConfig();
    return config && config->createProductsConfigReg();
}

void wrirteProductInfo(QSettings& settings, const QString& entryKey, const QString& displayName,
                       const QString& productCode, const QString& languageName, const QString& version)
{
    setValue(settings, entryKey, QStringLiteral("Location"), programLocation());
    setValue(settings, entryKey, QStringLiteral("ProductName"), displayName);
    setValue(settings, entryKey, QStringLiteral("Product"), productCode);
    setValue(settings, entryKey, QStringLiteral("Language"), languageName);
    setValue(settings, entryKey, QStringLiteral("Version"), version);
}

void setValue(QSettings& settings, const QString& group, const QString& key, const QString& value)
{
    settings.beginGroup(group);
    settings.setValue(key, QVariant(value));
    settings.endGroup();
}

void getProductName(const wchar_t* name, QString& code)
{
    setTextOr(name, QStringLiteral("VORNA"), code);
}

void getLangName(const wchar_t* shortName, QString& language)
{
    setTextOr(shortName, QStringLiteral("zh-CN"), language);
}
