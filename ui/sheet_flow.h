// The steps of the export that describes the property sheet: opening, taking the result over, closing.
#ifndef TESSARY_UI_SHEET_FLOW_H
#define TESSARY_UI_SHEET_FLOW_H

#include "remote/devmode_copy.h"
#include "remote/private_devmode.h"
#include "remote/shared_devmode.h"
#include "ui/ui_context.h"

#include <windows.h>

#include <prsht.h>

#include <compstui.h>

namespace tsypr
{

// What lives as long as one sheet. The context works on the fetched device mode when the caller has no output.
struct OpenedSheet : UIContext
{
    SharedDevMode fetched;
    DevModeCopy shown; // what a sheet that is read-only works on, since pages store some settings when they open
    DEVMODEW* input;   // the caller's; null if there is none
    DEVMODEW* output;  // likewise
};

// What the messages of all steps are logged under.
inline constexpr char kSheetFunction[] = "DrvDocumentPropertySheets";

// Writes the name into the private block, if the device mode has one.
void StorePrinterName(DEVMODEW* devMode, const wchar_t (&name)[kPrinterNameChars]) noexcept;

// Makes the sheet's context, which stays in info.UserData until CloseSheet, and adds the pages. `info.lParamInit` is
// the caller's DOCUMENTPROPERTYHEADER. Returns 1, or 0 when the sheet cannot be shown.
LONG OpenSheet(PROPSHEETUI_INFO& info) noexcept;

// Writes what the user chose into the device mode of the sheet, and that into the caller's output. Returns 1.
LONG TakeResult(const PROPSHEETUI_INFO& info, const SETRESULT_INFO& result) noexcept;

// Releases what OpenSheet made, if anything. Returns 1.
LONG CloseSheet(PROPSHEETUI_INFO& info) noexcept;

} // namespace tsypr

#endif
