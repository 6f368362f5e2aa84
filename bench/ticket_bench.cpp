#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/provider.h"
#include "bench/straight_dom.h"
#include "remote/remote_printer_service.h"

#include <stdexcept>

namespace tsypr::bench
{
namespace
{

constexpr uint32_t kPT2DM = 0, kDM2PT = 1, kPT2PC = 2, kPTCHK = 3;

// An open printer and one reply of it, given back at the end.
class Straight
{
public:
    Straight()
    {
        RemoteService.VpOpenRemotePrinter(kTicketPrinter, &m_handle);
    }
    ~Straight()
    {
        if (m_reply != nullptr)
        {
            m_kind == kPT2DM ? RemoteService.VpFreeDevMode(m_reply) : RemoteService.VpFreePTData(m_reply);
        }
        RemoteService.VpCloseRemotePrinter(m_handle);
    }
    Straight(const Straight&) = delete;
    Straight& operator=(const Straight&) = delete;

    void Ask(uint32_t kind, const void* input, size_t size)
    {
        int32_t result = E_FAIL;
        m_kind = kind;
        RemoteService.VpMakePTQuery(m_handle, kind, static_cast<uint32_t>(size), input, &m_size, &m_reply, &result);
        if (FAILED(result) || m_reply == nullptr)
        {
            throw std::runtime_error("the service does not convert");
        }
    }
    void AskFor(uint16_t capability, const DEVMODEW* dm, uint32_t size)
    {
        uint32_t dataSize = 0;
        void* data = nullptr;
        int32_t result = -1;
        RemoteService.VpGetDeviceCapabilities(m_handle, capability, &dataSize, &data, size, dm, &result);
        const std::vector<BYTE> copy(static_cast<BYTE*>(data), static_cast<BYTE*>(data) + dataSize);
        RemoteService.VpFreeDeviceCapabilities(data);
    }
    const void* Reply() const noexcept
    {
        return m_reply;
    }
    uint32_t Size() const noexcept
    {
        return m_size;
    }

private:
    RemotePrinterHandle m_handle = nullptr;
    uint32_t m_kind = 0;
    void* m_reply = nullptr;
    uint32_t m_size = 0;
};

void MediaTypeLists(const DEVMODEW* dm, size_t size)
{
    for (const uint16_t capability : {uint16_t{DC_MEDIATYPES}, uint16_t{DC_MEDIATYPENAMES}})
    {
        Straight().AskFor(capability, dm, static_cast<uint32_t>(size));
    }
}

ComPtr<IXMLDOMDocument2> CapabilitiesStraight(IXMLDOMDocument2* ticket)
{
    Straight printer;
    const std::vector<BYTE> input = SaveStraight(ticket);
    printer.Ask(kPT2PC, input.data(), input.size());
    ComPtr<IXMLDOMDocument2> capabilities = NewDocument();
    LoadStraight(capabilities.Get(), printer.Reply(), printer.Size());
    RemoveScalingStraight(capabilities.Get());
    return capabilities;
}

const StraightFeature& Staple()
{
    static const StraightFeature s_staple(L"psf:PrintTicket", {L"psk:JobStapleAllDocuments", L"psk:DocumentStaple"});
    return s_staple;
}
const StraightFeature& Punch()
{
    static const StraightFeature s_punch(L"psf:PrintTicket", {L"psk:JobHolePunch", L"psk:DocumentHolePunch"});
    return s_punch;
}
const StraightFeature& MediaType()
{
    static const StraightFeature s_media(L"psf:PrintTicket", {L"psk:PageMediaType"});
    return s_media;
}
const StraightFeature& MediaTypes()
{
    static const StraightFeature s_media(L"psf:PrintCapabilities", {L"psk:PageMediaType"});
    return s_media;
}

void ToTicketStraight(const DeviceMode& dm, IXMLDOMDocument2* ticket)
{
    Straight printer;
    MediaTypeLists(reinterpret_cast<const DEVMODEW*>(dm.bytes), sizeof(dm.bytes));
    printer.Ask(kDM2PT, dm.bytes, sizeof(dm.bytes));
    LoadStraight(ticket, printer.Reply(), printer.Size());
    RemoveScalingStraight(ticket);
    static const BSTR s_direction = KeptText(L"psk:BottomRight");
    static const BSTR s_staple = KeptText(L"psk:StapleTopLeft");
    static const BSTR s_punch = KeptText(L"psk:LeftEdge");
    static const BSTR s_media = KeptText(L"psk:PhotographicGlossy");
    StraightNup(ticket, 4, s_direction);
    Staple().Option(ticket, s_staple);
    Punch().Option(ticket, s_punch);
    MediaTypes().Options(CapabilitiesStraight(ticket).Get());
    MediaType().Option(ticket, s_media);
}

void ToDevModeStraight(IXMLDOMDocument2* ticket)
{
    Straight printer;
    const std::vector<BYTE> input = SaveStraight(ticket);
    StraightNup(ticket, 0, nullptr);
    Staple().Option(ticket, nullptr);
    Punch().Option(ticket, nullptr);
    const ComPtr<IXMLDOMDocument2> capabilities = CapabilitiesStraight(ticket);
    MediaType().Option(ticket, nullptr);
    MediaTypes().Options(capabilities.Get());
    printer.Ask(kPT2DM, input.data(), input.size());
    const HLOCAL copy = LocalAlloc(LMEM_ZEROINIT, printer.Size());
    std::memcpy(copy, printer.Reply(), printer.Size());
    MediaTypeLists(static_cast<const DEVMODEW*>(copy), printer.Size());
    LocalFree(copy);
}

void ValidateStraight(IXMLDOMDocument2* ticket)
{
    Straight printer;
    const std::vector<BYTE> input = SaveStraight(ticket);
    printer.Ask(kPTCHK, input.data(), input.size());
    LoadStraight(ticket, printer.Reply(), printer.Size());
}

void MustSucceed(HRESULT result)
{
    if (FAILED(result))
    {
        throw std::runtime_error("the provider does not convert");
    }
}

template <class First, class Second, class Renew>
void Add(Report& report, const char* name, First provider, Second straight, Renew renew)
{
    Plan plan = SlowCallPlan();
    plan.betweenRounds = renew;
    AddRatio(report, name, Compare(provider, straight, plan), 1.15, "provider", "straight");
}

} // namespace

void MeasurePrintTickets(Report& report)
{
    const ProviderSurroundings surroundings;
    IPrintTicketProvider* provider = surroundings.Provider();
    DeviceMode dm = MakeTicketDeviceMode();
    // Either side has a ticket of its own, a new one in every round: where the memory of a document happens to lie must
    // not decide.
    ComPtr<IXMLDOMDocument2> ticket;
    ComPtr<IXMLDOMDocument2> other;
    const auto toTicket = [&] { MustSucceed(provider->ConvertDevModeToPrintTicket(0, dm.Get(), ticket.Get())); };
    const auto renew = [&]
    {
        other = NewDocument();
        ToTicketStraight(dm, other.Get());
        ticket = NewDocument();
        toTicket();
    };
    renew();
    Add(
        report, "device mode to ticket / straight", toTicket, [&] { ToTicketStraight(dm, other.Get()); }, renew);
    const auto toDevMode = [&]
    {
        ULONG size = 0;
        DEVMODEW* out = nullptr;
        MustSucceed(provider->ConvertPrintTicketToDevMode(ticket.Get(), 0, nullptr, &size, &out));
        LocalFree(out);
    };
    Add(
        report, "ticket to device mode / straight", toDevMode, [&] { ToDevModeStraight(other.Get()); }, renew);
    const auto capabilities = [&]
    {
        ComPtr<IXMLDOMDocument2> doc;
        MustSucceed(provider->GetPrintCapabilities(ticket.Get(), doc.GetAddressOf()));
    };
    Add(
        report, "print capabilities / straight", capabilities, [&] { CapabilitiesStraight(other.Get()); }, renew);
    const auto validate = [&]
    {
        MustSucceed(provider->ValidatePrintTicket(ticket.Get()));
        ticket->Release(); // the reference that validation leaves
    };
    Add(
        report, "ticket validation / straight", validate, [&] { ValidateStraight(other.Get()); }, renew);
}

} // namespace tsypr::bench
