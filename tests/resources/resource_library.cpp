#include "resource_library.h"

#include <algorithm>
#include <dlfcn.h>

namespace resources::test
{

const std::vector<std::string>& languages()
{
    static const std::vector<std::string> names = {"cs-CZ", "de-DE", "en-US", "es-ES", "fr-FR",
                                                   "hu-HU", "it-IT", "ja-JP", "ko-KR", "pl-PL",
                                                   "pt-PT", "ru-RU", "tr-TR", "zh-CN", "zh-TW"};
    return names;
}

QString languageLibrary(const std::string& language)
{
    return QStringLiteral(BUILT_RESOURCES "/%1/libVrUInfoRes.so").arg(QString::fromStdString(language));
}

QString partnerLibrary()
{
    return QStringLiteral(BUILT_RESOURCES "/partner/VrCustomRes.so");
}

ResourceLibrary::ResourceLibrary(const QString& path) :
    m_handle(dlopen(path.toUtf8().constData(), RTLD_NOW | RTLD_LOCAL))
{
    if (!m_handle) {
        m_loadError = dlerror();
    }
}

std::vector<VrResourceString> ResourceLibrary::rows() const
{
    if (!m_handle) {
        return {};
    }
    const auto* table = static_cast<const VrResourceString*>(dlsym(m_handle.get(), "VrResourceStrings"));
    const auto* count = static_cast<const std::uint32_t*>(dlsym(m_handle.get(), "VrResourceStringCount"));
    if (!table || !count) {
        return {};
    }
    return {table, table + *count};
}

Texts ResourceLibrary::texts() const
{
    Texts texts;
    for (const VrResourceString& row : rows()) {
        texts[row.id] = row.text;
    }
    return texts;
}

void ResourceLibrary::Close::operator()(void* handle) const
{
    dlclose(handle);
}

std::string testName(const std::string& language)
{
    std::string name = language;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
}

} // namespace resources::test
