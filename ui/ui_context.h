// What the pages of one property sheet share while it is open.
#ifndef TESSARY_UI_UI_CONTEXT_H
#define TESSARY_UI_UI_CONTEXT_H

#include "remote/private_devmode.h"
#include "watermark/watermark_block.h"

#include <windows.h>

#include <prsht.h>

#include <compstui.h>

#include <cstdint>

namespace tsypr
{

// Made zero-filled when the sheet is opened, filled by InitUIContext, edited by the pages, and written back into the
// device mode when the user confirms.
struct UIContext
{
    PFNCOMPROPSHEET comPropSheet; // the common property sheet interface that shows the pages
    HANDLE comPropSheetHandle;
    HANDLE layoutPage; // null when the page could not be added; likewise below
    HANDLE paperPage;
    HANDLE watermarkPage;
    HANDLE advancedPage;
    HANDLE finishingPage;
    DEVMODEW* devMode; // not owned; valid as long as the sheet is open
    wchar_t printerName[kPrinterNameChars];
    int16_t paperSource;
    int16_t paperSize;
    int32_t customPaperWidth; // tenths of a millimetre; 0: not set
    int32_t customPaperLength;
    wchar_t formName[32];
    uint32_t mediaType;
    int16_t orientation;
    int16_t duplex;
    int16_t color;
    int32_t printQuality;
    int32_t yResolution;
    uint32_t compression;
    uint32_t printChoice;
    uint8_t showPreDialog;
    uint8_t printAsImage;
    int16_t copies;
    uint32_t pagesPerSheet;
    int32_t nupDirectionIndex; // positions in the printer's lists; see capability_maps.h
    int32_t stapleIndex;
    int32_t punchIndex;
    WatermarkBlock watermark;
    bool isReadOnly; // the user may look at the settings, but not change them (DM_NOPERMISSION)
};

// Loads the settings of the device mode into the context, whose printer name and callbacks are set already. When the
// printer has N-up or finishing, its options are fetched first, which waits for the service.
void InitUIContext(UIContext* context, DEVMODEW* dm) noexcept;

} // namespace tsypr

#endif
