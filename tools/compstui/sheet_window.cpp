#include "tools/compstui/sheet_window.h"

#include "tools/compstui/sheet.h"

#include <string>

namespace tsypr::compstui
{
namespace
{

// The spooler gives no title.
constexpr wchar_t kOwnTitle[] = L"Printing Preferences";

std::wstring NameOf(const PROPSHEETUI_INFO_HEADER& header, bool unicode)
{
    if (header.pTitle == nullptr)
    {
        return {};
    }
    if (!IS_INTRESOURCE(header.pTitle))
    {
        return unicode ? header.pTitle : Widen(reinterpret_cast<const char*>(header.pTitle));
    }
    const auto id = static_cast<UINT>(reinterpret_cast<uintptr_t>(header.pTitle));
    const wchar_t* text = nullptr;
    // With no room for a copy the function gives the text itself, which is not terminated.
    const int length = LoadStringW(header.hInst, id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

std::wstring TitleOf(const PROPSHEETUI_INFO_HEADER& header, bool unicode)
{
    std::wstring title = NameOf(header, unicode);
    if (title.empty())
    {
        return kOwnTitle;
    }
    if ((header.Flags & PSUIHDRF_EXACT_PTITLE) != 0)
    {
        return title;
    }
    if ((header.Flags & PSUIHDRF_DEFTITLE) != 0)
    {
        title += L" Default";
    }
    if ((header.Flags & PSUIHDRF_PROPTITLE) != 0)
    {
        title += L" Properties";
    }
    return title;
}

void SetIcon(PROPSHEETHEADERW& sheet, const PROPSHEETUI_INFO_HEADER& header) noexcept
{
    if ((header.Flags & PSUIHDRF_USEHICON) != 0)
    {
        sheet.hIcon = header.hIcon;
    }
    else if (header.IconID != 0)
    {
        sheet.hIcon = StandardIcon(header.IconID, 0, 0);
        if (sheet.hIcon == nullptr)
        {
            sheet.dwFlags |= PSH_USEICONID;
            sheet.pszIcon = reinterpret_cast<LPCWSTR>(header.IconID);
            return;
        }
    }
    sheet.dwFlags |= sheet.hIcon != nullptr ? PSH_USEHICON : 0;
}

int CALLBACK SheetCallback(HWND window, UINT message, LPARAM) noexcept
{
    if (message == PSCB_INITIALIZED)
    {
        Sheet::Showing()->SetWindow(window);
    }
    return 0;
}

const wchar_t* SystemIconFor(ULONG_PTR id) noexcept
{
    switch (id)
    {
    case IDI_CPSUI_WARNING:
        return IDI_WARNING;
    case IDI_CPSUI_NO:
    case IDI_CPSUI_ERROR:
    case IDI_CPSUI_STOP:
        return IDI_ERROR;
    case IDI_CPSUI_QUESTION:
        return IDI_QUESTION;
    default:
        return IDI_APPLICATION;
    }
}

} // namespace

INT_PTR ShowSheetWindow(const PROPSHEETUI_INFO_HEADER& header,
                        bool unicode,
                        std::vector<HPROPSHEETPAGE>& pages,
                        int startIndex)
{
    const std::wstring title = TitleOf(header, unicode);
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof(sheet);
    sheet.dwFlags = PSH_USECALLBACK;
    sheet.dwFlags |= (header.Flags & PSUIHDRF_NOAPPLYNOW) != 0 ? PSH_NOAPPLYNOW : 0;
    sheet.hwndParent = header.hWndParent;
    sheet.hInstance = header.hInst;
    sheet.pszCaption = title.c_str();
    sheet.nPages = static_cast<UINT>(pages.size());
    sheet.nStartPage = static_cast<UINT>(startIndex);
    sheet.phpage = pages.data();
    sheet.pfnCallback = SheetCallback;
    SetIcon(sheet, header);
    return PropertySheetW(&sheet);
}

HICON StandardIcon(ULONG_PTR id, int width, int height) noexcept
{
    if (id < IDI_CPSUI_ICONID_FIRST || id > IDI_CPSUI_ICONID_LAST)
    {
        return nullptr;
    }
    const int cx = width != 0 ? width : GetSystemMetrics(SM_CXICON);
    const int cy = height != 0 ? height : GetSystemMetrics(SM_CYICON);
    const auto shared = static_cast<HICON>(LoadImageW(nullptr, SystemIconFor(id), IMAGE_ICON, 0, 0, LR_SHARED));
    return static_cast<HICON>(CopyImage(shared, IMAGE_ICON, cx, cy, 0));
}

std::wstring Widen(const char* text)
{
    const int chars = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (chars <= 1)
    {
        return {};
    }
    std::wstring wide(static_cast<std::size_t>(chars), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), chars);
    wide.pop_back();
    return wide;
}

} // namespace tsypr::compstui
