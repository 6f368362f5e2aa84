// The exported functions, as Microsoft documents them for Compstui.dll, and those for tests.
#include "lib/misc/runtime_release.h"
#include "tools/compstui/contract.h"
#include "tools/compstui/contract_exports.h"
#include "tools/compstui/printer_handle.h"
#include "tools/compstui/sheet.h"
#include "tools/compstui/spooler_answer.h"

#include <algorithm>
#include <cwchar>

namespace tsypr::compstui
{
namespace
{

constexpr wchar_t kUserDataProperty[] = L"TessaryCompstuiUserData";

LONG ShowSheet(HWND owner, PFNPROPSHEETUI function, LPARAM lParam, DWORD* result, bool unicode) noexcept
{
    DWORD left = 0;
    LONG answer = ERR_CPSUI_INVALID_PDATA;
    if (function == nullptr)
    {
        ReportFault("CommonPropertySheetUI", "there is no function");
    }
    else if (owner != nullptr && IsWindow(owner) == FALSE)
    {
        ReportFault("CommonPropertySheetUI", "the owner is not a window");
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        answer = ERR_CPSUI_GETLASTERROR;
    }
    else
    {
        try
        {
            Sheet sheet(owner, function, lParam, unicode);
            answer = sheet.Run();
            left = answer >= CPSUI_CANCEL ? sheet.Result() : 0;
            if (IsWineSpooler(function, result))
            {
                answer = DocumentPropertiesAnswer(answer, sheet.WasShown(), sheet.Reported());
            }
        }
        catch (const std::exception&)
        {
            answer = ERR_CPSUI_ALLOCMEM_FAILED;
        }
    }
    if (result != nullptr)
    {
        *result = left;
    }
    return answer;
}

// A dialog box of a thread that shows a property sheet: a page, or what a page has opened.
bool IsDialogOfSheet(HWND dialog, const char* function) noexcept
{
    wchar_t name[8] = {};
    const bool ours = Sheet::Showing() != nullptr &&
                      GetWindowThreadProcessId(dialog, nullptr) == GetCurrentThreadId() &&
                      GetClassNameW(dialog, name, 8) > 0 && std::wcscmp(name, L"#32770") == 0;
    if (!ours)
    {
        ReportFault(function, "the window is not a dialog box of an open property sheet");
    }
    return ours;
}

} // namespace
} // namespace tsypr::compstui

using namespace tsypr::compstui;

extern "C"
{

    LONG WINAPI CommonPropertySheetUIA(HWND hWndOwner, PFNPROPSHEETUI pfnPropSheetUI, LPARAM lParam, LPDWORD pResult)
    {
        return ShowSheet(hWndOwner, pfnPropSheetUI, lParam, pResult, false);
    }

    LONG WINAPI CommonPropertySheetUIW(HWND hWndOwner, PFNPROPSHEETUI pfnPropSheetUI, LPARAM lParam, LPDWORD pResult)
    {
        return ShowSheet(hWndOwner, pfnPropSheetUI, lParam, pResult, true);
    }

    ULONG_PTR WINAPI GetCPSUIUserData(HWND hDlg)
    {
        const bool ours = IsDialogOfSheet(hDlg, "GetCPSUIUserData");
        return ours ? reinterpret_cast<ULONG_PTR>(GetPropW(hDlg, kUserDataProperty)) : 0;
    }

    BOOL WINAPI SetCPSUIUserData(HWND hDlg, ULONG_PTR CPSUIUserData)
    {
        // The window's end is also that of its properties.
        return IsDialogOfSheet(hDlg, "SetCPSUIUserData")
                   ? SetPropW(hDlg, kUserDataProperty, reinterpret_cast<HANDLE>(CPSUIUserData))
                   : FALSE;
    }

    DWORD WINAPI CompstuiContractFaults() noexcept
    {
        return static_cast<DWORD>(FaultCount());
    }

    DWORD WINAPI CompstuiContractFaultText(DWORD index, char* buffer, DWORD size) noexcept
    {
        try
        {
            const std::string text = FaultText(index);
            if (buffer != nullptr && size > 0)
            {
                const std::size_t length = std::min<std::size_t>(text.size(), size - 1);
                std::copy_n(text.data(), length, buffer);
                buffer[length] = '\0';
            }
            return static_cast<DWORD>(text.size());
        }
        catch (const std::exception&)
        {
            return 0;
        }
    }

    BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH)
    {
        tsypr::compstui::RepairPrintDialogs();
    }
    else if (reason == DLL_PROCESS_DETACH && reserved == nullptr)
    {
        tsypr::compstui::LeavePrintDialogs();
        tsypr::ReleaseRuntimeMemory(); // comes and goes with the spooler's library
    }
    return TRUE;
}
