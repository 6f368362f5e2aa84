// The provider's identity, and what sets it up before any conversion.
#include "ptprovider/pt_provider.h"

#include "module/malloc_ptr.h"
#include "ptprovider/boundary.h"

#include <combaseapi.h>
#include <winspool.h>

namespace tsypr
{
namespace
{

constexpr char kVersions[] = "PTProvider::GetSupportedVersions";
constexpr char kBind[] = "PTProvider::BindPrinter";
constexpr char kNamespace[] = "PTProvider::QueryDeviceNamespace";

constexpr INT kVersion = 1;
// The fields of the device mode that the services need not deal with themselves.
constexpr DWORD kDevModeFlags = DM_PAPERSIZE | DM_DEFAULTSOURCE;
static_assert(kDevModeFlags == 0x202);

// The maker's domain; the rest of the URI is fixed.
#define TESSARY_DEVICE_NAMESPACE_HOST L"schemas.zelmora.example"
constexpr wchar_t kDeviceNamespace[] = L"http://" TESSARY_DEVICE_NAMESPACE_HOST L"/zelprinter/v.1.0";

} // namespace

HRESULT PTProvider::QueryInterface(REFIID riid, void** ppv) noexcept
{
    if (ppv == nullptr)
    {
        return E_POINTER;
    }
    if (riid != kIidPrintTicketProvider)
    {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    *ppv = static_cast<IPrintTicketProvider*>(this);
    AddRef();
    return S_OK;
}

ULONG PTProvider::AddRef() noexcept
{
    return ++m_references;
}

ULONG PTProvider::Release() noexcept
{
    const ULONG left = --m_references;
    if (left == 0)
    {
        delete this;
    }
    return left;
}

HRESULT PTProvider::GetSupportedVersions(HANDLE, INT** ppVersions, INT* cVersions) noexcept
{
    if (ppVersions == nullptr || cVersions == nullptr)
    {
        LogError("%s, invalid parameters.\n", kVersions);
        return E_INVALIDARG;
    }
    auto* versions = static_cast<INT*>(CoTaskMemAlloc(sizeof(INT)));
    if (versions == nullptr)
    {
        LogError("%s, failed to call CoTaskMemAlloc.\n", kVersions);
        return E_OUTOFMEMORY;
    }
    *versions = kVersion;
    *ppVersions = versions;
    *cVersions = 1;
    return S_OK;
}

// Any version is accepted.
HRESULT PTProvider::BindPrinter(
    HANDLE hPrinter, INT, SHIMOPTS* pOptions, DWORD* pDevModeFlags, INT* cNamespaces, BSTR** ppNamespaces) noexcept
{
    if (pOptions == nullptr || pDevModeFlags == nullptr || cNamespaces == nullptr || ppNamespaces == nullptr)
    {
        LogError("%s, invalid parameters.\n", kBind);
        return E_INVALIDARG;
    }
    const HRESULT result = AtBoundary(kBind, [&] { return Bind(hPrinter); });
    if (result == S_OK)
    {
        *pOptions = PTSHIM_NOSNAPSHOT;
        *pDevModeFlags = kDevModeFlags;
        *cNamespaces = 0;
        *ppNamespaces = nullptr;
    }
    return result;
}

HRESULT PTProvider::Bind(HANDLE hPrinter)
{
    DWORD needed = 0;
    GetPrinterW(hPrinter, 2, nullptr, 0, &needed);
    if (needed == 0)
    {
        LogError("%s, failed to query printer info size.\n", kBind);
        return E_FAIL;
    }
    const MallocPtr<BYTE> buffer(static_cast<BYTE*>(std::malloc(needed)));
    if (buffer == nullptr)
    {
        throw std::bad_alloc();
    }
    if (GetPrinterW(hPrinter, 2, buffer.get(), needed, &needed) == FALSE)
    {
        LogError("%s, failed to query printer info.\n", kBind);
        return E_FAIL;
    }
    const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.get());
    std::wstring name(info->pPrinterName != nullptr ? info->pPrinterName : L"");
    LogVerbose("%s, retrieved virtual printer name %S.\n", kBind, name.c_str());
    m_printerName.swap(name);
    return S_OK;
}

HRESULT PTProvider::QueryDeviceNamespace(BSTR* pDefaultNamespace) noexcept
{
    if (pDefaultNamespace == nullptr)
    {
        LogError("%s, invalid parameter.\n", kNamespace);
        return E_INVALIDARG;
    }
    const BSTR text = SysAllocString(kDeviceNamespace);
    if (text == nullptr)
    {
        LogError("%s, failed to call SysAllocString.\n", kNamespace);
        return E_OUTOFMEMORY;
    }
    *pDefaultNamespace = text;
    return S_OK;
}

} // namespace tsypr
