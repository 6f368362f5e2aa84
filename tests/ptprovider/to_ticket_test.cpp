// Device mode to print ticket, print capabilities, validation.
#include "ptprovider/print_caps_doc.h"
#include "tests/ptprovider/provider_fixture.h"

namespace tsypr::test
{
namespace
{

using Texts = std::vector<std::wstring>;

// What says something in a ticket: pages, direction, staple, punch, media type, page scaling.
Texts SettingsOf(IXMLDOMDocument2* ticket)
{
    Texts settings;
    const std::wstring feature = L"//psf:Feature[@name='psk:";
    for (const std::wstring& query : {L"//psf:ScoredProperty/psf:Value" + std::wstring(),
                                      feature + L"PresentationDirection']/psf:Option/@name",
                                      feature + L"JobStapleAllDocuments']/psf:Option/@name",
                                      feature + L"DocumentHolePunch']/psf:Option/@name",
                                      feature + L"PageMediaType']/psf:Option/@name",
                                      feature + L"PageScaling']/psf:Option/@name"})
    {
        const Texts found = Find(ticket, query);
        settings.push_back(found.empty() ? L"-" : found.front());
    }
    return settings;
}

class ToTicket : public ProviderTest
{
protected:
    ToTicket() : ticket(Load(Ticket("<psf:Gone/>")))
    {
        AnswerEverything();
        log.Take();
    }

    // The client's ticket, corrected for this device mode.
    Texts Convert(DEVMODEW* dm, HRESULT expected = S_OK)
    {
        EXPECT_EQ(expected, provider->ConvertDevModeToPrintTicket(0, dm, ticket.Get()));
        EXPECT_EQ(1U, References(ticket.Get()));
        return SettingsOf(ticket.Get());
    }

    ComPtr<IXMLDOMDocument2> ticket;
    const Texts asItCame = {L"4", L"psk:TopLeft", L"psk:StapleTopLeft", L"psk:LeftEdge", L"ns0000:Glossy", L"-"};
};

DeviceMode Settings(uint32_t features)
{
    DeviceMode dm = ClientDeviceMode();
    dm->dmFields |= DM_MEDIATYPE;
    dm->dmMediaType = 1;
    PrivateDevMode& block = dm.Private();
    block.featureBitmap = features;
    block.pagesPerSheet = 16;
    block.nupLayout.Write(L"psk:LeftTop");
    block.staple.Write(L"psk:SaddleStitch");
    Fill(block.punch, L'p'); // no terminator
    return dm;
}

TEST_F(ToTicket, TheDriversOwnSettingsAreWritten)
{
    DeviceMode dm = Settings(kFeatureNup | kFeatureFinishing);
    EXPECT_EQ((Texts{L"16", L"psk:LeftTop", L"psk:SaddleStitch", std::wstring(29, L'p'), L"psk:Plain", L"-"}),
              Convert(dm.Get()));
    EXPECT_EQ("open open caps 35 close freeCaps open caps 34 close freeCaps query DM2PT open query PT2PC freePT close "
              "freePT close",
              Calls());
    EXPECT_EQ(dm.Whole(), service.ptInputs[kDM2PT]); // with the terminators that the dump has set
    EXPECT_EQ(L'\0', dm.Private().punch.Read().text[29]);
    const Messages said = log.Take();
    EXPECT_EQ("verbose PTProvider::ConvertDevModeToPrintTicket, return 0.", said.back());
    EXPECT_EQ(1, std::count(said.begin(), said.end(), "verbose PrintUtils::DumpDevMode(): DM2PT, dmIn:"));
    // Only the definition of the scale, which tickets do not have, is not found.
    EXPECT_EQ(1, std::count(said.begin(), said.end(), "error RemoveXmlNode, failed to locate target node."));
    EXPECT_TRUE(Find(ticket.Get(), L"//psf:Gone").empty());
}

TEST_F(ToTicket, OnlyWhatIsSetIsWritten)
{
    const auto with = [](uint32_t features, void (*change)(DeviceMode&))
    {
        DeviceMode dm = Settings(features);
        change(dm);
        return dm;
    };
    DeviceMode foreign = with(31, [](DeviceMode& dm) { dm.Private().signature = 0; });
    DeviceMode none = with(0, [](DeviceMode&) {});
    DeviceMode empty = with(kFeatureFinishing,
                            [](DeviceMode& dm)
                            {
                                dm.Private().staple.Write(L"");
                                dm.Private().punch.Write(L"");
                                dm->dmMediaType = 7; // not the printer's
                            });
    DeviceMode noMedia = with(kFeatureNup, [](DeviceMode& dm) { dm->dmFields &= ~DWORD{DM_MEDIATYPE}; });
    Texts plain = asItCame, nup = asItCame;
    plain[4] = L"psk:Plain";
    nup[0] = L"16";
    nup[1] = L"psk:LeftTop";
    EXPECT_EQ(nup, Convert(noMedia.Get()));
    Texts nothing = asItCame;
    nothing[0] = L"0";
    nothing[1] = L"";
    EXPECT_EQ(nothing, Convert(nullptr)); // the carried bits count, and there is nothing to write
    EXPECT_EQ(uint64_t{kFeatureNup}, CarriedPrivateSettings.featureBitmap);
    EXPECT_EQ(plain, Convert(foreign.Get())); // has nothing to carry
    EXPECT_EQ(uint64_t{kFeatureNup}, CarriedPrivateSettings.featureBitmap);
    EXPECT_EQ(plain, Convert(none.Get()));
    EXPECT_EQ(asItCame, Convert(empty.Get()));
    EXPECT_EQ(uint64_t{kFeatureFinishing}, CarriedPrivateSettings.featureBitmap);
    service.TakeCalls();
    EXPECT_EQ(asItCame, Convert(nullptr));
    EXPECT_EQ(uint64_t{kFeatureFinishing}, CarriedPrivateSettings.featureBitmap);
    EXPECT_EQ(std::nullopt, service.ptInputs[kDM2PT]);
    // Two features of page scaling: the second stays. A media type of which there are two: the first name counts.
    const std::string scaling =
        Feature("psk:PageScaling", Option("first")) + Feature("PSK:PAGESCALING", Option("second"));
    service.ptReplies[kDM2PT].data = BytesOf(Ticket(scaling + Feature("psk:PageMediaType", Option("old"))));
    service.ptReplies[kPT2PC].data = BytesOf(Capabilities(
        Feature("psk:PageMediaType", NamedOption("ns0000:b", "Plain") + NamedOption("ns0000:a", "Plain"))));
    EXPECT_EQ(L"ns0000:a", Convert(none.Get())[4]);
    EXPECT_EQ(Texts{L"second"}, Find(ticket.Get(), L"//psf:Feature[@name='PSK:PAGESCALING']/psf:Option/@name"));
    EXPECT_TRUE(Find(ticket.Get(), L"//psf:Feature[@name='psk:PageScaling']").empty());
}

TEST_F(ToTicket, Capabilities)
{
    for (IXMLDOMDocument2* in : {ticket.Get(), static_cast<IXMLDOMDocument2*>(nullptr)})
    {
        service.ptReplies[kPT2PC].result = kConflictResolved;
        ComPtr<IXMLDOMDocument2> capabilities;
        EXPECT_EQ(kConflictResolved, provider->GetPrintCapabilities(in, capabilities.GetAddressOf()));
        EXPECT_EQ(in != nullptr, service.ptInputs[kPT2PC].has_value());
        EXPECT_EQ(1U, References(capabilities.Get()));
        VARIANT_BOOL async = VARIANT_TRUE;
        VARIANT_BOOL externals = VARIANT_TRUE;
        VARIANT_BOOL validates = VARIANT_TRUE;
        capabilities->get_async(&async);
        capabilities->get_resolveExternals(&externals);
        capabilities->get_validateOnParse(&validates);
        EXPECT_TRUE(async == VARIANT_FALSE && externals == VARIANT_FALSE && validates == VARIANT_FALSE);
        EXPECT_EQ((Texts{L"psk:PageScaling", L"psk:PageMediaType"}), Find(capabilities.Get(), L"//psf:Feature/@name"));
        EXPECT_EQ(Texts{L"psk:Other"}, Find(capabilities.Get(), L"//psf:ParameterDef/@name"));
        EXPECT_EQ("open query PT2PC freePT close", Calls());
        EXPECT_EQ("verbose PTProvider::GetPrintCapabilities, return 262146.", log.Take().back());
    }
    EXPECT_EQ(1U, References(ticket.Get()));
}

TEST_F(ToTicket, Validation)
{
    for (const HRESULT result : {S_OK, kConflictResolved})
    {
        const auto asked = Load(Ticket(Nup("9", "a")));
        service.ptReplies[kPTCHK].result = result;
        service.TakeCalls();
        log.Take();
        EXPECT_EQ(result, provider->ValidatePrintTicket(asked.Get()));
        EXPECT_EQ(2U, References(asked.Get())); // a ticket that has been loaded keeps one more
        EXPECT_EQ(L"4", Find(asked.Get(), L"//psf:ScoredProperty/psf:Value").front());
        EXPECT_EQ("open query PTCHK freePT close", Calls());
        EXPECT_EQ(Messages{}, log.TakeErrors());
        asked->Release();
    }
    const Bytes& sent = *service.ptInputs[kPTCHK];
    EXPECT_EQ("<psf:PrintTicket", std::string(sent.begin(), sent.end()).substr(39, 16));
}

TEST_F(ToTicket, CapabilitiesForADeviceMode)
{
    const DeviceMode dm = Settings(kFeatureNup | kFeatureFinishing);
    wchar_t name[] = L"srv\\Office Laser,4";
    ComPtr<IXMLDOMDocument2> capabilities;
    ASSERT_TRUE(GetPrintCapsXmlDoc(name, dm.Get(), capabilities.GetAddressOf()));
    EXPECT_EQ(3U, Find(capabilities.Get(), L"//psf:Feature").size()); // page scaling is left in
    EXPECT_EQ("open query DM2PT query PT2PC freePT freePT close", Calls());
    const auto sent = Load(*service.ptInputs[kPT2PC]);
    EXPECT_EQ(
        (Texts{L"16", L"psk:LeftTop", L"psk:SaddleStitch", std::wstring(29, L'p'), L"ns0000:Glossy", L"psk:Custom"}),
        SettingsOf(sent.Get()));
    EXPECT_EQ(uint64_t{0}, CarriedPrivateSettings.featureBitmap);
    // Into a document that is there; without a device mode and with an empty ticket nothing is sent along.
    IXMLDOMDocument2* target = ticket.Get();
    ASSERT_TRUE(GetPrintCapsXmlDoc(name, nullptr, &target));
    EXPECT_EQ(std::nullopt, service.ptInputs[kPT2PC]);
    service.ptReplies[kDM2PT] = {E_FAIL, Bytes(1), 0U};
    service.ptReplies[kPT2PC] = {E_FAIL};
    ASSERT_TRUE(GetPrintCapsXmlDoc(name, dm.Get(), &target));
    EXPECT_EQ(ticket.Get(), target);
    EXPECT_EQ(3U, Find(target, L"//psf:Feature").size());
    EXPECT_EQ(1U, References(target));
    log.Take();
    service.ptReplies[kDM2PT] = {S_OK, BytesOf("<")};
    service.TakeCalls();
    EXPECT_FALSE(GetPrintCapsXmlDoc(name, dm.Get(), &target));
    EXPECT_EQ("open query DM2PT freePT close", Calls());
    service.opens = false;
    log.Take();
    EXPECT_FALSE(GetPrintCapsXmlDoc(name, dm.Get(), &target));
    EXPECT_EQ(Messages{"error GetPrintCapsXmlDoc, failed to open remote printer [srv\\Office Laser,4]."},
              log.TakeErrors());
    EXPECT_FALSE(GetPrintCapsXmlDoc(name, dm.Get(), nullptr));
}

} // namespace
} // namespace tsypr::test
