#include "lib/misc/runtime_release.h"
#include "module/interface_dll.h"
#include "module/log.h"
#include "module/logging_setup.h"

#include <windows.h>

namespace
{

constexpr char kModuleTag[] = "ui";

BOOL Attach() noexcept
{
    using namespace tsypr;
    if (InitLogging(kModuleTag) != 0)
    {
        return FALSE;
    }
    if (InitInterfaceDLL())
    {
        return TRUE;
    }
    LogError("%s, failed to initialize the interface dll.\n", "DllMain");
    ShutdownLogging();
    return FALSE;
}

void Detach(bool processEnds) noexcept
{
    using namespace tsypr;
    if (processEnds)
    {
        // The other threads are gone, and with them maybe the locks they held.
        LogPrepareForProcessEnd();
        AbandonModuleResources();
        LogStop();
        return;
    }
    ReleaseModuleResources();
    ShutdownLogging();
    ReleaseRuntimeMemory();
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved)
{
    switch (reason)
    {
    case DLL_PROCESS_ATTACH:
        return Attach();
    case DLL_PROCESS_DETACH:
        Detach(reserved != nullptr);
        return TRUE;
    default:
        return TRUE;
    }
}
