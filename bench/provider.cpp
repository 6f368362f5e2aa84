#include "bench/provider.h"

#include "remote/remote_printer_service.h"

#include <combaseapi.h>
#include <winspool.h>

#include <stdexcept>

// The program is linked so that the provider asks here for its printer's name: the spooler knows no such printer.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker sets the name
extern "C"
{
    decltype(GetPrinterW) __wrap_GetPrinterW;

    BOOL WINAPI __wrap_GetPrinterW(HANDLE, DWORD, LPBYTE buffer, DWORD size, LPDWORD needed)
    {
        *needed = sizeof(PRINTER_INFO_2W);
        if (buffer == nullptr || size < *needed)
        {
            return FALSE;
        }
        PRINTER_INFO_2W info = {};
        info.pPrinterName = const_cast<wchar_t*>(tsypr::bench::kTicketPrinter);
        std::memcpy(buffer, &info, sizeof(info));
        return TRUE;
    }
}
// NOLINTEND(bugprone-reserved-identifier)

namespace tsypr::bench
{
namespace
{

void Check(HRESULT result, const char* what)
{
    if (result != S_OK)
    {
        throw std::runtime_error(std::string("print tickets cannot be measured: ") + what);
    }
}

ComPtr<IPrintTicketProvider> BoundProvider()
{
    ComPtr<IClassFactory> factory;
    ComPtr<IPrintTicketProvider> provider;
    Check(DllGetClassObject(kClsidPTProvider, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf())),
          "no class object");
    Check(factory->CreateInstance(nullptr, kIidPrintTicketProvider, reinterpret_cast<void**>(provider.GetAddressOf())),
          "no provider");
    SHIMOPTS options = PTSHIM_DEFAULT;
    DWORD flags = 0;
    INT count = 0;
    BSTR* namespaces = nullptr;
    Check(provider->BindPrinter(nullptr, 1, &options, &flags, &count, &namespaces), "no printer");
    return provider;
}

} // namespace

ProviderSurroundings::ProviderSurroundings()
{
    Check(CoInitializeEx(nullptr, COINIT_MULTITHREADED), "no COM");
    Check(InitServerApiLib() ? S_OK : E_FAIL, "no service");
    m_provider = BoundProvider();
}

ProviderSurroundings::~ProviderSurroundings()
{
    m_provider.Reset();
    FreeServerApiLib();
    CoUninitialize();
}

DeviceMode MakeTicketDeviceMode() noexcept
{
    DeviceMode dm = MakeDeviceMode(DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_MEDIATYPE);
    dm.Get()->dmMediaType = 3;
    if (PrivateDevMode* block = GetPrivateDevMode(dm.Get()))
    {
        block->featureBitmap = kFeatureNup | kFeatureFinishing;
        block->pagesPerSheet = 4;
        block->nupLayout.Write(L"psk:BottomRight");
        block->staple.Write(L"psk:StapleTopLeft");
        block->punch.Write(L"psk:LeftEdge");
    }
    return dm;
}

} // namespace tsypr::bench
