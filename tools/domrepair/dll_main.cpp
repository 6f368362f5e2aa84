// An in-process COM server that stands before Wine's own one for XML documents: it gives out Wine's objects after it
// has exchanged the functions in which they differ from Windows' documented behaviour.
#include "tools/domrepair/document_repair.h"

#include <combaseapi.h>

STDAPI DllGetClassObject(REFCLSID rclsid, REFIID riid, LPVOID* ppv)
{
    using Function = decltype(&DllGetClassObject);
    static const HMODULE s_msxml = LoadLibraryW(L"msxml6.dll");
    const auto wines = reinterpret_cast<Function>(
        s_msxml == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(s_msxml, "DllGetClassObject")));
    if (wines == nullptr)
    {
        return CLASS_E_CLASSNOTAVAILABLE;
    }
    IClassFactory* factory = nullptr;
    HRESULT result = wines(rclsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (FAILED(result))
    {
        return result;
    }
    result = tsypr::domrepair::RepairDocuments(factory);
    if (SUCCEEDED(result))
    {
        result = factory->lpVtbl->QueryInterface(factory, riid, ppv);
    }
    factory->lpVtbl->Release(factory);
    return result;
}

// Wine's objects call into this library as long as the process lives.
STDAPI DllCanUnloadNow()
{
    return S_FALSE;
}
