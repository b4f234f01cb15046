// Every object that is constructed when the library is loaded, in that order; they are destroyed in the
// reverse order.
#include <QtCore/QString>

#include "VrPlatformBase/VrPlatformBase.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaProduct.h"
#include "store/store_group.h"

// Zero before anything is constructed.
QSettings* g_globalSettings = nullptr;
HMODULE gVrUInfoResDllInstance = nullptr;

VornaConfig VornaConfig::_sg_vorna_config;
VornaProduct VornaProduct::sg_vrproduct;

namespace
{

VrLocker g_storeLock;

} // namespace

QString g_strPrefix = QStringLiteral(":/VrCustomRes/VrCustomRes");

namespace
{

/// Tells the process hook of load and unload.
class ProcessHooks final
{
public:
    ProcessHooks() { DllMain(ownModule(), kAttach, nullptr); }
    ProcessHooks(const ProcessHooks&) = delete;
    ProcessHooks& operator=(const ProcessHooks&) = delete;
    ~ProcessHooks() { DllMain(ownModule(), kDetach, nullptr); }

private:
    static constexpr DWORD kDetach = 0;
    static constexpr DWORD kAttach = 1;

    static HMODULE ownModule() { return GetModuleHandleW(L"libVrUInfo.so"); }
};

ProcessHooks g_processHooks;

} // namespace

VrLocker& vruinfo::internal::storeLock()
{
    return g_storeLock;
}
