#include "module/log.h"
#include "remote/driver_exports.h"
#include "remote/devmode_fetch.h"
#include "remote/devmode_header_keeper.h"
#include "remote/printer_name.h"
#include "remote/private_devmode.h"

#include <wingdi.h>

#include <algorithm>
#include <cstddef>

// Modes of the driver interface for which there is no header here.
#ifndef CDM_CONVERT
#define CDM_CONVERT 1
#define CDM_CONVERT351 2
#define CDM_DRIVER_DEFAULT 4
#endif

namespace tsypr
{
namespace
{

BOOL Fail(DWORD error) noexcept
{
    SetLastError(error);
    return FALSE;
}

BOOL DriverDefault(const wchar_t* printerName, DEVMODEW* out, LONG* needed) noexcept
{
    wchar_t name[kPrinterNameChars] = {};
    NormalizePrinterName(name, printerName);
    const SharedDevMode devMode = GetDevModeByVPrinterName(name);
    if (devMode == nullptr)
    {
        // The message has no line end.
        LogError("%s, failed to retrieve devmode for printer %S", "DrvConvertDevMode", name);
        return Fail(ERROR_FILE_NOT_FOUND);
    }
    const size_t size = DevModeTotalSize(devMode.get());
    *needed = static_cast<LONG>(size);
    if (out == nullptr)
    {
        LogVerbose("%s, desired buffer size=%d.\n", "DrvConvertDevMode", static_cast<int>(size));
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    // The caller has asked for the size first: what it passed in *needed is deliberately not compared.
    std::memcpy(static_cast<void*>(out), devMode.get(), size);
    return TRUE;
}

unsigned char* Bytes(DEVMODEW* dm) noexcept
{
    return reinterpret_cast<unsigned char*>(dm);
}

const unsigned char* Bytes(const DEVMODEW* dm) noexcept
{
    return reinterpret_cast<const unsigned char*>(dm);
}

// The driver-extra areas are copied from their starts, although the private block is addressed from the end: between
// areas of different sizes the block does not line up. That is how it must be. Returns whether anything was copied.
bool CopyConverted(DEVMODEW* out, const DEVMODEW* in) noexcept
{
    const size_t inSize = in->dmSize;
    const size_t outSize = out->dmSize;
    const size_t publicBytes = std::min(inSize, outSize);
    const size_t extraBytes = std::min(in->dmDriverExtra, out->dmDriverExtra);
    {
        const DevModeHeaderKeeper keeper(out);
        std::memmove(Bytes(out), Bytes(in), publicBytes);
    }
    std::memmove(Bytes(out) + outSize, Bytes(in) + inSize, extraBytes);
    return publicBytes + extraBytes != 0;
}

BOOL Convert(const DEVMODEW* in, DEVMODEW* out, LONG* needed) noexcept
{
    if (out == nullptr || *needed < static_cast<LONG>(DevModeTotalSize(out)))
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (in == nullptr)
    {
        LogError("%s, Invalid arguments.\n", "ConvertDevmode");
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (!CopyConverted(out, in))
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    *needed = static_cast<LONG>(DevModeTotalSize(out));
    return TRUE;
}

} // namespace
} // namespace tsypr

BOOL WINAPI
DrvConvertDevMode(LPWSTR pPrinterName, PDEVMODEW pdmIn, PDEVMODEW pdmOut, PLONG pcbNeeded, DWORD fMode) noexcept
{
    using namespace tsypr;
    if (pcbNeeded == nullptr)
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    LogVerbose("%s, deviceName = %S, pdmIn=%p, pdmOut=%p, fMode=%d, cbNeeded=%d\n",
               "DrvConvertDevMode",
               pPrinterName,
               static_cast<void*>(pdmIn),
               static_cast<void*>(pdmOut),
               static_cast<int>(fMode),
               static_cast<int>(*pcbNeeded));
    switch (fMode)
    {
    case CDM_DRIVER_DEFAULT:
        return DriverDefault(pPrinterName, pdmOut, pcbNeeded);
    case CDM_CONVERT:
        return Convert(pdmIn, pdmOut, pcbNeeded);
    default:
        LogError("%s, fMode=%d is not handled.\n", "DrvConvertDevMode", static_cast<int>(fMode));
        return Fail(ERROR_INVALID_PARAMETER);
    }
}
