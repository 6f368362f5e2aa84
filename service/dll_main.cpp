#include <windows.h>

#include "lib/misc/runtime_release.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr)
    {
        tsypr::ReleaseRuntimeMemory();
    }
    return TRUE;
}
