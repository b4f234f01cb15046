/// \file resource_library.h
/// A built resource library as a loader sees it: the two symbols, asked for by name.
#pragma once

#include <VrOsBase/VrOsBase.h>

#include <QString>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace resources::test
{

/// Short names of the languages that ship, in the order of their ids.
const std::vector<std::string>& languages();

QString languageLibrary(const std::string& language); ///< path of a language's built library
QString partnerLibrary();                             ///< path of the sample partner's built library

using Texts = std::map<std::uint32_t, std::wstring>;

/// Holds a library loaded for its own life.
class ResourceLibrary final
{
public:
    explicit ResourceLibrary(const QString& path);

    [[nodiscard]] std::string loadError() const { return m_loadError; } ///< empty when the library is loaded
    [[nodiscard]] std::vector<VrResourceString> rows() const;           ///< empty when a symbol is missing
    [[nodiscard]] Texts texts() const;

private:
    struct Close {
        void operator()(void* handle) const;
    };
    std::unique_ptr<void, Close> m_handle;
    std::string m_loadError;
};

/// The language as a test name, which takes letters and digits only.
std::string testName(const std::string& language);

} // namespace resources::test
