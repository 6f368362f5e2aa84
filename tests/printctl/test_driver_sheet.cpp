// The test driver's printing preferences: one page. OK sets the number of copies to one that tells the language library
// which the driver found when it was loaded.
#include "tests/printctl/test_driver_sheet.h"

#include <prsht.h>

#include <string>

namespace
{

constexpr wchar_t kLanguageKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir\\plugins";

HMODULE g_language = nullptr;

struct Sheet
{
    PROPSHEETUI_INFO info;
    DEVMODEW* out;
    HANDLE page;
};

// An empty dialog: the template, then no menu, the default class and no title.
struct EmptyDialog
{
    DLGTEMPLATE header;
    WORD texts[3];
};
constexpr EmptyDialog kDialog = {{WS_CHILD | WS_CAPTION, 0, 0, 0, 0, 100, 60}, {}};

INT_PTR CALLBACK AnswerPage(HWND dialog, UINT message, WPARAM, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
    }
    if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == PSN_APPLY)
    {
        const auto& sheet = *reinterpret_cast<const Sheet*>(GetWindowLongPtrW(dialog, DWLP_USER));
        sheet.info.pfnComPropSheet(
            sheet.info.hComPropSheet, CPSFUNC_SET_RESULT, reinterpret_cast<LPARAM>(sheet.page), CPSUI_OK);
    }
    return static_cast<INT_PTR>(message == WM_INITDIALOG);
}

LONG Open(PROPSHEETUI_INFO& info, DEVMODEW* out)
{
    auto* sheet = new Sheet{info, out, nullptr};
    info.UserData = reinterpret_cast<ULONG_PTR>(sheet);
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof(page);
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    page.pszTitle = L"Test";
    page.pResource = &kDialog.header;
    page.pfnDlgProc = AnswerPage;
    page.lParam = reinterpret_cast<LPARAM>(sheet);
    sheet->page = reinterpret_cast<HANDLE>(
        info.pfnComPropSheet(info.hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&page), 0));
    return sheet->page != nullptr ? 1 : 0;
}

} // namespace

LONG AnswerSheet(PROPSHEETUI_INFO& info, DEVMODEW* out)
{
    const auto* sheet = reinterpret_cast<const Sheet*>(info.UserData);
    switch (info.Reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return Open(info, out);
    case PROPSHEETUI_REASON_SET_RESULT:
        sheet->out->dmCopies = GetProcAddress(g_language, "DrvDeviceCapabilities") != nullptr ? 12 : 34;
        return 1;
    case PROPSHEETUI_REASON_DESTROY:
        delete sheet;
        return 1;
    default:
        return 1;
    }
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*)
{
    wchar_t file[MAX_PATH] = L"";
    DWORD size = sizeof(file);
    if (reason == DLL_PROCESS_ATTACH &&
        RegGetValueW(HKEY_LOCAL_MACHINE, kLanguageKey, L"tsyprui_source", RRF_RT_REG_SZ, nullptr, file, &size) == 0)
    {
        // As a file that is a copy of this one, the library must not start to look for a language as well.
        g_language = LoadLibraryExW(
            (std::wstring(file) + L"tsyprUI_en_us_409.dll").c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    }
    else if (reason == DLL_PROCESS_DETACH && g_language != nullptr)
    {
        FreeLibrary(g_language);
    }
    return TRUE;
}
