#include "VrPlatformBase/VrPlatformBase.h"

namespace
{

const wchar_t* textOrEmpty(const wchar_t* text) noexcept
{
    return text != nullptr ? text : L"";
}

} // namespace

VrException::~VrException() = default;

const wchar_t* VrException::description() const
{
    return L"";
}

int VrException::code() const
{
    return 0;
}

const wchar_t* VrException::className() const
{
    return L"VrException";
}

VrExceptionWithMsg::VrExceptionWithMsg(const wchar_t* message, const wchar_t* file, int line) :
    m_message(textOrEmpty(message)), m_file(textOrEmpty(file)), m_line(line)
{
}

VrExceptionWithMsg::~VrExceptionWithMsg() = default;

const wchar_t* VrExceptionWithMsg::description() const
{
    return m_message.c_str();
}

VrErrorStatus::VrErrorStatus(unsigned int status, const wchar_t* message, int line) :
    m_status(status), m_line(line), m_message(textOrEmpty(message))
{
}

VrErrorStatus::~VrErrorStatus() = default;
