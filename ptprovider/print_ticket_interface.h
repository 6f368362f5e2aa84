// The interface between Windows' print ticket services and a printer driver, as Microsoft documents it; the compiler's
// headers lack it.
#ifndef TESSARY_PTPROVIDER_PRINT_TICKET_INTERFACE_H
#define TESSARY_PTPROVIDER_PRINT_TICKET_INTERFACE_H

#include "printschema/msxml.h"

// The names are Windows' own.
typedef enum // NOLINT(modernize-use-using,readability-enum-initial-value)
{
    PTSHIM_DEFAULT = 0,
    PTSHIM_NOSNAPSHOT = 1
} SHIMOPTS;

// COM interfaces have no virtual destructor: it would take a place among their functions.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
struct IPrintTicketProvider : public IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetSupportedVersions(HANDLE hPrinter, INT** ppVersions, INT* cVersions) = 0;
    virtual HRESULT STDMETHODCALLTYPE BindPrinter(HANDLE hPrinter,
                                                  INT version,
                                                  SHIMOPTS* pOptions,
                                                  DWORD* pDevModeFlags,
                                                  INT* cNamespaces,
                                                  BSTR** ppNamespaces) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryDeviceNamespace(BSTR* pDefaultNamespace) = 0;
    virtual HRESULT STDMETHODCALLTYPE ConvertPrintTicketToDevMode(IXMLDOMDocument2* pPrintTicket,
                                                                  ULONG cbDevmodeIn,
                                                                  PDEVMODEW pDevmodeIn,
                                                                  ULONG* pcbDevmodeOut,
                                                                  PDEVMODEW* ppDevmodeOut) = 0;
    virtual HRESULT STDMETHODCALLTYPE ConvertDevModeToPrintTicket(ULONG cbDevmode,
                                                                  PDEVMODEW pDevmode,
                                                                  IXMLDOMDocument2* pPrintTicket) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPrintCapabilities(IXMLDOMDocument2* pPrintTicket,
                                                           IXMLDOMDocument2** ppCapabilities) = 0;
    virtual HRESULT STDMETHODCALLTYPE ValidatePrintTicket(IXMLDOMDocument2* pPrintTicket) = 0;
};
#pragma GCC diagnostic pop

namespace tsypr
{

inline constexpr IID kIidPrintTicketProvider = {
    0xBB5116DB, 0x0A23, 0x4C3A, {0xA6, 0xB6, 0x89, 0xE5, 0x55, 0x8D, 0xFB, 0x5D}};

// The one class that this module serves.
inline constexpr CLSID kClsidPTProvider = {
    0x46AC151B, 0x8490, 0x4531, {0x96, 0xCC, 0x55, 0xBF, 0x2B, 0xF1, 0x9E, 0x11}};

} // namespace tsypr

#endif
