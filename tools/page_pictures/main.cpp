// Takes pictures of the printing preferences pages of one language library, with sample values and without a printer:
// page_pictures LIBRARY.dll FOLDER. Writes FOLDER\1.bmp to 5.bmp, one for each tab. scripts/contact_sheet.sh runs it.
#include "language/resource_ids.h"
#include "tools/page_pictures/samples.h"
#include "tools/page_pictures/window_picture.h"

#include <windows.h>
#include <commctrl.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>

namespace
{

// In the order of the tabs.
constexpr int kPages[] = {IDD_LAYOUT, IDD_PAPER, IDD_ADVANCED, IDD_FINISHING, IDD_WATERMARK};
constexpr size_t kPageCount = std::size(kPages);

INT_PTR CALLBACK ShowPage(HWND page, UINT message, WPARAM, LPARAM parameter)
{
    if (message != WM_INITDIALOG)
    {
        return FALSE;
    }
    const auto& description = *reinterpret_cast<const PROPSHEETPAGEW*>(parameter);
    tsypr::pictures::FillSamples(page, static_cast<int>(description.lParam), description.hInstance);
    return TRUE;
}

HWND OpenSheet(HMODULE library)
{
    PROPSHEETPAGEW pages[kPageCount] = {};
    for (size_t i = 0; i < kPageCount; ++i)
    {
        pages[i].dwSize = sizeof(pages[i]);
        pages[i].hInstance = library;
        pages[i].pszTemplate = MAKEINTRESOURCEW(kPages[i]);
        pages[i].pfnDlgProc = ShowPage;
        pages[i].lParam = kPages[i];
    }
    PROPSHEETHEADERW sheet{};
    sheet.dwSize = sizeof(sheet);
    sheet.dwFlags = PSH_MODELESS | PSH_PROPSHEETPAGE;
    sheet.pszCaption = L"Office Printer";
    sheet.nPages = kPageCount;
    sheet.ppsp = pages;
    const INT_PTR result = PropertySheetW(&sheet);
    return result > 0 ? reinterpret_cast<HWND>(result) : nullptr;
}

void HandleMessages()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        DispatchMessageW(&message);
    }
}

bool SavePage(HWND sheet, size_t index, const std::filesystem::path& file)
{
    SendMessageW(sheet, PSM_SETCURSEL, index, 0);
    // Access keys are underlined as after a press of the Alt key.
    SendMessageW(sheet, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEACCEL), 0);
    HandleMessages();
    RedrawWindow(sheet, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    HandleMessages();
    return tsypr::pictures::SaveWindowPicture(sheet, file);
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    if (count != 3)
    {
        std::fputs("page_pictures LIBRARY.dll FOLDER\n", stderr);
        return 1;
    }
    // Only a program that knows about the screen's resolution is shown at it.
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_SYSTEM_AWARE);
    const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS | ICC_TAB_CLASSES};
    InitCommonControlsEx(&controls);
    HMODULE library = LoadLibraryW(arguments[1]);
    HWND sheet = library != nullptr ? OpenSheet(library) : nullptr;
    if (sheet == nullptr)
    {
        std::fprintf(stderr, "page_pictures: the pages of %ls cannot be shown\n", arguments[1]);
        return 2;
    }
    ShowWindow(sheet, SW_SHOW);
    for (size_t i = 0; i < kPageCount; ++i)
    {
        if (!SavePage(sheet, i, std::filesystem::path(arguments[2]) / (std::to_wstring(i + 1) + L".bmp")))
        {
            std::fprintf(stderr, "page_pictures: no picture of page %zu of %ls\n", i + 1, arguments[1]);
            return 3;
        }
    }
    DestroyWindow(sheet);
    return 0;
}
