// What our compstui.dll exports beside the documented functions, for tests. Its presence also tells the DLL from
// others.
#ifndef TESSARY_TOOLS_COMPSTUI_CONTRACT_EXPORTS_H
#define TESSARY_TOOLS_COMPSTUI_CONTRACT_EXPORTS_H

#include <windows.h>

extern "C"
{
    // How many faults callers of the property sheet interface made in this process.
    DWORD WINAPI CompstuiContractFaults() noexcept;

    // Copies the line of a fault, terminated and cut where the buffer of so many bytes ends. Returns the length of the
    // whole line, 0 where there is no such fault.
    DWORD WINAPI CompstuiContractFaultText(DWORD index, char* buffer, DWORD size) noexcept;
}

#endif
