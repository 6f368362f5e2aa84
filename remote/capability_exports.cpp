#include "module/log.h"
#include "remote/driver_exports.h"
#include "remote/private_devmode.h"
#include "remote/remote_printer_service.h"

#include <cstring>

namespace tsypr
{
namespace
{

// Without an output buffer only the count is asked for.
int32_t QueryCapability(
    RemotePrinterHandle handle, WORD capability, void* output, const DEVMODEW* devMode, DWORD* status) noexcept
{
    const auto devModeSize = devMode != nullptr ? static_cast<uint32_t>(DevModeTotalSize(devMode)) : 0;
    int32_t result = -1;
    if (output == nullptr)
    {
        *status =
            RemoteService.VpGetDeviceCapabilities(handle, capability, nullptr, nullptr, devModeSize, devMode, &result);
        return result;
    }
    uint32_t size = 0;
    void* data = nullptr;
    *status = RemoteService.VpGetDeviceCapabilities(handle, capability, &size, &data, devModeSize, devMode, &result);
    if (data != nullptr)
    {
        std::memcpy(output, data, size);
        RemoteService.VpFreeDeviceCapabilities(data);
    }
    return result;
}

} // namespace
} // namespace tsypr

DWORD WINAPI DrvDeviceCapabilities(HANDLE, PWSTR pDeviceName, WORD iDevCap, PVOID pvOutput, PDEVMODEW pDevMode) noexcept
{
    using namespace tsypr;
    const RemotePrinterHandle handle = OpenRemotePrinterByName(pDeviceName);
    if (handle == nullptr)
    {
        LogError("%s, failed to open remote printer %S.\n", "DrvDeviceCapabilities", pDeviceName);
        return GDI_ERROR;
    }
    DWORD status = 0;
    const int32_t result = QueryCapability(handle, iDevCap, pvOutput, pDevMode, &status);
    LogVerbose("%s, VpGetDeviceCapabilities(%d) returned %d with query result %d\n",
               "DrvDeviceCapabilities",
               iDevCap,
               static_cast<int>(status),
               result);
    RemoteService.VpCloseRemotePrinter(handle);
    return static_cast<DWORD>(result);
}

DWORD WINAPI
DrvSplDeviceCaps(HANDLE hPrinter, PWSTR pDeviceName, WORD Capability, PVOID pOutput, DWORD, PDEVMODEW pDevMode) noexcept
{
    return DrvDeviceCapabilities(hPrinter, pDeviceName, Capability, pOutput, pDevMode);
}

BOOL WINAPI DevQueryPrintEx(void*) noexcept
{
    return 1;
}
