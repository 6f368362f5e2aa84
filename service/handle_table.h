#ifndef TESSARY_SERVICE_HANDLE_TABLE_H
#define TESSARY_SERVICE_HANDLE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <unordered_map>

#include "service/profile.h"

namespace tsypr::service
{

// The open printer handles. A handle is a number and never an address, and no number is given out twice, so that a
// stale or invented handle is recognised.
class HandleTable
{
public:
    // A new handle, never null. Throws std::bad_alloc.
    void* Open(const Profile& profile)
    {
        const std::lock_guard lock(m_mutex);
        const std::uintptr_t handle = m_next;
        m_open.emplace(handle, &profile);
        m_next += 4;
        return reinterpret_cast<void*>(handle);
    }

    // False for a handle that is not open.
    bool Close(void* handle)
    {
        const std::lock_guard lock(m_mutex);
        return m_open.erase(reinterpret_cast<std::uintptr_t>(handle)) != 0;
    }

    // The handle's printer, null for a handle that is not open.
    const Profile* Find(void* handle) const
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_open.find(reinterpret_cast<std::uintptr_t>(handle));
        return found == m_open.end() ? nullptr : found->second;
    }

    std::size_t Count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_open.size();
    }

private:
    mutable std::mutex m_mutex;
    std::unordered_map<std::uintptr_t, const Profile*> m_open;
    std::uintptr_t m_next = 0x1000;
};

} // namespace tsypr::service

#endif
