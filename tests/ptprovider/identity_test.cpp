// The class object, the factory, and what is asked of a provider before it converts anything.
#include "tests/ptprovider/provider_fixture.h"

#include <combaseapi.h>

namespace tsypr::test
{
namespace
{

constexpr GUID kOther = {0x46AC151B, 0x8490, 0x4531, {0x96, 0xCC, 0x55, 0xBF, 0x2B, 0xF1, 0x9E, 0x12}};

TEST_F(RemoteTest, ClassObjectAndFactory)
{
    void* object = this;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, DllGetClassObject(kOther, IID_IClassFactory, &object));
    EXPECT_EQ(this, object); // left alone
    EXPECT_EQ(E_NOINTERFACE, DllGetClassObject(kClsidPTProvider, kIidPrintTicketProvider, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, DllGetClassObject(kClsidPTProvider, IID_IClassFactory, nullptr));
    EXPECT_EQ((Messages{"error DllGetClassObject, invalid class id.",
                        "error PTFactory::QueryInterface, invalid interface id.",
                        "verbose DllGetClassObject PTFactory::QueryInterface returned 0x80004002.",
                        "verbose DllGetClassObject PTFactory::QueryInterface returned 0x80004003."}),
              log.Take());
    ComPtr<IClassFactory> factory;
    for (const auto& [iid, name] : {std::pair(IID_IUnknown, "IUnknown"), {IID_IClassFactory, "IClassFactory"}})
    {
        EXPECT_EQ(S_OK,
                  DllGetClassObject(kClsidPTProvider, iid, reinterpret_cast<void**>(factory.ReleaseAndGetAddressOf())));
        EXPECT_EQ(1U, References(factory.Get()));
        EXPECT_EQ((Messages{std::string("verbose PTFactory::QueryInterface, returned ") + name + " instance back.",
                            "verbose DllGetClassObject PTFactory::QueryInterface returned 0x0."}),
                  log.Take());
    }
    object = this;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(factory.Get(), kIidPrintTicketProvider, &object));
    EXPECT_EQ(this, object);
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IUnknown, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, kIidPrintTicketProvider, nullptr));
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(1U, References(factory.Get()));
    const std::string create = "error PTFactory::CreateInstance, ";
    EXPECT_EQ((Messages{create + "invalid parameter id.",
                        create + "failed to querying interface.",
                        create + "failed to querying interface.",
                        "verbose PTFactory::LockServer, bLock = 1.",
                        "verbose PTFactory::LockServer, bLock = 0."}),
              log.Take());
}

TEST_F(ProviderTest, AnswersForItself)
{
    EXPECT_EQ(1U, References(provider.Get()));
    void* object = this;
    EXPECT_EQ(E_NOINTERFACE, provider->QueryInterface(IID_IUnknown, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, provider->QueryInterface(kIidPrintTicketProvider, nullptr));
    EXPECT_EQ(S_OK, provider->QueryInterface(kIidPrintTicketProvider, &object));
    EXPECT_EQ(provider.Get(), object);
    EXPECT_EQ(1U, provider->Release());
    EXPECT_EQ(Messages{}, log.Take());

    INT* versions = nullptr;
    INT count = 0;
    EXPECT_EQ(S_OK, provider->GetSupportedVersions(nullptr, &versions, &count));
    ASSERT_NE(nullptr, versions);
    EXPECT_EQ(std::pair(1, 1), std::pair(*versions, count));
    CoTaskMemFree(versions);
    EXPECT_EQ(E_INVALIDARG, provider->GetSupportedVersions(nullptr, nullptr, &count));
    EXPECT_EQ(E_INVALIDARG, provider->GetSupportedVersions(nullptr, &versions, nullptr));
    ReceivedBstr uri;
    EXPECT_EQ(S_OK, provider->QueryDeviceNamespace(uri.Receive()));
    EXPECT_TRUE(uri.Text().starts_with(L"http://") && uri.Text().ends_with(L"/zelprinter/v.1.0"));
    EXPECT_EQ(E_INVALIDARG, provider->QueryDeviceNamespace(nullptr));
    const std::string versionsFailed = "error PTProvider::GetSupportedVersions, invalid parameters.";
    EXPECT_EQ((Messages{versionsFailed, versionsFailed, "error PTProvider::QueryDeviceNamespace, invalid parameter."}),
              log.Take());
}

TEST_F(ProviderTest, KeepsItsFunctionsInTheOrderOfTheInterface)
{
    // By number, as programs call that were compiled against Windows' own header.
    void** functions = *reinterpret_cast<void***>(provider.Get());
    INT count = 0;
    INT* versions = nullptr;
    const auto third = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(void*, HANDLE, INT**, INT*)>(functions[3]);
    EXPECT_EQ(S_OK, third(provider.Get(), nullptr, &versions, &count));
    CoTaskMemFree(versions);
    const auto last = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(void*, void*)>(functions[9]);
    EXPECT_EQ(E_INVALIDARG, last(provider.Get(), nullptr));
    EXPECT_EQ(Messages{"error PTProvider::ValidatePrintTicket, invalid parameters."}, log.Take());
}

TEST_F(ProviderTest, BindsToThePrintersName)
{
    SHIMOPTS options = PTSHIM_DEFAULT;
    DWORD flags = 0;
    INT count = 7;
    BSTR text = nullptr;
    BSTR* namespaces = &text;
    g_printer.name = L"Other Laser,5";
    EXPECT_EQ(S_OK, provider->BindPrinter(nullptr, 99, &options, &flags, &count, &namespaces));
    EXPECT_EQ(PTSHIM_NOSNAPSHOT, options);
    EXPECT_EQ(0x202U, flags);
    EXPECT_EQ(0, count);
    EXPECT_EQ(nullptr, namespaces);
    EXPECT_EQ(Messages{"verbose PTProvider::BindPrinter, retrieved virtual printer name Other Laser,5."}, log.Take());
    EXPECT_EQ(E_INVALIDARG, provider->BindPrinter(nullptr, 1, nullptr, &flags, &count, &namespaces));
    EXPECT_EQ(E_INVALIDARG, provider->BindPrinter(nullptr, 1, &options, nullptr, &count, &namespaces));
    EXPECT_EQ(E_INVALIDARG, provider->BindPrinter(nullptr, 1, &options, &flags, nullptr, &namespaces));
    EXPECT_EQ(E_INVALIDARG, provider->BindPrinter(nullptr, 1, &options, &flags, &count, nullptr));
    EXPECT_EQ(Messages(4, "error PTProvider::BindPrinter, invalid parameters."), log.Take());
    g_printer = {L"lost", 1024, true};
    EXPECT_EQ(E_FAIL, Bind(provider.Get()));
    g_printer = {L"lost", 0, false};
    EXPECT_EQ(E_FAIL, Bind(provider.Get()));
    EXPECT_EQ((Messages{"error PTProvider::BindPrinter, failed to query printer info.",
                        "error PTProvider::BindPrinter, failed to query printer info size."}),
              log.Take());
    ComPtr<IXMLDOMDocument2> capabilities;
    provider->GetPrintCapabilities(nullptr, capabilities.GetAddressOf());
    EXPECT_EQ("open Other Laser", service.TakeCalls().front()); // the name from before, and normalised only now
}

TEST_F(ProviderTest, WithoutAnOpenPrinterNothingIsConverted)
{
    service.opens = false;
    const Bytes carried(sizeof(CarriedPrivateSettings), 0x5A);
    memcpy(&CarriedPrivateSettings, carried.data(), carried.size());
    DeviceMode in = ClientDeviceMode();
    const auto ticket = Load(Ticket(""));
    log.Take();
    const auto convertAll = [&](IPrintTicketProvider* with)
    {
        ULONG bytes = 77;
        DEVMODEW* out = in.Get();
        auto* capabilities = ticket.Get();
        EXPECT_EQ(E_FAIL, with->ConvertPrintTicketToDevMode(ticket.Get(), 0, nullptr, &bytes, &out));
        EXPECT_EQ(E_FAIL, with->ConvertDevModeToPrintTicket(0, in.Get(), ticket.Get()));
        EXPECT_EQ(E_FAIL, with->GetPrintCapabilities(ticket.Get(), &capabilities));
        EXPECT_EQ(E_FAIL, with->ValidatePrintTicket(ticket.Get()));
        EXPECT_EQ(77U, bytes);
        EXPECT_EQ(in.Get(), out);
        EXPECT_EQ(ticket.Get(), capabilities);
        EXPECT_EQ(1U, References(ticket.Get()));
    };
    for (const std::string name : {"srv\\Office Laser,4", ""})
    {
        const auto unbound = NewProvider();
        log.Take();
        convertAll(name.empty() ? unbound.Get() : provider.Get());
        EXPECT_EQ(Messages(4, name.empty() ? "open " : "open Office Laser"), service.TakeCalls());
        Messages expected;
        for (const char* method : {"ConvertPrintTicketToDevMode",
                                   "ConvertDevModeToPrintTicket",
                                   "GetPrintCapabilities",
                                   "ValidatePrintTicket"})
        {
            expected.push_back(std::string("error PTProvider::") + method + ", failed to open remote printer [" + name +
                               "].");
        }
        EXPECT_EQ(expected, log.TakeErrors());
    }
    EXPECT_EQ(0, memcmp(&CarriedPrivateSettings, carried.data(), carried.size()));
    ULONG bytes = 0;
    DEVMODEW* out = nullptr;
    EXPECT_EQ(E_INVALIDARG, provider->ConvertPrintTicketToDevMode(ticket.Get(), 0, nullptr, nullptr, &out));
    EXPECT_EQ(E_INVALIDARG, provider->ConvertPrintTicketToDevMode(ticket.Get(), 0, nullptr, &bytes, nullptr));
    EXPECT_EQ(E_INVALIDARG, provider->ConvertDevModeToPrintTicket(0, in.Get(), nullptr));
    EXPECT_EQ(E_INVALIDARG, provider->GetPrintCapabilities(ticket.Get(), nullptr));
    EXPECT_EQ(Messages{}, service.TakeCalls());
}

} // namespace
} // namespace tsypr::test
