#include "config/start_record.h"

#include <utility>

namespace vruinfo::internal
{

StartRecord& StartRecord::instance()
{
    static auto* const kRecord = new StartRecord; // never destroyed: asked for until the very end of the process
    return *kRecord;
}

void StartRecord::passOver(std::wstring place, const wchar_t* reason)
{
    if (m_isRecording)
        m_passedOver.push_back(std::move(place) + L": " + reason);
}

void StartRecord::take(const wchar_t* piece, const wchar_t* value, VornOrigin origin, std::wstring place)
{
    if (!m_isRecording)
        return;
    m_entries.push_back({piece, value, origin, std::move(place), std::move(m_passedOver)});
    m_passedOver.clear();
}

StartRecord::Recording::Recording()
{
    StartRecord& record = instance();
    record.m_isRecording = true;
    record.m_entries.clear();
    record.m_passedOver.clear();
}

StartRecord::Recording::~Recording()
{
    instance().m_isRecording = false;
}

std::wstring iniPlace(const wchar_t* file, const wchar_t* section, const wchar_t* key)
{
    return std::wstring(file) + L" [" + section + L"] " + key;
}

} // namespace vruinfo::internal

const std::vector<VornStartEntry>& vornStartRecord()
{
    return vruinfo::internal::StartRecord::instance().entries();
}
