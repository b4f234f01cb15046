#include "settings_copy.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include "provision/bounded_values.h"

namespace vruinfo::tool
{

SettingsCopy::SettingsCopy(const QString& file)
{
    const QString copy = m_directory.filePath(QStringLiteral("copy.conf"));
    // What is no plain file may have no end.
    if (!m_directory.isValid() || !QFileInfo(file).isFile() || !QFile::copy(file, copy))
        return;
    m_settings = std::make_unique<QSettings>(copy, QSettings::NativeFormat);
    if (!vruinfo::internal::canTakeValuesApart(*m_settings))
        m_settings.reset();
}

} // namespace vruinfo::tool
