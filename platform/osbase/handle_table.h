#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace vrosbase::internal
{

/// A number that no handle of this process had before. Multiples of four, so that it is never null, never
/// INVALID_HANDLE_VALUE and never a predefined key.
[[nodiscard]] std::uintptr_t nextHandleNumber();

/// The objects behind the handles of one kind. A handle is a number that is looked up, never an address that
/// is followed, so that any value may come in.
///
/// m_mutex guards m_values. An object that was got stays alive when its handle is removed meanwhile.
template <typename Value>
class HandleTable final
{
public:
    [[nodiscard]] void* add(std::shared_ptr<Value> value)
    {
        const std::uintptr_t number = nextHandleNumber();
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_values.emplace(number, std::move(value));
        return reinterpret_cast<void*>(number);
    }

    /// Null for what is not a handle of this table.
    [[nodiscard]] std::shared_ptr<Value> get(const void* handle) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_values.find(reinterpret_cast<std::uintptr_t>(handle));
        return found == m_values.end() ? nullptr : found->second;
    }

    [[nodiscard]] bool remove(const void* handle)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_values.erase(reinterpret_cast<std::uintptr_t>(handle)) != 0;
    }

private:
    mutable std::mutex m_mutex;
    std::map<std::uintptr_t, std::shared_ptr<Value>> m_values;
};

} // namespace vrosbase::internal
