// Keeps a device mode's description of itself while its private block is written.
#ifndef TESSARY_REMOTE_DEVMODE_HEADER_KEEPER_H
#define TESSARY_REMOTE_DEVMODE_HEADER_KEEPER_H

#include <windows.h>

namespace tsypr
{

// The private block is addressed from the end of the device mode. When the driver-extra area is smaller than the block,
// the block lies over public fields, and writing it must not change versions and sizes: they are put back.
class DevModeHeaderKeeper
{
public:
    explicit DevModeHeaderKeeper(DEVMODEW* dm) noexcept
        : m_dm(dm), m_specVersion(dm->dmSpecVersion), m_driverVersion(dm->dmDriverVersion), m_size(dm->dmSize),
          m_driverExtra(dm->dmDriverExtra)
    {
    }
    ~DevModeHeaderKeeper()
    {
        m_dm->dmSpecVersion = m_specVersion;
        m_dm->dmDriverVersion = m_driverVersion;
        m_dm->dmSize = m_size;
        m_dm->dmDriverExtra = m_driverExtra;
    }
    DevModeHeaderKeeper(const DevModeHeaderKeeper&) = delete;
    DevModeHeaderKeeper& operator=(const DevModeHeaderKeeper&) = delete;

private:
    DEVMODEW* m_dm;
    WORD m_specVersion;
    WORD m_driverVersion;
    WORD m_size;
    WORD m_driverExtra;
};

} // namespace tsypr

#endif
