// The export through which Windows asks for document settings.
#ifndef TESSARY_UI_DOCUMENT_PROPERTY_SHEETS_H
#define TESSARY_UI_DOCUMENT_PROPERTY_SHEETS_H

#include <windows.h>

#include <prsht.h>

#include <compstui.h>

extern "C"
{

    // Without PROPSHEETUI_INFO, `lParam` is a DOCUMENTPROPERTYHEADER: returns the size of the printer's device mode, or
    // 1 when a merged device mode was stored in its pdmOut, or 0 on failure.
    LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO pPSUIInfo, LPARAM lParam) noexcept;
}

#endif
