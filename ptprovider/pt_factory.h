// Makes print ticket providers for whoever got it from DllGetClassObject.
#ifndef TESSARY_PTPROVIDER_PT_FACTORY_H
#define TESSARY_PTPROVIDER_PT_FACTORY_H

#include <windows.h>

#include <unknwn.h>

#include <atomic>

namespace tsypr
{

// COM interfaces have no virtual destructor: it would take a place among their functions.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
// Born with one reference; destroys itself with the last.
class PTFactory final : public IClassFactory
{
public:
    PTFactory() noexcept = default;
    PTFactory(const PTFactory&) = delete;
    PTFactory& operator=(const PTFactory&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) noexcept override;
    // Keeps no count, on purpose: the spooler's loader keeps the module loaded.
    HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) noexcept override;

private:
    ~PTFactory() = default;

    std::atomic<ULONG> m_references{1};
#pragma GCC diagnostic pop
};

} // namespace tsypr

#endif
