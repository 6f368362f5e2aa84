// A printer driver with two pages, which reports its result as Microsoft asks drivers to: the page passes it to the
// property sheet when it is applied, and the driver's function then fills the caller's device mode.
#include "tests/compstui/test_driver.h"

#include "ui/document_property_header.h"

#include <windows.h>

#include <prsht.h>

#include <compstui.h>
#include <winspool.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

namespace
{

HINSTANCE g_instance = nullptr;
std::string g_log;

// What a sheet knows from INIT to DESTROY.
struct Sheet
{
    HANDLE group;
    PFNCOMPROPSHEET comPropSheet;
    HANDLE page;
    PDEVMODEW out;
};

void Log(const std::string& line)
{
    g_log += line + "\n";
}

void MakeDefault(DEVMODEW& devMode)
{
    devMode = {};
    devMode.dmSpecVersion = DM_SPECVERSION;
    devMode.dmSize = sizeof(devMode);
    devMode.dmFields = DM_COPIES;
    devMode.dmCopies = 1;
}

LONG AnswerWithoutSheet(DOCUMENTPROPERTYHEADER& header)
{
    header.cbOut = sizeof(DEVMODEW);
    if (header.fMode == 0 || header.pdmOut == nullptr)
    {
        return sizeof(DEVMODEW);
    }
    MakeDefault(*header.pdmOut);
    return 1;
}

INT_PTR CALLBACK PageProc(HWND dialog, UINT message, WPARAM, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam);
        return TRUE;
    }
    if (message != WM_NOTIFY || reinterpret_cast<const NMHDR*>(lParam)->code != PSN_APPLY)
    {
        return FALSE;
    }
    const auto& sheet = *reinterpret_cast<const Sheet*>(GetWindowLongPtrW(dialog, DWLP_USER));
    const LONG_PTR called =
        sheet.comPropSheet(sheet.group, CPSFUNC_SET_RESULT, reinterpret_cast<LPARAM>(sheet.page), CPSUI_OK);
    Log("SET_RESULT answered " + std::to_string(called));
    return TRUE;
}

LONG Init(PROPSHEETUI_INFO& info)
{
    const auto& header = *reinterpret_cast<const DOCUMENTPROPERTYHEADER*>(info.lParamInit);
    if (header.pdmIn != nullptr && header.pdmIn->dmCopies == kTestDriverRefusedCopies)
    {
        return 0;
    }
    auto sheet = std::make_unique<Sheet>();
    *sheet = {info.hComPropSheet, info.pfnComPropSheet, nullptr, header.pdmOut};
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof(page);
    page.hInstance = g_instance;
    page.pfnDlgProc = PageProc;
    page.lParam = reinterpret_cast<LPARAM>(sheet.get());
    for (const WORD id : {WORD{102}, WORD{101}})
    {
        page.pszTemplate = MAKEINTRESOURCEW(id);
        sheet->page = reinterpret_cast<HANDLE>(
            info.pfnComPropSheet(info.hComPropSheet, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&page), 0));
        if (sheet->page == nullptr)
        {
            return 0;
        }
    }
    info.UserData = reinterpret_cast<ULONG_PTR>(sheet.release());
    return 1;
}

LONG TakeResult(PROPSHEETUI_INFO& info, const SETRESULT_INFO& set)
{
    info.Result = static_cast<ULONG_PTR>(set.Result);
    PDEVMODEW out = reinterpret_cast<const Sheet*>(info.UserData)->out;
    if (set.Result == CPSUI_OK && out != nullptr)
    {
        MakeDefault(*out);
        out->dmCopies = kTestDriverCopies;
    }
    return 1;
}

void LogCall(const PROPSHEETUI_INFO& info, LPARAM lParam)
{
    static constexpr const char* kReasons[] = {"INIT", "HEADER", "DESTROY", "RESULT", "ICON", "BEFORE_INIT"};
    std::string line = kReasons[std::min<WORD>(info.Reason, 5)];
    line += info.cbSize == sizeof(info) ? "" : " cbSize";
    line += info.Version == PROPSHEETUI_INFO_VERSION ? "" : " Version";
    line += info.Flags == PSUIINFO_UNICODE ? "" : " Flags";
    line += info.Reason != PROPSHEETUI_REASON_INIT || info.lParamInit == lParam ? "" : " lParamInit";
    line += info.Reason != PROPSHEETUI_REASON_INIT || info.UserData == 0 ? "" : " UserData";
    line += info.Reason == PROPSHEETUI_REASON_DESTROY && lParam != 0 ? " closed by the user" : "";
    Log(line);
}

} // namespace

extern "C"
{

    __declspec(dllexport) LONG WINAPI DrvDocumentPropertySheets(PPROPSHEETUI_INFO info, LPARAM lParam)
    {
        if (info == nullptr)
        {
            return AnswerWithoutSheet(*reinterpret_cast<DOCUMENTPROPERTYHEADER*>(lParam));
        }
        LogCall(*info, lParam);
        switch (info->Reason)
        {
        case PROPSHEETUI_REASON_INIT:
            return Init(*info);
        case PROPSHEETUI_REASON_SET_RESULT:
            return TakeResult(*info, *reinterpret_cast<const SETRESULT_INFO*>(lParam));
        case PROPSHEETUI_REASON_DESTROY:
            delete reinterpret_cast<Sheet*>(info->UserData);
            info->UserData = 0;
            return 1;
        default:
            return 1;
        }
    }

    __declspec(dllexport) DWORD WINAPI DrvDeviceCapabilities(HANDLE, PWSTR, WORD, void*, DEVMODEW*)
    {
        return static_cast<DWORD>(-1);
    }

    __declspec(dllexport) void WINAPI TestDriverLog(char* buffer, DWORD size)
    {
        const std::size_t length = std::min<std::size_t>(g_log.size(), size - 1);
        std::copy_n(g_log.data(), length, buffer);
        buffer[length] = '\0';
        g_log.clear();
    }

    BOOL WINAPI DllMain(HINSTANCE instance, DWORD, void*)
    {
        g_instance = instance;
        return TRUE;
    }
}
