#include "bench/device_mode.h"

namespace tsypr::bench
{

static_assert(kDeviceModeBytes == 220 + 1112);

DeviceMode MakeDeviceMode(DWORD fields) noexcept
{
    DeviceMode mode = {};
    DEVMODEW* dm = mode.Get();
    dm->dmSpecVersion = DM_SPECVERSION;
    dm->dmDriverVersion = 0x0100;
    dm->dmSize = sizeof(DEVMODEW);
    dm->dmDriverExtra = kPrivateDevModeSize;
    dm->dmFields = fields;
    dm->dmOrientation = DMORIENT_PORTRAIT;
    dm->dmPaperSize = DMPAPER_A4;
    dm->dmPaperLength = 2970;
    dm->dmPaperWidth = 2100;
    dm->dmScale = 100;
    dm->dmCopies = 1;
    dm->dmDefaultSource = DMBIN_AUTO;
    dm->dmPrintQuality = 600;
    dm->dmColor = DMCOLOR_COLOR;
    dm->dmDuplex = DMDUP_VERTICAL;
    dm->dmYResolution = 600;
    dm->dmCollate = DMCOLLATE_TRUE;
    dm->dmMediaType = DMMEDIA_STANDARD;
    std::wmemcpy(dm->dmFormName, L"A4", 3);
    PrivateDevMode* block = PrivateDevModePlace(dm);
    block->signature = kPrivateDevModeSignature;
    block->printerName.Write(L"Office Laser");
    block->featureBitmap = kFeatureNup | kFeatureFinishing;
    block->pagesPerSheet = 2;
    block->nupLayout.Write(L"psk:RightBottom");
    block->staple.Write(L"psk:StapleTopLeft");
    block->punch.Write(L"psk:None");
    return mode;
}

void CopyBytes(void* to, const void* from, size_t bytes) noexcept
{
    static void* (*volatile copy)(void*, const void*, size_t) = std::memcpy;
    copy(to, from, bytes);
}

} // namespace tsypr::bench
