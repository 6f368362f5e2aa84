// A remote printer service that knows no printer, built with all its functions and with one left out.
#include <windows.h>

#include <cstdint>

#define SERVICE_EXPORT extern "C" __declspec(dllexport)

#ifndef TESSARY_OMIT_VpOpenRemotePrinter
SERVICE_EXPORT DWORD WINAPI VpOpenRemotePrinter(const wchar_t*, void** handle)
{
    *handle = nullptr;
    return ERROR_INVALID_PRINTER_NAME;
}
#endif

SERVICE_EXPORT void WINAPI VpCloseRemotePrinter(void*) {}

SERVICE_EXPORT DWORD WINAPI VpGetDevMode(void*, void** devMode)
{
    *devMode = nullptr;
    return ERROR_INVALID_HANDLE;
}

SERVICE_EXPORT void WINAPI VpFreeDevMode(void*) {}

SERVICE_EXPORT DWORD WINAPI VpGetDeviceCapabilities(void*, uint16_t, uint32_t*, void**, uint32_t, const void*, int32_t*)
{
    return ERROR_INVALID_HANDLE;
}

SERVICE_EXPORT void WINAPI VpFreeDeviceCapabilities(void*) {}

SERVICE_EXPORT DWORD WINAPI VpMakePTQuery(void*, uint32_t, uint32_t, const void*, uint32_t*, void**, int32_t*)
{
    return ERROR_INVALID_HANDLE;
}

#ifndef TESSARY_OMIT_VpFreePTData
SERVICE_EXPORT void WINAPI VpFreePTData(void*) {}
#endif
