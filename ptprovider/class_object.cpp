// The module as a COM server.
#include "module/log.h"
#include "ptprovider/print_ticket_interface.h"
#include "ptprovider/pt_factory.h"

#include <windows.h>

#include <combaseapi.h>

#include <new>

// Gives the class factory of the print ticket provider, the only class there is; `ppv` is left alone for any other.
STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv)
{
    using namespace tsypr;
    static constexpr char kFunction[] = "DllGetClassObject";
    if (rclsid != kClsidPTProvider)
    {
        LogError("%s, invalid class id.\n", kFunction);
        return CLASS_E_CLASSNOTAVAILABLE;
    }
    auto* factory = new (std::nothrow) PTFactory;
    if (factory == nullptr)
    {
        LogError("%s, failed to instantiate PTFactory.\n", kFunction);
        return E_OUTOFMEMORY;
    }
    const HRESULT result = factory->QueryInterface(riid, ppv);
    LogVerbose("%s PTFactory::QueryInterface returned 0x%x.\n", kFunction, static_cast<unsigned>(result));
    factory->Release(); // a factory that nobody took ends here
    return result;
}
