// The provider as Windows' print ticket services get it, with a service that answers by script.
#ifndef TESSARY_TESTS_PTPROVIDER_PROVIDER_FIXTURE_H
#define TESSARY_TESTS_PTPROVIDER_PROVIDER_FIXTURE_H

#include "ptprovider/carried_settings.h"
#include "ptprovider/print_ticket_interface.h"
#include "service/ticket/result_codes.h"
#include "tests/printschema/documents.h"
#include "tests/remote/fake_service.h"

#include <memory>

namespace tsypr::test
{

// What GetPrinterW answers; the program is linked so that its calls pass through here.
struct PrinterScript
{
    const wchar_t* name = L"srv\\Office Laser,4";
    DWORD needed = 1024;
    bool fails = false;
};
extern PrinterScript g_printer;

inline constexpr uint32_t kPT2DM = 0, kDM2PT = 1, kPT2PC = 2, kPTCHK = 3;

using service::kConflictResolved;

inline ComPtr<IClassFactory> NewFactory()
{
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK,
              DllGetClassObject(kClsidPTProvider, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf())));
    return factory;
}

inline ComPtr<IPrintTicketProvider> NewProvider()
{
    ComPtr<IPrintTicketProvider> provider;
    EXPECT_EQ(S_OK,
              NewFactory()->CreateInstance(
                  nullptr, kIidPrintTicketProvider, reinterpret_cast<void**>(provider.GetAddressOf())));
    return provider;
}

inline HRESULT Bind(IPrintTicketProvider* provider)
{
    SHIMOPTS options = PTSHIM_DEFAULT;
    DWORD flags = 0;
    INT count = 0;
    BSTR* namespaces = nullptr;
    return provider->BindPrinter(nullptr, 1, &options, &flags, &count, &namespaces);
}

struct LocalFreeIt
{
    void operator()(void* memory) const
    {
        LocalFree(memory);
    }
};
using OutDevMode = std::unique_ptr<DEVMODEW, LocalFreeIt>;

// References that are left when one more has been taken and released.
inline ULONG References(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}

class ProviderTest : public RemoteTest
{
protected:
    ProviderTest()
    {
        g_printer = {};
        CarriedPrivateSettings = {};
        provider = NewProvider();
        EXPECT_EQ(S_OK, Bind(provider.Get()));
        log.Take();
    }

    // A device mode with settings of every kind.
    static DeviceMode FullDeviceMode()
    {
        DeviceMode dm = ClientDeviceMode();
        dm->dmFields |= DM_MEDIATYPE;
        dm->dmMediaType = 300;
        dm.Private().featureBitmap = kFeatureNup | kFeatureFinishing;
        return dm;
    }
    // The client's answers to a ticket: a device mode, a ticket, capabilities with two media types.
    void AnswerEverything()
    {
        DeviceMode dm = ClientDeviceMode();
        service.ptReplies[kPT2DM].data = dm.Whole();
        service.ptReplies[kDM2PT].data = BytesOf(FullTicket());
        service.ptReplies[kPT2PC].data = BytesOf(FullCapabilities());
        service.ptReplies[kPTCHK].data = BytesOf(FullTicket());
        service.capabilities[DC_MEDIATYPENAMES] = NamesReply(64, {L"Plain", L"Glossy", std::wstring(64, L'g')});
        service.capabilities[DC_MEDIATYPES] = ListReply<uint32_t>(3, {1, 300, 301});
    }
    static std::string FullTicket(const std::string& media = "ns0000:Glossy")
    {
        return Ticket(Nup("4", "psk:TopLeft") + Feature("psk:PageScaling", Option("psk:Custom")) +
                      Feature("psk:JobStapleAllDocuments", Option("psk:StapleTopLeft")) +
                      Feature("psk:DocumentHolePunch", Option("psk:LeftEdge")) +
                      Feature("psk:PageMediaType", Option(media)) +
                      "<psf:ParameterInit name=\"psk:PageScalingScale\"><psf:Value>90</psf:Value></psf:ParameterInit>");
    }
    static std::string FullCapabilities()
    {
        return Capabilities(
            Feature("PSK:pagescaling", Option("psk:Custom")) + Feature("psk:PageScaling", Option("psk:None")) +
            "<psf:ParameterDef name=\"psk:PageScalingScale\"/><psf:ParameterDef name=\"psk:Other\"/>" +
            Feature("psk:PageMediaType", NamedOption("ns0000:Glossy", "Glossy") + NamedOption("psk:Plain", "Plain")));
    }

    HRESULT ConvertTicket(IXMLDOMDocument2* ticket, OutDevMode& out)
    {
        DEVMODEW* dm = nullptr;
        size = 0;
        const HRESULT result = provider->ConvertPrintTicketToDevMode(ticket, 0, nullptr, &size, &dm);
        out.reset(dm);
        return result;
    }

    // The calls since the last time in one line; every printer opened is "Office Laser".
    std::string Calls()
    {
        std::string line;
        for (const std::string& call : service.TakeCalls())
        {
            line += (line.empty() ? "" : " ") + (call == "open Office Laser" ? "open" : call);
        }
        return line;
    }

    ComThread com;
    ComPtr<IPrintTicketProvider> provider;
    ULONG size = 0; // of the last device mode given
};

} // namespace tsypr::test

#endif
