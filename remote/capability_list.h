// A list-valued capability of a client printer, entry by entry.
#ifndef TESSARY_REMOTE_CAPABILITY_LIST_H
#define TESSARY_REMOTE_CAPABILITY_LIST_H

#include "module/malloc_ptr.h"
#include "remote/device_capabilities.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace tsypr
{

// Whole entries inside the returned bytes, whatever count the client claims.
class CapabilityList
{
public:
    // Asks the printer; the arguments are those of GetDeviceCapabilitiesData, and the size of one entry in bytes.
    CapabilityList(const wchar_t* printerName, uint16_t capIndex, const DEVMODEW* dm, size_t entrySize) noexcept
        : m_entrySize(entrySize)
    {
        void* data = nullptr;
        uint32_t size = 0;
        const int32_t count = GetDeviceCapabilitiesData(printerName, capIndex, dm, &data, &size);
        m_data.reset(static_cast<unsigned char*>(data));
        m_read = count != -1;
        m_count = count > 0 ? std::min(static_cast<size_t>(count), size / entrySize) : 0;
    }

    // Whether the printer answered.
    bool Read() const noexcept
    {
        return m_read;
    }
    size_t Count() const noexcept
    {
        return m_count;
    }
    template <typename Entry>
    Entry At(size_t index) const noexcept
    {
        Entry entry;
        std::memcpy(&entry, m_data.get() + index * m_entrySize, sizeof(entry));
        return entry;
    }

private:
    MallocPtr<unsigned char> m_data;
    size_t m_entrySize;
    size_t m_count = 0;
    bool m_read = false;
};

} // namespace tsypr

#endif
