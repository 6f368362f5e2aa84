// exit_while_logging MODULE SERVICE-FOLDER MACHINE-KEY MILLISECONDS
// Loads the module, has several threads make it write log lines without end, and simply ends after some time.
#include <windows.h>

#include <atomic>
#include <cwchar>
#include <thread>

namespace
{

using DeviceCapabilitiesFunction = DWORD(WINAPI*)(HANDLE, PWSTR, WORD, PVOID, PDEVMODEW);

constexpr int kThreads = 4;
std::atomic<int> g_calls{0};

[[noreturn]] void AskForEver(DeviceCapabilitiesFunction ask)
{
    for (;;)
    {
        wchar_t printer[] = L"Office Laser";
        ask(nullptr, printer, 1, nullptr, nullptr);
        ++g_calls;
    }
}

} // namespace

extern "C" int wmain(int count, wchar_t** arguments)
{
    HKEY machine = nullptr;
    if (count != 5 || RegOpenKeyW(HKEY_CURRENT_USER, arguments[3], &machine) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) != ERROR_SUCCESS || SetDllDirectoryW(arguments[2]) == FALSE)
    {
        return 10;
    }
    HMODULE module = LoadLibraryW(arguments[1]);
    if (module == nullptr)
    {
        return 11;
    }
    const auto ask = reinterpret_cast<DeviceCapabilitiesFunction>(
        reinterpret_cast<void*>(GetProcAddress(module, "DrvDeviceCapabilities")));
    for (int i = 0; i < kThreads; ++i)
    {
        std::thread(AskForEver, ask).detach();
    }
    while (g_calls < 10 * kThreads)
    {
        Sleep(1);
    }
    Sleep(static_cast<DWORD>(std::wcstoul(arguments[4], nullptr, 10)));
    return 0;
}
