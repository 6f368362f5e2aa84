// Device modes of the size that a printer without extra data of its own has.
#ifndef TESSARY_BENCH_DEVICE_MODE_H
#define TESSARY_BENCH_DEVICE_MODE_H

#include "remote/private_devmode.h"

namespace tsypr::bench
{

inline constexpr size_t kDeviceModeBytes = sizeof(DEVMODEW) + kPrivateDevModeSize;

// 220 public bytes and the private block.
struct DeviceMode
{
    alignas(DEVMODEW) unsigned char bytes[kDeviceModeBytes];

    DEVMODEW* Get() noexcept
    {
        return reinterpret_cast<DEVMODEW*>(bytes);
    }
};

// Portrait, A4, 600 dpi, N-up and finishing settings, of the printer "Office Laser". `fields` are the dmFields bits.
DeviceMode MakeDeviceMode(DWORD fields) noexcept;

// The same bytes copied the way that any code would, by a call that the compiler neither sees through nor drops.
void CopyBytes(void* to, const void* from, size_t bytes) noexcept;

} // namespace tsypr::bench

#endif
