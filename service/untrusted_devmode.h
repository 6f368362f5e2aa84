#ifndef TESSARY_SERVICE_UNTRUSTED_DEVMODE_H
#define TESSARY_SERVICE_UNTRUSTED_DEVMODE_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>

#include <windows.h>

#include "service/private_block.h"

namespace tsypr::service
{

// A device mode of unknown origin, read without trusting its own sizes.
class UntrustedDevMode
{
public:
    explicit UntrustedDevMode(std::span<const std::byte> bytes) : m_bytes(bytes)
    {
        if (bytes.size() < offsetof(DEVMODEW, dmOrientation))
        {
            return;
        }
        WORD sizes[2];
        std::memcpy(sizes, bytes.data() + offsetof(DEVMODEW, dmSize), sizeof(sizes));
        m_publicSize = std::min<std::size_t>({bytes.size(), sizes[0], sizeof(DEVMODEW)});
        m_declaredSize = sizes[0];
        m_declaredExtra = sizes[1];
        std::memcpy(&m_mode, bytes.data(), m_publicSize);
    }

    // Whether there is a public part with its list of fields at all.
    bool HasFields() const
    {
        return m_publicSize >= offsetof(DEVMODEW, dmOrientation);
    }

    // The field's value when its bit is set and the field lies within the device mode.
    template <class Field>
    bool Get(DWORD bit, const Field DEVMODEW::*member, Field& value) const
    {
        const auto* begin = reinterpret_cast<const std::byte*>(&m_mode);
        const auto* field = reinterpret_cast<const std::byte*>(&(m_mode.*member));
        const auto end = static_cast<std::size_t>(field - begin) + sizeof(Field);
        if (end > m_publicSize || (m_mode.dmFields & bit) == 0)
        {
            return false;
        }
        value = m_mode.*member;
        return true;
    }

    // The whole driver-extra area, empty when it does not lie within the bytes.
    std::span<const std::byte> Extra() const
    {
        if (m_declaredSize < offsetof(DEVMODEW, dmOrientation) || m_declaredSize + m_declaredExtra > m_bytes.size())
        {
            return {};
        }
        return m_bytes.subspan(m_declaredSize, m_declaredExtra);
    }

    bool GetPrivate(PrivateBlock& block) const
    {
        const std::span<const std::byte> extra = Extra();
        if (extra.size() < sizeof(block))
        {
            return false;
        }
        std::memcpy(&block, extra.last(sizeof(block)).data(), sizeof(block));
        return block.signature == kPrivateSignature;
    }

private:
    std::span<const std::byte> m_bytes;
    std::size_t m_publicSize = 0;
    std::size_t m_declaredSize = 0;
    std::size_t m_declaredExtra = 0;
    DEVMODEW m_mode{};
};

} // namespace tsypr::service

#endif
