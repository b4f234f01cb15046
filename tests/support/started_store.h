// A started library with its settings tree, and words for what is asked of it.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QtCore/QSettings>

#include "VrUInfo/RootKeys.h"
#include "VrUInfo/VornaConfig.h"
#include "installation.h"
#include "store_values.h"

namespace vrtest
{

inline constexpr std::size_t kCapacity = kVornPathCapacity;
inline constexpr wchar_t kCanary = L'\x5A5A';

/// A caller's buffer of exactly `capacity` characters with canaries behind it.
class GuardedBuffer
{
public:
    explicit GuardedBuffer(std::size_t capacity) : m_capacity(capacity), m_text(capacity + kCanaries, kCanary) {}
    wchar_t* data() { return m_text.data(); }
    int capacity() const { return static_cast<int>(m_capacity); }
    std::wstring text() const { return m_text.c_str(); }
    wchar_t at(std::size_t index) const { return m_text.at(index); }
    bool isUntouchedFrom(std::size_t index) const
    {
        return m_text.find_first_not_of(kCanary, index) == std::wstring::npos;
    }
    bool isWhole() const { return isUntouchedFrom(m_capacity); }

private:
    static constexpr std::size_t kCanaries = 16;

    std::size_t m_capacity;
    std::wstring m_text;
};

/// A text that was written into a longer string: as far as its terminator.
inline std::wstring untilTerminator(const std::wstring& buffer)
{
    return buffer.substr(0, buffer.find(L'\0'));
}

/// Starts the library in this process with all defaults; 0 when it did.
inline unsigned int start(const wchar_t* profile = nullptr)
{
    Installation::here().installLanguage("en-US");
    return InitVornConfig(nullptr, nullptr, L"en-US", profile);
}

/// The status of a start with a profile argument that is no bare name: everything is there but a profile.
inline constexpr unsigned int kStartedWithoutProfile = 8;

inline unsigned int startWithoutProfile()
{
    return start(L"no/profile");
}

inline std::wstring rootOf(VornaConfig::Path root)
{
    GuardedBuffer buffer(kCapacity);
    vornConfig()->getRegRootPath(root, buffer.data());
    EXPECT_TRUE(buffer.isWhole());
    return buffer.text();
}

/// All keys that the settings object holds, sorted, as it stands in memory.
inline std::vector<std::string> keysInStore()
{
    std::vector<std::string> keys;
    for (const QString& key : g_globalSettings->allKeys())
        keys.push_back(key.toStdString());
    return keys;
}

/// What stands on disk under a key once everything is written back; null when it is not there.
inline QString writtenText(const std::string& key)
{
    flush();
    return textInFile(Installation::here().settingsFile(), key);
}

inline QString writtenText(const std::wstring& key)
{
    return writtenText(utf8(key));
}

inline bool isWritten(const std::wstring& key)
{
    return !writtenText(key).isNull();
}

/// Puts a raw text under a key, as the settings library itself would.
inline void putText(const std::wstring& key, const std::string& text)
{
    g_globalSettings->setValue(QString::fromStdWString(key), QString::fromStdString(text));
}

inline bool isInStore(const std::wstring& key)
{
    return g_globalSettings->contains(QString::fromStdWString(key));
}

/// A path of exactly `length` characters made of components of at most 100.
inline std::wstring longPath(std::size_t length, wchar_t separator = L'/')
{
    std::wstring path(length, L'p');
    for (std::size_t i = 100; i + 1 < length; i += 101)
        path[i] = separator;
    return path;
}

/// Each test starts the library once.
class StartedStore : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(start(), 0U);
        ASSERT_NE(g_globalSettings, nullptr);
    }
    /// The settings object goes, the identity stays.
    static void closeStore() { vornConfig()->uinitRegObject(); }
    static VornaConfig& config() { return *vornConfig(); }
};

} // namespace vrtest
