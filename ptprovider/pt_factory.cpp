#include "ptprovider/pt_factory.h"

#include "module/log.h"
#include "ptprovider/pt_provider.h"

#include <new>

namespace tsypr
{
namespace
{

constexpr char kQuery[] = "PTFactory::QueryInterface";
constexpr char kCreate[] = "PTFactory::CreateInstance";

} // namespace

HRESULT PTFactory::QueryInterface(REFIID riid, void** ppv) noexcept
{
    if (ppv == nullptr)
    {
        return E_POINTER;
    }
    if (riid == IID_IUnknown)
    {
        LogVerbose("%s, returned IUnknown instance back.\n", kQuery);
    }
    else if (riid == IID_IClassFactory)
    {
        LogVerbose("%s, returned IClassFactory instance back.\n", kQuery);
    }
    else
    {
        LogError("%s, invalid interface id.\n", kQuery);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    *ppv = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
}

ULONG PTFactory::AddRef() noexcept
{
    return ++m_references;
}

ULONG PTFactory::Release() noexcept
{
    const ULONG left = --m_references;
    if (left == 0)
    {
        delete this;
    }
    return left;
}

HRESULT PTFactory::CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) noexcept
{
    if (pUnkOuter != nullptr)
    {
        LogError("%s, invalid parameter id.\n", kCreate);
        return CLASS_E_NOAGGREGATION;
    }
    auto* provider = new (std::nothrow) PTProvider;
    if (provider == nullptr)
    {
        LogError("%s, failed to instantiate PTProvider.\n", kCreate);
        return E_OUTOFMEMORY;
    }
    const HRESULT result = provider->QueryInterface(riid, ppv);
    if (FAILED(result))
    {
        LogError("%s, failed to querying interface.\n", kCreate);
    }
    provider->Release(); // a provider that nobody took ends here
    return result;
}

HRESULT PTFactory::LockServer(BOOL fLock) noexcept
{
    LogVerbose("%s, bLock = %d.\n", "PTFactory::LockServer", fLock);
    return S_OK;
}

} // namespace tsypr
