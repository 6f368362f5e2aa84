// Converts between print tickets and device modes for Windows' print ticket services.
#ifndef TESSARY_PTPROVIDER_PT_PROVIDER_H
#define TESSARY_PTPROVIDER_PT_PROVIDER_H

#include "ptprovider/print_ticket_interface.h"

#include <atomic>
#include <optional>
#include <string>

namespace tsypr
{

struct DriverOptions;

// COM interfaces have no virtual destructor: it would take a place among their functions.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
// Born with one reference; destroys itself with the last. Only the reference count may be used by several threads.
//
// A conversion opens the client printer by the bound name, asks it to do the work, and corrects the answer for what the
// driver itself adds. Results of the client printer are passed through unchanged; otherwise conversions give E_FAIL,
// E_OUTOFMEMORY, and E_INVALIDARG for null pointers where the interface promises none.
class PTProvider final : public IPrintTicketProvider
{
public:
    PTProvider() noexcept = default;
    PTProvider(const PTProvider&) = delete;
    PTProvider& operator=(const PTProvider&) = delete;

    // Answers IID_IPrintTicketProvider only, on purpose not even IID_IUnknown.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    HRESULT STDMETHODCALLTYPE GetSupportedVersions(HANDLE hPrinter, INT** ppVersions, INT* cVersions) noexcept override;
    HRESULT STDMETHODCALLTYPE BindPrinter(HANDLE hPrinter,
                                          INT version,
                                          SHIMOPTS* pOptions,
                                          DWORD* pDevModeFlags,
                                          INT* cNamespaces,
                                          BSTR** ppNamespaces) noexcept override;
    HRESULT STDMETHODCALLTYPE QueryDeviceNamespace(BSTR* pDefaultNamespace) noexcept override;

    // The ticket may be null. The result is made from the ticket alone; the device mode that is passed in is not used.
    // The caller releases *ppDevmodeOut with LocalFree; it and the size are left alone when the client gives nothing.
    HRESULT STDMETHODCALLTYPE ConvertPrintTicketToDevMode(IXMLDOMDocument2* pPrintTicket,
                                                          ULONG cbDevmodeIn,
                                                          PDEVMODEW pDevmodeIn,
                                                          ULONG* pcbDevmodeOut,
                                                          PDEVMODEW* ppDevmodeOut) noexcept override;
    // The device mode may be null; its own sizes count, not `cbDevmode`. The ticket's content is replaced.
    HRESULT STDMETHODCALLTYPE ConvertDevModeToPrintTicket(ULONG cbDevmode,
                                                          PDEVMODEW pDevmode,
                                                          IXMLDOMDocument2* pPrintTicket) noexcept override;
    // The ticket may be null. *ppCapabilities is left alone when the client gives nothing.
    HRESULT STDMETHODCALLTYPE GetPrintCapabilities(IXMLDOMDocument2* pPrintTicket,
                                                   IXMLDOMDocument2** ppCapabilities) noexcept override;
    // The ticket's content is replaced.
    HRESULT STDMETHODCALLTYPE ValidatePrintTicket(IXMLDOMDocument2* pPrintTicket) noexcept override;

private:
    ~PTProvider() = default;

    // The methods of the same names without the boundary's checks; they may throw.
    HRESULT Bind(HANDLE hPrinter);
    HRESULT TicketToDevMode(IXMLDOMDocument2* pPrintTicket, ULONG* pcbDevmodeOut, DEVMODEW** ppDevmodeOut);
    HRESULT DevModeToTicket(DEVMODEW* devMode, IXMLDOMDocument2* pPrintTicket);
    HRESULT Capabilities(IXMLDOMDocument2* pPrintTicket, IXMLDOMDocument2** ppCapabilities);
    HRESULT Validate(IXMLDOMDocument2* pPrintTicket);

    std::optional<std::wstring> MediaTypeDisplayName(IXMLDOMDocument2* ticket);
    void CorrectTicket(IXMLDOMDocument2* ticket, const DriverOptions& options, const std::wstring& mediaTypeName);

    std::atomic<ULONG> m_references{1};
#pragma GCC diagnostic pop
    std::wstring m_printerName; // as the session sees the printer; empty until it is bound
};

} // namespace tsypr

#endif
