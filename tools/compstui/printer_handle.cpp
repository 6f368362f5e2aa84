#include "tools/compstui/printer_handle.h"

#include <windows.h>
#include <winspool.h>

namespace tsypr::compstui
{
namespace
{

// This library comes with winspool.drv, which needs it, so it cannot need winspool.drv in turn.
decltype(&DocumentPropertiesW) g_documentProperties = nullptr;
decltype(&OpenPrinterW) g_openPrinter = nullptr;
decltype(&ClosePrinter) g_closePrinter = nullptr;

LONG WINAPI
DocumentPropertiesByName(HWND owner, HANDLE printer, LPWSTR name, LPDEVMODEW output, LPDEVMODEW input, DWORD mode)
{
    HANDLE opened = nullptr;
    if (printer == nullptr && name != nullptr && g_openPrinter(name, &opened, nullptr) != FALSE)
    {
        printer = opened;
    }
    const LONG answer = g_documentProperties(owner, printer, name, output, input, mode);
    if (opened != nullptr)
    {
        const DWORD error = GetLastError();
        g_closePrinter(opened);
        SetLastError(error);
    }
    return answer;
}

template <typename Function>
void Find(HMODULE library, const char* name, Function& function) noexcept
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// The addresses of what a loaded library imports, a list for each library that it imports from; null for none.
const IMAGE_IMPORT_DESCRIPTOR* Imports(const BYTE* library) noexcept
{
    const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(
        library + reinterpret_cast<const IMAGE_DOS_HEADER*>(library)->e_lfanew);
    const DWORD offset = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    return offset != 0 ? reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(library + offset) : nullptr;
}

void Replace(ULONG_PTR& address, ULONG_PTR replacement) noexcept
{
    DWORD protection = 0;
    if (VirtualProtect(&address, sizeof(address), PAGE_READWRITE, &protection) != FALSE)
    {
        address = replacement;
        VirtualProtect(&address, sizeof(address), protection, &protection);
    }
}

// Has the print dialogs call `now` where they called `before`.
void Redirect(decltype(&DocumentPropertiesW) before, decltype(&DocumentPropertiesW) now) noexcept
{
    auto* dialogs = reinterpret_cast<BYTE*>(GetModuleHandleW(L"comdlg32.dll"));
    if (dialogs == nullptr || before == nullptr)
    {
        return;
    }
    for (const auto* from = Imports(dialogs); from != nullptr && from->FirstThunk != 0; ++from)
    {
        for (auto* address = reinterpret_cast<ULONG_PTR*>(dialogs + from->FirstThunk); *address != 0; ++address)
        {
            if (*address == reinterpret_cast<ULONG_PTR>(before))
            {
                Replace(*address, reinterpret_cast<ULONG_PTR>(now));
            }
        }
    }
}

} // namespace

void RepairPrintDialogs() noexcept
{
    const HMODULE spooler = GetModuleHandleW(L"winspool.drv");
    if (spooler == nullptr)
    {
        return;
    }
    Find(spooler, "DocumentPropertiesW", g_documentProperties);
    Find(spooler, "OpenPrinterW", g_openPrinter);
    Find(spooler, "ClosePrinter", g_closePrinter);
    if (g_openPrinter != nullptr && g_closePrinter != nullptr)
    {
        Redirect(g_documentProperties, DocumentPropertiesByName);
    }
}

void LeavePrintDialogs() noexcept
{
    Redirect(DocumentPropertiesByName, g_documentProperties);
}

} // namespace tsypr::compstui
