// A remote printer service that passes every call on to the installed one, after a delay or never; where none is
// installed it knows no printer. Built with all its functions and with one left out.
#include <windows.h>

#include <climits>
#include <cstring>
#include <cwchar>

namespace
{

// Windows' own atomic operations: those of the C++ library bring its reserve along, which each unload would leave
// behind.
volatile LONG g_delay = 0;
const char* volatile g_endless = "";
volatile LONG g_calls = 0;

// The function behind the one of that name; null where there is none.
template <typename Function>
Function Installed(const char* name)
{
    if (std::strcmp(name, g_endless) == 0)
    {
        InterlockedExchange(&g_calls, LONG_MIN);
        Sleep(INFINITE);
    }
    InterlockedIncrement(&g_calls);
    Sleep(static_cast<DWORD>(g_delay));
    wchar_t path[MAX_PATH + 32];
    std::wcscpy(path + GetSystemDirectoryW(path, MAX_PATH), L"\\tsyprserverapi.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(path), name)));
}

} // namespace

#define SERVICE_EXPORT extern "C" __declspec(dllexport)

#define PASSED_ON(result, name, parameters, arguments)                                                                 \
    SERVICE_EXPORT result WINAPI name parameters                                                                       \
    {                                                                                                                  \
        return Installed<result(WINAPI*) parameters>(#name) arguments;                                                 \
    }

// From now on each call takes so many milliseconds more, and calls of the function of that name, which stays the
// caller's, never come back. Returns how many calls there were, a negative number once one has not come back.
SERVICE_EXPORT int WINAPI SetServiceManners(DWORD delay, const char* endless)
{
    InterlockedExchange(&g_delay, static_cast<LONG>(delay));
    g_endless = endless;
    return static_cast<int>(g_calls);
}

#ifndef TESSARY_OMIT_VpOpenRemotePrinter
SERVICE_EXPORT DWORD WINAPI VpOpenRemotePrinter(const wchar_t* name, void** handle)
{
    const auto open = Installed<decltype(&VpOpenRemotePrinter)>("VpOpenRemotePrinter");
    return open != nullptr ? open(name, handle) : DWORD{ERROR_INVALID_PRINTER_NAME};
}
#endif
PASSED_ON(void, VpCloseRemotePrinter, (void* handle), (handle))
PASSED_ON(DWORD, VpGetDevMode, (void* handle, void** devMode), (handle, devMode))
PASSED_ON(void, VpFreeDevMode, (void* devMode), (devMode))
PASSED_ON(DWORD,
          VpGetDeviceCapabilities,
          (void* handle, WORD index, DWORD* size, void** data, DWORD inSize, const void* devMode, LONG* result),
          (handle, index, size, data, inSize, devMode, result))
PASSED_ON(void, VpFreeDeviceCapabilities, (void* data), (data))
PASSED_ON(DWORD,
          VpMakePTQuery,
          (void* handle, DWORD kind, DWORD inSize, const void* in, DWORD* outSize, void** out, LONG* result),
          (handle, kind, inSize, in, outSize, out, result))
#ifndef TESSARY_OMIT_VpFreePTData
PASSED_ON(void, VpFreePTData, (void* data), (data))
#endif
