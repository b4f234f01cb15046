#include "osbase/last_error.h"

namespace
{

thread_local DWORD lastError = ERROR_SUCCESS;

} // namespace

DWORD GetLastError(void)
{
    return lastError;
}

void SetLastError(DWORD dwErrCode)
{
    lastError = dwErrCode;
}
