// A record of the printer driver interface that the mingw-w64 headers lack.
#ifndef TESSARY_UI_DOCUMENT_PROPERTY_HEADER_H
#define TESSARY_UI_DOCUMENT_PROPERTY_HEADER_H

#include <windows.h>

#include <cstddef>

// A flag of fMode that they lack, too: the user may only look at the settings.
#ifndef DM_NOPERMISSION
#define DM_NOPERMISSION 0x20
#endif

// What the caller of DrvDocumentPropertySheets hands over, as Windows documents it.
struct DOCUMENTPROPERTYHEADER
{
    WORD cbSize;
    WORD Reserved;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
    PDEVMODEW pdmIn;
    PDEVMODEW pdmOut;
    DWORD cbOut; // receives the size of the device mode in bytes
    DWORD fMode; // DM_* flags of DocumentProperties; 0 asks for the size
};

static_assert(offsetof(DOCUMENTPROPERTYHEADER, hPrinter) == 8);
static_assert(offsetof(DOCUMENTPROPERTYHEADER, pdmOut) == 32);
static_assert(sizeof(DOCUMENTPROPERTYHEADER) == 48);

#endif
