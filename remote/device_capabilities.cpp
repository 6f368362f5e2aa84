#include "remote/device_capabilities.h"

#include "module/log.h"
#include "remote/capability_list.h"
#include "remote/private_devmode.h"
#include "remote/remote_printer_service.h"

#include <wingdi.h>

#include <cstdlib>
#include <cstring>

namespace tsypr
{
namespace
{

// A list of the printer that the device mode names in its private block.
CapabilityList ListOf(const DEVMODEW* dm, uint16_t capIndex, size_t entrySize) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    const auto name = block != nullptr ? block->printerName.Read() : FixedText<kPrinterNameChars>{};
    return {name.text, capIndex, dm, entrySize};
}

template <typename Entry>
bool FindFirst(const CapabilityList& list, Entry wanted, uint32_t* outIndex) noexcept
{
    for (size_t i = 0; i < list.Count(); ++i)
    {
        if (list.At<Entry>(i) == wanted)
        {
            *outIndex = static_cast<uint32_t>(i);
            return true;
        }
    }
    return false;
}

// Copies what the service returned to memory of our own; false when memory runs out.
bool CopyOut(const void* data, uint32_t size, void** outData, uint32_t* outSize) noexcept
{
    void* copy = std::malloc(size);
    if (copy == nullptr)
    {
        LogError("%s, failed to alloc memory, %d.\n", "GetDeviceCapabilitiesData", static_cast<int>(size));
        return false;
    }
    std::memcpy(copy, data, size);
    *outData = copy;
    *outSize = size;
    return true;
}

} // namespace

int32_t GetDeviceCapabilitiesData(
    const wchar_t* printerName, uint16_t capIndex, const DEVMODEW* pDevMode, void** outData, uint32_t* outSize) noexcept
{
    const RemotePrinterHandle handle = OpenRemotePrinterByName(printerName);
    if (handle == nullptr)
    {
        LogError("%s, failed to open remote printer %S.\n", "GetDeviceCapabilitiesData", printerName);
        return -1;
    }
    uint32_t size = 0;
    void* data = nullptr;
    int32_t result = -1;
    const auto devModeSize = pDevMode != nullptr ? static_cast<uint32_t>(DevModeTotalSize(pDevMode)) : 0;
    const DWORD status =
        RemoteService.VpGetDeviceCapabilities(handle, capIndex, &size, &data, devModeSize, pDevMode, &result);
    RemoteService.VpCloseRemotePrinter(handle);
    if (data == nullptr || size == 0)
    {
        if (data != nullptr)
        {
            RemoteService.VpFreeDeviceCapabilities(data);
        }
        LogError("%s, failed to call VpGetDeviceCapabilities to get cap %d.\n", "GetDeviceCapabilitiesData", capIndex);
        return -1;
    }
    const bool copied = CopyOut(data, size, outData, outSize);
    RemoteService.VpFreeDeviceCapabilities(data);
    if (!copied)
    {
        return -1;
    }
    LogVerbose("%s, VpGetDeviceCapabilities(%d) returned %d with query result %d\n",
               "GetDeviceCapabilitiesData",
               capIndex,
               static_cast<int>(status),
               result);
    return result;
}

bool GetMatchedPaperSizeIndex(uint32_t* outIndex, int16_t paperSize, const DEVMODEW* pDevMode) noexcept
{
    *outIndex = kNoIndex;
    const CapabilityList papers = ListOf(pDevMode, DC_PAPERS, sizeof(int16_t));
    if (!papers.Read())
    {
        LogError("%s, failed to retrieve capabilities for DC_PAPERS.\n", "GetMatchedPaperSizeIndex");
        return false;
    }
    return FindFirst(papers, paperSize, outIndex);
}

bool GetMatchedMediaTypeIndex(uint32_t* outIndex, uint32_t mediaType, const DEVMODEW* pDevMode) noexcept
{
    *outIndex = kNoIndex;
    const CapabilityList types = ListOf(pDevMode, DC_MEDIATYPES, sizeof(uint32_t));
    if (!types.Read())
    {
        LogError("%s, failed to retrieve capabilities for DC_MEDIATYPES.\n", "GetMatchedMediaTypeIndex");
        return false;
    }
    if (FindFirst(types, mediaType, outIndex))
    {
        return true;
    }
    // Said here and not for paper sizes, on purpose.
    LogVerbose("%s, no matched value in array for provided mediaType: %d.\n",
               "GetMatchedMediaTypeIndex",
               static_cast<int>(mediaType));
    return false;
}

bool GetPaperDimensionByIndex(uint32_t index, const DEVMODEW* pDevMode, POINT* dimension) noexcept
{
    const CapabilityList sizes = ListOf(pDevMode, DC_PAPERSIZE, sizeof(POINT));
    if (!sizes.Read() || index >= sizes.Count())
    {
        LogError("%s, failed to retrieve capabilities for DC_PAPERSIZE.\n", "GetPaperDimensionByIndex");
        return false;
    }
    *dimension = sizes.At<POINT>(index);
    return true;
}

} // namespace tsypr
