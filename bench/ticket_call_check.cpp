// What the print ticket provider asks of the service.
#include "bench/benches.h"
#include "bench/library.h"
#include "bench/provider.h"
#include "bench/straight_dom.h"
#include "ptprovider/print_caps_doc.h"

#include <functional>
#include <stdexcept>

namespace tsypr::bench
{
namespace
{

struct Case
{
    const char* name;
    CallCounts expected;
    std::function<bool()> call;
};

// So many questions about tickets, of which so many give a device mode; and lists, each with an opening of its own.
CallCounts Counts(unsigned opens, unsigned questions, unsigned devModes, unsigned lists)
{
    CallCounts counts;
    counts.open = counts.close = opens + lists;
    counts.ptQuery = questions;
    counts.freeDevMode = devModes;
    counts.freePTData = questions - devModes;
    counts.capabilities = counts.freeCapabilities = lists;
    return counts;
}

bool ConvertsBack(IPrintTicketProvider* provider, IXMLDOMDocument2* ticket)
{
    ULONG size = 0;
    DEVMODEW* out = nullptr;
    const HRESULT result = provider->ConvertPrintTicketToDevMode(ticket, 0, nullptr, &size, &out);
    const bool right = SUCCEEDED(result) && out != nullptr;
    LocalFree(out);
    return right;
}

std::vector<Case> Cases(IPrintTicketProvider* provider, DeviceMode& dm, DeviceMode& plain, IXMLDOMDocument2* ticket)
{
    const auto toTicket = [=](DEVMODEW* from)
    { return SUCCEEDED(provider->ConvertDevModeToPrintTicket(0, from, ticket)); };
    const auto capabilities = [=](IXMLDOMDocument2* from)
    {
        ComPtr<IXMLDOMDocument2> doc;
        return SUCCEEDED(provider->GetPrintCapabilities(from, doc.GetAddressOf())) && doc != nullptr;
    };
    const auto validates = [=]
    {
        const bool right = SUCCEEDED(provider->ValidatePrintTicket(ticket));
        ticket->Release();
        return right;
    };
    const auto forDevMode = [&dm]
    {
        ComPtr<IXMLDOMDocument2> doc;
        return GetPrintCapsXmlDoc(kTicketPrinter, dm.Get(), doc.GetAddressOf()) && doc != nullptr;
    };
    return {
        {"ConvertDevModeToPrintTicket", Counts(2, 2, 0, 0), [=, &plain] { return toTicket(plain.Get()); }},
        {"ConvertDevModeToPrintTicket, media type", Counts(2, 2, 0, 2), [=, &dm] { return toTicket(dm.Get()); }},
        {"ConvertPrintTicketToDevMode, media type", Counts(2, 2, 1, 2), [=] { return ConvertsBack(provider, ticket); }},
        {"ConvertPrintTicketToDevMode, no ticket", Counts(1, 1, 1, 0), [=] { return ConvertsBack(provider, nullptr); }},
        {"GetPrintCapabilities", Counts(1, 1, 0, 0), [=] { return capabilities(ticket); }},
        {"GetPrintCapabilities, no ticket", Counts(1, 1, 0, 0), [=] { return capabilities(nullptr); }},
        {"ValidatePrintTicket", Counts(1, 1, 0, 0), validates},
        {"GetPrintCapsXmlDoc", Counts(1, 2, 0, 0), forDevMode}};
}

} // namespace

void CheckTicketCalls(Report& report)
{
    const ProviderSurroundings surroundings;
    const Library service(L"tsyprserverapi.dll");
    decltype(VpReadCallCounters)* read = nullptr;
    decltype(VpResetCallCounters)* reset = nullptr;
    service.Bind("VpReadCallCounters", read);
    service.Bind("VpResetCallCounters", reset);
    const ComPtr<IXMLDOMDocument2> ticket = NewDocument();
    DeviceMode dm = MakeTicketDeviceMode();
    DeviceMode plain = dm;
    plain.Get()->dmFields &= ~static_cast<DWORD>(DM_MEDIATYPE);
    for (const Case& one : Cases(surroundings.Provider(), dm, plain, ticket.Get()))
    {
        reset();
        if (!one.call())
        {
            throw std::runtime_error(std::string("unexpected answer: ") + one.name);
        }
        VpCallCounters counters = {};
        read(&counters);
        report.checks.push_back({one.name, one.expected, CountsFrom(counters)});
    }
}

} // namespace tsypr::bench
