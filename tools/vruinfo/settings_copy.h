// Reading a settings file from outside, as another process would.
#pragma once

#include <memory>

#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

namespace vruinfo::tool
{

/// A private copy of a settings file, open for reading. The settings library keeps one content per file name in a
/// process, its own unsaved changes included: under a name of its own, the copy shows what the file has and nothing
/// else, and what stands beside the file is left alone. It is gone with the object.
class SettingsCopy final
{
public:
    explicit SettingsCopy(const QString& file);

    /// Not where the file cannot be read or copied, or has a value that asks for more memory than there is.
    [[nodiscard]] bool isOpen() const { return m_settings != nullptr; }
    /// Whether it has lines that are no settings; the others can be read.
    [[nodiscard]] bool isDamaged() const { return m_settings->status() == QSettings::FormatError; }
    [[nodiscard]] QSettings& settings() const { return *m_settings; }

private:
    QTemporaryDir m_directory; // outlives what is open in it
    std::unique_ptr<QSettings> m_settings;
};

} // namespace vruinfo::tool
