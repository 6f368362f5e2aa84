// A printer driver for tests: its settings are nothing but copies, and its property sheet is the test program's.
#include "ui/document_property_header.h"

#include <prsht.h>

#include <compstui.h>

namespace
{

PFNPROPSHEETUI g_describer = nullptr;

} // namespace

extern "C" __declspec(dllexport) void WINAPI SetDescriber(PFNPROPSHEETUI describer)
{
    g_describer = describer;
}

extern "C" __declspec(dllexport) LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO info, LPARAM lParam)
{
    if (info != nullptr)
    {
        return g_describer(info, lParam);
    }
    auto& header = *reinterpret_cast<DOCUMENTPROPERTYHEADER*>(lParam);
    header.cbOut = sizeof(DEVMODEW);
    if (header.fMode == 0 || header.pdmOut == nullptr)
    {
        return sizeof(DEVMODEW);
    }
    *header.pdmOut = {};
    header.pdmOut->dmSpecVersion = DM_SPECVERSION;
    header.pdmOut->dmSize = sizeof(DEVMODEW);
    header.pdmOut->dmFields = DM_COPIES;
    header.pdmOut->dmCopies = 1;
    return 1;
}

extern "C" __declspec(dllexport) DWORD WINAPI DrvDeviceCapabilities(HANDLE, PWSTR, WORD, void*, DEVMODEW*)
{
    return static_cast<DWORD>(-1);
}
