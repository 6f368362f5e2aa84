// A module that does nothing at its attach but load the two libraries that the driver's module loads.
#include <windows.h>

#include <initializer_list>

namespace
{

HMODULE g_language = nullptr;
HMODULE g_service = nullptr;

void Release() noexcept
{
    for (HMODULE* library : {&g_language, &g_service})
    {
        if (*library != nullptr)
        {
            FreeLibrary(*library);
            *library = nullptr;
        }
    }
}

BOOL Attach() noexcept
{
    g_language = LoadLibraryW(L"tsyprUI_en_us_409.dll");
    g_service = LoadLibraryW(L"tsyprserverapi.dll");
    if (g_language != nullptr && g_service != nullptr)
    {
        return TRUE;
    }
    Release();
    return FALSE;
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH)
    {
        return Attach();
    }
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr)
    {
        Release();
    }
    return TRUE;
}
