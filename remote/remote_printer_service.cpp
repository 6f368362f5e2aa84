#include "remote/remote_printer_service.h"

#include "module/log.h"
#include "remote/printer_name.h"

namespace tsypr
{

RemotePrinterService RemoteService = {};

namespace
{

// Returns whether the function was found.
template <typename Function>
bool Resolve(const char* name, Function& function) noexcept
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(RemoteService.ServerApiModule, name)));
    return function != nullptr;
}

bool ResolveAll() noexcept
{
    RemotePrinterService& service = RemoteService;
    const bool found[] = {Resolve("VpOpenRemotePrinter", service.VpOpenRemotePrinter),
                          Resolve("VpCloseRemotePrinter", service.VpCloseRemotePrinter),
                          Resolve("VpGetDevMode", service.VpGetDevMode),
                          Resolve("VpFreeDevMode", service.VpFreeDevMode),
                          Resolve("VpGetDeviceCapabilities", service.VpGetDeviceCapabilities),
                          Resolve("VpFreeDeviceCapabilities", service.VpFreeDeviceCapabilities),
                          Resolve("VpMakePTQuery", service.VpMakePTQuery),
                          Resolve("VpFreePTData", service.VpFreePTData)};
    for (const bool one : found)
    {
        if (!one)
        {
            return false;
        }
    }
    return true;
}

} // namespace

bool InitServerApiLib() noexcept
{
    // A plain file name: the library is found by the standard search order.
    RemoteService.ServerApiModule = LoadLibraryW(L"tsyprserverapi.dll");
    if (RemoteService.ServerApiModule == nullptr)
    {
        LogError("%s, loading server api library failed with error %d.\n",
                 "InitServerApiLib",
                 static_cast<int>(GetLastError()));
        return false;
    }
    LogAt(kLogInfo, "%s, succeeded to load server api library.\n", "InitServerApiLib");
    if (!ResolveAll())
    {
        LogError("%s, GetProcAddress failed with error%d.\n", "InitServerApiLib", static_cast<int>(GetLastError()));
        FreeServerApiLib();
        return false;
    }
    return true;
}

void FreeServerApiLib() noexcept
{
    if (RemoteService.ServerApiModule != nullptr)
    {
        FreeLibrary(RemoteService.ServerApiModule);
        RemoteService = {};
    }
}

RemotePrinterHandle OpenRemotePrinterByName(const wchar_t* localPrinterName) noexcept
{
    wchar_t name[kPrinterNameChars] = {};
    NormalizePrinterName(name, localPrinterName);
    RemotePrinterHandle handle = nullptr;
    RemoteService.VpOpenRemotePrinter(name, &handle);
    return handle;
}

} // namespace tsypr
