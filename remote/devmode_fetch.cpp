#include "remote/devmode_fetch.h"

#include "module/log.h"
#include "remote/devmode_dump.h"
#include "remote/private_devmode.h"
#include "remote/remote_printer_service.h"

namespace tsypr
{

SharedDevMode GetDevModeByVPrinterName(const wchar_t* printerName) noexcept
{
    RemotePrinterHandle handle = nullptr;
    RemoteService.VpOpenRemotePrinter(printerName, &handle);
    if (handle == nullptr)
    {
        LogError("%s, failed to open remote printer %S.\n", "GetDevModeByVPrinterName", printerName);
        return {};
    }
    DEVMODEW* theirs = nullptr;
    RemoteService.VpGetDevMode(handle, &theirs);
    RemoteService.VpCloseRemotePrinter(handle);
    if (theirs == nullptr)
    {
        LogError("%s, failed to call VpGetDevMode.\n", "GetDevModeByVPrinterName");
        return {};
    }
    SharedDevMode ours = CopyToSharedDevMode(theirs);
    if (ours == nullptr)
    {
        LogError("%s, failed to allocate memory %u.\n",
                 "GetDevModeByVPrinterName",
                 static_cast<unsigned>(DevModeTotalSize(theirs)));
    }
    PrintUtils::DumpDevMode(ours.get(), L"dm returned by VpGetDevMode():");
    RemoteService.VpFreeDevMode(theirs);
    return ours;
}

} // namespace tsypr
