#include "tools/compstui/spooler_answer.h"

namespace tsypr::compstui
{

bool IsWineSpooler(PFNPROPSHEETUI function, const DWORD* result) noexcept
{
    const HMODULE spooler = GetModuleHandleW(L"winspool.drv");
    HMODULE owner = nullptr;
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    return result == nullptr && spooler != nullptr &&
           GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(function), &owner) != FALSE && owner == spooler;
}

LONG DocumentPropertiesAnswer(LONG answer, bool shown, LRESULT reported) noexcept
{
    if (!shown)
    {
        return answer < 0 ? answer : -1;
    }
    return reported == CPSUI_OK ? IDOK : IDCANCEL;
}

} // namespace tsypr::compstui
