#include "config/icons.h"

#include <dlfcn.h>

#include "companion_file.h"
#include "icons/icon_factory.h"

namespace vruinfo::internal
{
namespace
{

/// Null when it is not there or cannot be loaded.
void* loadLibrary()
{
    const std::optional<std::string> path = vrplatformbase::internal::findCompanion(kIconLibrary);
    return path ? dlopen(path->c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE) : nullptr;
}

struct IconLibrary {
    void* handle = loadLibrary();
    MakeIcon make = function<MakeIcon>(kMakeIcon);
    DeleteIcon destroy = function<DeleteIcon>(kDeleteIcon);

    template <typename Function>
    [[nodiscard]] Function function(const char* name) const
    {
        return handle ? reinterpret_cast<Function>(dlsym(handle, name)) : nullptr;
    }
};

const IconLibrary& iconLibrary()
{
    static const IconLibrary kLibrary;
    return kLibrary;
}

} // namespace

void loadIconLibrary()
{
    iconLibrary();
}

QIcon* makeIcon(const QString& path)
{
    const IconLibrary& library = iconLibrary();
    return library.make && library.destroy ? library.make(path) : nullptr;
}

void deleteIcon(QIcon*& icon)
{
    if (icon)
        iconLibrary().destroy(icon);
    icon = nullptr;
}

} // namespace vruinfo::internal
