#include <atomic>
#include <memory>

#include "VrPlatformBase/VrPlatformBase.h"

namespace
{

std::atomic<VrCrashRecorder*> installedRecorder{nullptr};

} // namespace

void VrCrashRecorder::begin() {}

void VrCrashRecorder::recordMessage(const wchar_t* /*text*/) {}

void VrCrashRecorder::end() {}

VrCrashRecorder* vornSetCrashRecorder(VrCrashRecorder* recorder)
{
    return installedRecorder.exchange(recorder, std::memory_order_acq_rel);
}

VrCrashRecorder* vornGetCrashRecorder()
{
    return installedRecorder.load(std::memory_order_acquire);
}

void VrRaiseErrorStatus(unsigned int status, const wchar_t* message, int line)
{
    auto error = std::make_unique<VrErrorStatus>(status, message, line);
    if (VrCrashRecorder* recorder = vornGetCrashRecorder())
        recorder->recordError(error.get());
    throw error.release(); // NOLINT(misc-throw-by-value-catch-by-reference) the catcher owns it
}
