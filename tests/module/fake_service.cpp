// A remote printer service that knows no printer, built with all its functions and with one left out.
#include <windows.h>

#define SERVICE_EXPORT extern "C" __declspec(dllexport)

// Without a printer nobody calls these; the module only looks for their names.
#define UNCALLED_FUNCTION(name)                                                                                        \
    SERVICE_EXPORT void WINAPI name() {}

#ifndef TESSARY_OMIT_VpOpenRemotePrinter
SERVICE_EXPORT DWORD WINAPI VpOpenRemotePrinter(const wchar_t*, void** handle)
{
    *handle = nullptr;
    return ERROR_INVALID_PRINTER_NAME;
}
#endif
UNCALLED_FUNCTION(VpCloseRemotePrinter)
UNCALLED_FUNCTION(VpGetDevMode)
UNCALLED_FUNCTION(VpFreeDevMode)
UNCALLED_FUNCTION(VpGetDeviceCapabilities)
UNCALLED_FUNCTION(VpFreeDeviceCapabilities)
UNCALLED_FUNCTION(VpMakePTQuery)
#ifndef TESSARY_OMIT_VpFreePTData
UNCALLED_FUNCTION(VpFreePTData)
#endif
