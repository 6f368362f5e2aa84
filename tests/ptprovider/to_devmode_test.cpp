// Print ticket to device mode.
#include "tests/ptprovider/provider_fixture.h"

namespace tsypr::test
{
namespace
{

const std::string kLead = "PTProvider::ConvertPrintTicketToDevMode, ";

class ToDevMode : public ProviderTest
{
protected:
    ToDevMode()
    {
        AnswerEverything();
    }

    // Has this device mode's private settings carried.
    void Carry(DeviceMode from)
    {
        const auto ticket = Load(Ticket(""));
        EXPECT_EQ(S_OK, provider->ConvertDevModeToPrintTicket(0, from.Get(), ticket.Get()));
        service.TakeCalls();
        log.Take();
    }
    static DeviceMode Source()
    {
        DeviceMode dm = ClientDeviceMode();
        PrivateDevMode& block = dm.Private();
        block.compression = 0x11111111;
        block.printTargetChoice = 0x22222222;
        block.isPrintAsImage = 3;
        block.isShowPreDlg = 4;
        block.featureBitmap = 0x5555557F;
        block.reserved2 = 0x66666666;
        block.lockedSettings = 0x77777777;
        memset(block.watermark, 0x88, sizeof(block.watermark));
        return dm;
    }
    const PrivateDevMode& Block(const OutDevMode& dm)
    {
        static const PrivateDevMode s_none = {};
        const PrivateDevMode* block = GetPrivateDevMode(dm.get());
        EXPECT_NE(nullptr, block);
        return block != nullptr ? *block : s_none;
    }
};

TEST_F(ToDevMode, TheTicketsAndTheCarriedSettingsMeet)
{
    Carry(Source());
    DeviceMode reply(220, 1112 + 40, 0xAB);
    reply->dmFields = DM_COPIES;
    service.ptReplies[kPT2DM] = {kConflictResolved, reply.Whole(), std::nullopt, 55};
    DeviceMode expected = reply; // all else comes through: other fields, other extra bytes, the block's printer name
    expected->dmFields |= DM_MEDIATYPE;
    expected->dmMediaType = 300;
    PrivateDevMode& block = expected.Private();
    const PrivateDevMode carried = Source().Private();
    block.compression = carried.compression;
    memcpy(&block.printTargetChoice, &carried.printTargetChoice, 6); // and the two switches
    memcpy(&block.featureBitmap, &carried.featureBitmap, 8);         // and what lies behind it
    block.lockedSettings = carried.lockedSettings;
    memcpy(block.watermark, carried.watermark, sizeof(block.watermark));
    block.pagesPerSheet = 4;
    block.nupLayout.Write(L"psk:TopLeft");
    block.staple.Write(L"psk:StapleTopLeft");
    block.punch.Write(L"psk:LeftEdge");
    for (auto* text : {&block.nupLayout, &block.staple, &block.punch})
    {
        text->Terminate(); // by the dump
    }
    const auto ticket = Load(FullTicket());
    log.Take();
    for (int round = 0; round < 2; ++round) // the carried settings stay for the next one
    {
        OutDevMode dm;
        EXPECT_EQ(kConflictResolved, ConvertTicket(ticket.Get(), dm));
        ASSERT_EQ(DevModeTotalSize(reply.Get()), size);
        EXPECT_EQ(expected.Whole(), Bytes(reinterpret_cast<BYTE*>(dm.get()), reinterpret_cast<BYTE*>(dm.get()) + size));
        EXPECT_EQ(
            "open open query PT2PC freePT close query PT2DM open caps 34 close freeCaps open caps 35 close freeCaps "
            "freeDevMode close",
            Calls());
        EXPECT_EQ(service.ptInputs[kPT2PC], service.ptInputs[kPT2DM]);
        EXPECT_EQ(1U, References(ticket.Get()));
    }
    const Messages said = log.Take();
    const auto count = [&](const std::string& line) { return std::count(said.begin(), said.end(), line); };
    EXPECT_EQ(
        2, count("verbose " + kLead + "VpMakePTQuery(PT2DM) returned 55 with query result 262146 and data size 1372."));
    EXPECT_EQ(2, count("verbose PTProvider::GetPrintCapabilities, return 0."));
    EXPECT_EQ(2, count("verbose PrintUtils::DumpDevMode(): PT2DM, dmOut:"));
    EXPECT_EQ(
        0, std::count_if(said.begin(), said.end(), [](const std::string& line) { return line.starts_with("error"); }));
}

TEST_F(ToDevMode, WhatTheTicketLacksIsCleared)
{
    Carry(Source());
    const struct
    {
        std::string body;
        uint32_t features, pages;
        std::wstring texts; // direction, staple and punch
    } cases[] = {{"", 0x5555556E, 0, L" "},
                 {Feature("psk:DocumentNUp", PagesOption("6")), 0x5555556E, 6, L" "}, // without a direction
                 {Feature("psk:DocumentNUp", PagesOption("x") + Feature("psk:PresentationDirection", Option("a"))),
                  0x5555556F,
                  0,
                  L"a "},
                 {Feature("psk:JobHolePunch", Option("psk:None")), 0x5555557E, 0, L" psk:None"},
                 {Feature("psk:DocumentStaple", Option("ns0000:" + std::string(22, 's'))),
                  0x5555557E,
                  0,
                  L" ns0000:" + std::wstring(22, L's')},
                 {Feature("psk:DocumentStaple", Option("ns0000:" + std::string(23, 's'))), 0x5555557E, 0, L" "}};
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.body);
        OutDevMode dm;
        EXPECT_EQ(S_OK, ConvertTicket(Load(Ticket(one.body)).Get(), dm));
        const PrivateDevMode& block = Block(dm);
        EXPECT_EQ(one.features, uint32_t{block.featureBitmap});
        EXPECT_EQ(one.pages, uint32_t{block.pagesPerSheet});
        EXPECT_EQ(one.texts, Text(block.nupLayout) + L" " + Text(block.staple) + Text(block.punch));
    }
    EXPECT_EQ(Messages{"error " + kLead + "option name 'ns0000:" + std::string(23, 's') + "' is too long."},
              log.TakeErrors());
    service.TakeCalls();
    OutDevMode dm;
    EXPECT_EQ(S_OK, ConvertTicket(nullptr, dm)); // no ticket at all
    EXPECT_EQ(0x5555556EU, uint32_t{Block(dm).featureBitmap});
    EXPECT_EQ(0U, uint32_t{Block(dm).pagesPerSheet});
    EXPECT_EQ(std::nullopt, service.ptInputs[kPT2DM]);
    EXPECT_EQ("open query PT2DM freeDevMode close", Calls());
}

TEST_F(ToDevMode, MediaTypesAreFoundByTheirNames)
{
    const std::string failed = "error GetMediaTypeIDByName, failed to retrieve capabilities for DC_MEDIATYPE";
    const std::string noData = "error GetDeviceCapabilitiesData, failed to call VpGetDeviceCapabilities to get cap ";
    const auto list = [](const std::vector<std::wstring>& names, int32_t count)
    {
        CapabilityReply reply = NamesReply(64, names);
        reply.result = count;
        return reply;
    };
    const struct
    {
        CapabilityReply names, types;
        DWORD mediaType; // 9: as it came
        Messages errors;
    } cases[] = {{list({L"Glossy"}, 1), ListReply<uint32_t>(1, {5}), 5, {}},
                 {list({L"glossy", L"Glossy ", L"Glossy", L"Glossy"}, 4), ListReply<uint32_t>(4, {1, 2, 3, 4}), 3, {}},
                 {list({L"GLOSSY"}, 1), ListReply<uint32_t>(1, {5}), 9, {}},
                 {list({L"Glossy"}, 2000000000), ListReply<uint32_t>(2000000000, {5}), 5, {}}, // as far as it reaches
                 {list({L"a", L"Glossy"}, 2), ListReply<uint32_t>(2, {5}), 9, {failed + "S."}},
                 {list({L"Glossy"}, 0), ListReply<uint32_t>(1, {5}), 9, {}},
                 {{}, {}, 9, {noData + "34.", failed + "NAMES."}},
                 {list({L"Glossy"}, 1), {}, 9, {noData + "35.", failed + "S."}}};
    DeviceMode reply = ClientDeviceMode();
    reply->dmMediaType = 9;
    service.ptReplies[kPT2DM].data = reply.Whole();
    for (const auto& one : cases)
    {
        service.capabilities[DC_MEDIATYPENAMES] = one.names;
        service.capabilities[DC_MEDIATYPES] = one.types;
        OutDevMode dm;
        EXPECT_EQ(S_OK, ConvertTicket(Load(FullTicket()).Get(), dm));
        EXPECT_EQ(one.mediaType, dm->dmMediaType);
        EXPECT_EQ(one.mediaType != 9, (dm->dmFields & DM_MEDIATYPE) != 0);
        EXPECT_EQ(one.errors, log.TakeErrors());
    }
    // Without a display name the printer is not asked.
    for (const std::string& media : {FullTicket("ns0000:Unknown"), Ticket("")})
    {
        service.TakeCalls();
        OutDevMode dm;
        EXPECT_EQ(S_OK, ConvertTicket(Load(media).Get(), dm));
        EXPECT_EQ(9U, dm->dmMediaType);
        EXPECT_EQ(std::string::npos, Calls().find("caps"));
    }
    // Neither when there are no capabilities; the conversion goes on.
    service.ptReplies[kPT2PC] = {E_ACCESSDENIED, std::nullopt, std::nullopt};
    OutDevMode dm;
    EXPECT_EQ(S_OK, ConvertTicket(Load(FullTicket()).Get(), dm));
    EXPECT_EQ(9U, dm->dmMediaType);
}

TEST_F(ToDevMode, RepliesThatAreNoWholeDeviceMode)
{
    Carry(Source());
    DeviceMode unsignedBlock = ClientDeviceMode();
    unsignedBlock.Private().signature = 1;
    Bytes longer = ClientDeviceMode().Whole(); // states one byte more than there is
    reinterpret_cast<DEVMODEW*>(longer.data())->dmDriverExtra = 1113;
    const std::string tooShort = "error " + kLead + "the device mode returned is shorter than it states.";
    const struct
    {
        Bytes reply;
        Messages errors;
    } cases[] = {{unsignedBlock.Whole(), {}},
                 {DeviceMode(220, 892).Whole(), {}},
                 {DeviceMode(220, 0).Whole(), {}},
                 {Bytes(72, 0), {}},
                 {Bytes(71, 0xFF), {tooShort}},
                 {Bytes(1, 1), {tooShort}},
                 {Bytes(5000, 0xFF), {tooShort}},
                 {longer, {tooShort}}};
    for (const auto& one : cases)
    {
        service.ptReplies[kPT2DM].data = one.reply;
        OutDevMode dm;
        EXPECT_EQ(S_OK, ConvertTicket(Load(Ticket("")).Get(), dm));
        ASSERT_EQ(one.reply.size(), size);
        EXPECT_EQ(one.reply, Bytes(reinterpret_cast<BYTE*>(dm.get()), reinterpret_cast<BYTE*>(dm.get()) + size));
        EXPECT_EQ(one.errors, log.TakeErrors());
    }
    // A block over public fields is written, the sizes before it stay.
    DeviceMode over(220, 893);
    memset(CarriedPrivateSettings.watermark, 1, 384);
    service.ptReplies[kPT2DM].data = over.Whole();
    OutDevMode dm;
    EXPECT_EQ(S_OK, ConvertTicket(nullptr, dm));
    EXPECT_EQ(std::pair(WORD{220}, WORD{893}), std::pair(dm->dmSize, dm->dmDriverExtra));
    EXPECT_EQ(Bytes(384, 1), Bytes(Block(dm).watermark, Block(dm).watermark + 384));
}

} // namespace
} // namespace tsypr::test
