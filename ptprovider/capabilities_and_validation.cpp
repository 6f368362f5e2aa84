// Print capabilities, and tickets that the client printer has checked.
#include "module/log.h"
#include "ptprovider/boundary.h"
#include "ptprovider/page_scaling.h"
#include "ptprovider/pt_provider.h"
#include "ptprovider/remote_query.h"
#include "ptprovider/xml_memory.h"

namespace tsypr
{
namespace
{

constexpr char kCapabilities[] = "PTProvider::GetPrintCapabilities";
constexpr char kValidate[] = "PTProvider::ValidatePrintTicket";

// Loads the reply into a new document and corrects it.
HRESULT LoadCapabilities(const RemoteQuery& reply, IXMLDOMDocument2** ppCapabilities)
{
    ComPtr<IXMLDOMDocument2> capabilities;
    if (Mem2IXML(capabilities.GetAddressOf(), reply.Data(), reply.Size()) != S_OK)
    {
        LogError("%s, failed to call Mem2IXML.\n", kCapabilities);
        return E_FAIL;
    }
    RemovePageScaling(capabilities.Get());
    *ppCapabilities = capabilities.Detach();
    return reply.Result();
}

} // namespace

HRESULT
PTProvider::GetPrintCapabilities(IXMLDOMDocument2* pPrintTicket, IXMLDOMDocument2** ppCapabilities) noexcept
{
    if (ppCapabilities == nullptr)
    {
        LogError("%s, invalid parameters.\n", kCapabilities);
        return E_INVALIDARG;
    }
    return AtBoundary(kCapabilities, [&] { return Capabilities(pPrintTicket, ppCapabilities); });
}

HRESULT PTProvider::Capabilities(IXMLDOMDocument2* pPrintTicket, IXMLDOMDocument2** ppCapabilities)
{
    ComPtr<IXMLDOMDocument2> ticket; // released last
    RemotePrinter printer(m_printerName.c_str());
    if (!printer.IsOpen())
    {
        LogError("%s, failed to open remote printer [%S].\n", kCapabilities, m_printerName.c_str());
        return E_FAIL;
    }
    ticket = pPrintTicket;
    XmlText input;
    if (ticket != nullptr && input.Take(ticket.Get()) != S_OK)
    {
        LogError("%s, failed to call IXML2Mem.\n", kCapabilities);
        return E_FAIL;
    }
    RemoteQuery reply(printer, QueryKind::PT2PC, input.Data(), input.Size(), kCapabilities);
    input.Free();
    const HRESULT result = reply.HasData() ? LoadCapabilities(reply, ppCapabilities) : reply.Result();
    reply.Release();
    printer.Close();
    LogVerbose("%s, return %d.\n", kCapabilities, static_cast<int>(result));
    return result;
}

HRESULT PTProvider::ValidatePrintTicket(IXMLDOMDocument2* pPrintTicket) noexcept
{
    if (pPrintTicket == nullptr)
    {
        LogError("%s, invalid parameters.\n", kValidate);
        return E_INVALIDARG;
    }
    return AtBoundary(kValidate, [&] { return Validate(pPrintTicket); });
}

HRESULT PTProvider::Validate(IXMLDOMDocument2* pPrintTicket)
{
    ComPtr<IXMLDOMDocument2> ticket; // released last
    RemotePrinter printer(m_printerName.c_str());
    if (!printer.IsOpen())
    {
        LogError("%s, failed to open remote printer [%S].\n", kValidate, m_printerName.c_str());
        return E_FAIL;
    }
    ticket = pPrintTicket;
    XmlText input;
    if (input.Take(ticket.Get()) != S_OK)
    {
        LogError("%s, failed to call IXML2Mem.\n", kValidate);
        return E_FAIL;
    }
    RemoteQuery reply(printer, QueryKind::PTCHK, input.Data(), input.Size(), kValidate);
    input.Free();
    HRESULT result = reply.Result(); // passed on whatever it is, also "conflict resolved"
    if (reply.HasData())
    {
        if (Mem2IXML(&pPrintTicket, reply.Data(), reply.Size()) != S_OK)
        {
            LogError("%s, failed to call Mem2IXML.\n", kValidate);
            result = E_FAIL;
        }
        ticket.Detach(); // the ticket keeps this reference: known, and left as it is
    }
    reply.Release();
    printer.Close();
    LogVerbose("%s, return %d.\n", kValidate, static_cast<int>(result));
    return result;
}

} // namespace tsypr
