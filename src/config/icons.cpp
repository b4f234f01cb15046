#include "config/icons.h"

#include <dlfcn.h>

#include "icons/icon_factory.h"

namespace vruinfo::internal
{
namespace
{

/// The library lies beside this one, or in a folder of ours there (the run path says so), and stays loaded.
struct IconLibrary {
    void* handle = dlopen(kIconLibrary, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
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
