#include "ptprovider/print_caps_doc.h"

#include "module/log.h"
#include "ptprovider/boundary.h"
#include "ptprovider/carried_settings.h"
#include "ptprovider/remote_query.h"
#include "ptprovider/xml_memory.h"
#include "remote/devmode_dump.h"

#include <optional>

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "GetPrintCapsXmlDoc";

// The ticket that goes with a device mode, and what it came in; empty when the client gives none.
struct TicketOfDevMode
{
    ComPtr<IXMLDOMDocument2> document;
    std::optional<RemoteQuery> reply;
    XmlText text;
};

// Puts the driver's own options into the client's ticket and takes the text of it.
bool CompleteTicket(const DEVMODEW* devMode, TicketOfDevMode& ticket)
{
    if (Mem2IXML(ticket.document.GetAddressOf(), ticket.reply->Data(), ticket.reply->Size()) != S_OK)
    {
        LogError("%s, failed to call Mem2IXML.\n", kFunction);
        return false;
    }
    if (const PrivateDevMode* block = GetPrivateDevMode(devMode))
    {
        WriteOptions(ticket.document.Get(), OptionsOf(*block));
    }
    if (ticket.text.Take(ticket.document.Get()) != S_OK)
    {
        LogError("%s, failed to call IXML2Mem.\n", kFunction);
        return false;
    }
    return true;
}

bool AskForTicket(const RemotePrinter& printer, const DEVMODEW* devMode, TicketOfDevMode& ticket)
{
    // The dump ends the keyword texts in the device mode itself, for whoever reads it next.
    PrintUtils::DumpDevMode(const_cast<DEVMODEW*>(devMode), L"GetPrintCapabilities, dm:");
    const auto size = static_cast<uint32_t>(DevModeTotalSize(devMode));
    ticket.reply.emplace(printer, QueryKind::DM2PT, devMode, size, kFunction);
    return !ticket.reply->HasData() || CompleteTicket(devMode, ticket);
}

bool LoadCapabilities(const RemoteQuery& reply, IXMLDOMDocument2** capabilities)
{
    ComPtr<IXMLDOMDocument2> made;
    IXMLDOMDocument2** target = *capabilities != nullptr ? capabilities : made.GetAddressOf();
    if (Mem2IXML(target, reply.Data(), reply.Size()) != S_OK)
    {
        LogError("%s, failed to call Mem2IXML.\n", kFunction);
        return false;
    }
    if (made != nullptr)
    {
        *capabilities = made.Detach();
    }
    return true;
}

bool AskForCapabilities(const wchar_t* printerName, const DEVMODEW* devMode, IXMLDOMDocument2** capabilities)
{
    const RemotePrinter printer(printerName);
    if (!printer.IsOpen())
    {
        LogError("%s, failed to open remote printer [%S].\n", kFunction, printerName);
        return false;
    }
    TicketOfDevMode ticket; // everything is given back at the end
    if (devMode != nullptr && !AskForTicket(printer, devMode, ticket))
    {
        return false;
    }
    const RemoteQuery reply(printer, QueryKind::PT2PC, ticket.text.Data(), ticket.text.Size(), kFunction);
    return !reply.HasData() || LoadCapabilities(reply, capabilities);
}

} // namespace

bool GetPrintCapsXmlDoc(const wchar_t* printerName, const DEVMODEW* devMode, IXMLDOMDocument2** capabilities) noexcept
{
    if (capabilities == nullptr)
    {
        LogError("%s, invalid parameters.\n", kFunction);
        return false;
    }
    try
    {
        return AskForCapabilities(printerName, devMode, capabilities);
    }
    catch (...)
    {
        ResultOfException(kFunction);
        return false;
    }
}

} // namespace tsypr
