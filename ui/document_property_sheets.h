// The export through which Windows asks for document settings.
#ifndef TESSARY_UI_DOCUMENT_PROPERTY_SHEETS_H
#define TESSARY_UI_DOCUMENT_PROPERTY_SHEETS_H

#include <windows.h>

#include <prsht.h>

#include <compstui.h>

extern "C"
{

    // Without PROPSHEETUI_INFO, `lParam` is a DOCUMENTPROPERTYHEADER: returns the size of the printer's device mode, or
    // 1 when a merged device mode was stored in its pdmOut, or 0 on failure. With it, adds the driver's pages to a
    // property sheet, takes the user's choices over and releases what the sheet used, by its Reason; `lParam` is then
    // what Windows passes with the reason. Returns 1, or 0 when the sheet cannot be shown.
    LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) noexcept;
}

#endif
