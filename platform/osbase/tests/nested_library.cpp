// A library whose initialiser and finaliser use the module functions themselves.
#include "VrOsBase/VrOsBase.h"

namespace
{

class Nested final
{
public:
    Nested() : m_module(LoadLibraryW(L"" VR_TEST_LIBRARIES "/VrOsBaseSample.dll"))
    {
        SetLastError(m_module != nullptr ? 1000 : 1001);
    }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;
    Nested(Nested&&) = delete;
    Nested& operator=(Nested&&) = delete;
    ~Nested() { SetLastError(FreeLibrary(m_module) ? 2000 : 2001); }

private:
    HMODULE m_module;
};

const Nested nested;

} // namespace
