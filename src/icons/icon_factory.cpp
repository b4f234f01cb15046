#include "icons/icon_factory.h"

#include <memory>

#include "icons/resource_icon.h"

using vruinfo::internal::ResourceIconEngine;

extern "C" {

[[gnu::visibility("default")]] QIcon* vrMakeResourceIcon(const QString& path)
{
    return std::make_unique<QIcon>(std::make_unique<ResourceIconEngine>(path).release()).release();
}

[[gnu::visibility("default")]] void vrDeleteIcon(QIcon* icon)
{
    delete icon;
}

} // extern "C"
