// Every setting from tickets to device modes and back, for the sample printer and for every printer beside the service.
#include <gtest/gtest.h>

#include <cwchar>

#include "service/device_mode.h"
#include "tests/service/build_printers.h"
#include "tests/service/service_library.h"
#include "tests/service/ticket_documents.h"

namespace tsypr::service::test
{
namespace
{

using tsypr::test::CheckPrintSchema;
using tsypr::test::PrintSchemaKind;

// The sample printer without locks.
Profile Unlocked()
{
    nlohmann::json document = SampleProfile();
    document["private"]["locked"] = nlohmann::json::array();
    return Parse(document);
}

// A feature ("A/B" for B inside A) or parameter of a ticket, and the field of the device mode that it sets.
struct Case
{
    const char* feature;
    std::string option; // its name, or the ticket's whole body
    int (*field)(const ModeParts&);
    int expected;
    const char* usual = nullptr; // the feature that says so afterwards, where it is another

    std::string Ticket() const
    {
        return test::Ticket(option.starts_with('<') ? option : Feature(feature, option));
    }
};

#define MODE(field) [](const ModeParts& parts) -> int { return static_cast<int>(parts.mode.field); }
#define KEYWORD(field, text) [](const ModeParts& parts) -> int { return std::wcscmp(parts.block.field, text) == 0; }

const std::vector<Case>& Cases()
{
    constexpr auto pages = [](const ModeParts& parts) -> int { return static_cast<int>(parts.block.pagesPerSheet); };
    static const std::string kSpiral = Feature("PresentationDirection", "v:Spiral");
    static const std::string kFine = Scored("ResolutionX", "1200") + Scored("ResolutionY", "1200");
    static const std::string kNup = "JobNUpAllDocumentsContiguously";
    static const std::vector<Case> kCases = {
        {"PageMediaSize", "psk:ISOA3", MODE(dmPaperSize), 8},
        {"PageOrientation", "psk:Portrait", MODE(dmOrientation), 1},
        {"JobDuplexAllDocumentsContiguously", "psk:TwoSidedLongEdge", MODE(dmDuplex), DMDUP_VERTICAL},
        {"DocumentDuplex", "psk:OneSided", MODE(dmDuplex), DMDUP_SIMPLEX, "JobDuplexAllDocumentsContiguously"},
        {"PageOutputColor", "psk:Color", MODE(dmColor), DMCOLOR_COLOR},
        {"PageOutputQuality", "psk:Draft", MODE(dmPrintQuality), DMRES_DRAFT},
        {"PageResolution", Unnamed("PageResolution", kFine), MODE(dmYResolution), 1200},
        {"JobInputBin", "psk:AutoSelect", MODE(dmDefaultSource), 7},
        {"DocumentInputBin", "psk:AutoSelect", MODE(dmDefaultSource), 7, "JobInputBin"},
        {"PageInputBin", "psk:AutoSelect", MODE(dmDefaultSource), 7, "JobInputBin"},
        {"PageMediaType", "psk:Plain", MODE(dmMediaType), 1},
        {"DocumentCollate", "psk:Collated", MODE(dmCollate), 1},
        {"JobCollateAllDocuments", "psk:Collated", MODE(dmCollate), 1, "DocumentCollate"},
        {"PageScaling", "psk:None", MODE(dmScale), 100},
        {"PageScalingScale",
         Feature("PageScaling", "psk:CustomSquare") + Parameter("PageScalingScale", "55"),
         MODE(dmScale),
         55},
        {"JobCopiesAllDocuments", Parameter("JobCopiesAllDocuments", "7"), MODE(dmCopies), 7},
        {kNup.c_str(), Unnamed(kNup, Scored("PagesPerSheet", "2"), kSpiral), pages, 2},
        {"DocumentNUp/PresentationDirection",
         Unnamed("DocumentNUp", Scored("PagesPerSheet", "1"), kSpiral),
         KEYWORD(nupLayout, L"ns0000:Spiral"),
         1,
         "JobNUpAllDocumentsContiguously/PresentationDirection"},
        {"JobStapleAllDocuments", "psk:None", KEYWORD(staple, L"psk:None"), 1},
        {"DocumentStaple", "psk:None", KEYWORD(staple, L"psk:None"), 1, "JobStapleAllDocuments"},
        {"JobHolePunch", "psk:None", KEYWORD(punch, L"psk:None"), 1},
        {"DocumentHolePunch", "psk:None", KEYWORD(punch, L"psk:None"), 1, "JobHolePunch"}};
    return kCases;
}

TEST(TicketConversion, CarriesEverySettingBothWays)
{
    const Profile profile = Unlocked();
    for (const Case& test : Cases())
    {
        for (const std::string& ticket : {test.Ticket(), Reprefixed(test.Ticket())})
        {
            SCOPED_TRACE(ticket);
            const TicketAnswer mode = Ask(profile, TicketQuery::TicketToDevMode, ticket);
            ASSERT_EQ(mode.result, kNoConflict);
            const ModeParts parts(mode.data);
            EXPECT_EQ(test.field(parts), test.expected);
            EXPECT_NE(test.field(ModeParts(BuildDevMode(profile))), test.expected);

            const TicketAnswer checked = Ask(profile, TicketQuery::ValidateTicket, ticket);
            ASSERT_EQ(checked.result, kNoConflict);
            const std::string chosen = Chosen(checked, test.feature);
            EXPECT_EQ(chosen, Chosen(Root(ticket), test.feature));
            const TicketAnswer back = AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, mode.data);
            EXPECT_EQ(Chosen(back, test.usual != nullptr ? test.usual : test.feature), chosen);
        }
    }
}

TEST(TicketConversion, CarriesUserDefinedSizes)
{
    const Profile profile = Unlocked();
    const std::string custom =
        "<psf:Feature name='psk:PageMediaSize'><psf:Option name='psk:CustomMediaSize'><psf:ScoredProperty "
        "name='psk:MediaSizeWidth'><psf:ParameterRef name='psk:PageMediaSizeMediaSizeWidth'/></psf:ScoredProperty>"
        "<psf:ScoredProperty name='psk:MediaSizeHeight'><psf:ParameterRef name='psk:PageMediaSizeMediaSizeHeight'/>"
        "</psf:ScoredProperty></psf:Option></psf:Feature>";
    const std::string sizes =
        Parameter("PageMediaSizeMediaSizeWidth", "150049") + Parameter("PageMediaSizeMediaSizeHeight", "600000");
    const TicketAnswer mode = Ask(profile, TicketQuery::TicketToDevMode, Ticket(custom + sizes));
    EXPECT_EQ(mode.result, kConflictResolved) << "the height is beyond what the printer takes";
    const ModeParts parts(mode.data);
    EXPECT_TRUE(parts.mode.dmPaperSize == 256 && parts.mode.dmPaperWidth == 1500 && parts.mode.dmPaperLength == 5000);
    EXPECT_EQ(parts.mode.dmFields & (DM_PAPERWIDTH | DM_PAPERLENGTH), DWORD{DM_PAPERWIDTH | DM_PAPERLENGTH});
    const TicketAnswer back = AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, mode.data);
    EXPECT_EQ(Chosen(back, "PageMediaSize"), "CustomMediaSize");
    EXPECT_EQ(Chosen(back, "PageMediaSizeMediaSizeHeight"), "500000");

    // A printer without such sizes takes the paper that has the size.
    nlohmann::json document = SampleProfile();
    document.erase("customPaper");
    document["papers"].erase(2);
    const std::string a3 =
        Parameter("PageMediaSizeMediaSizeWidth", "296900") + Parameter("PageMediaSizeMediaSizeHeight", "420300");
    const TicketAnswer fixed = Ask(Parse(document), TicketQuery::ValidateTicket, Ticket(custom + a3));
    EXPECT_EQ(fixed.result, kConflictResolved);
    EXPECT_EQ(Chosen(fixed, "PageMediaSize"), "ISOA3");
    EXPECT_EQ(Chosen(fixed, "PageMediaSizeMediaSizeWidth"), "");
}

// All the elements and names in a document.
std::string NamesIn(const XmlElement& element)
{
    const XmlAttribute* name = element.FindAttribute({"", "name"});
    std::string names = element.tag.local + (name == nullptr ? "" : " " + name->value);
    for (const XmlElement& child : element.children)
    {
        names += "(" + NamesIn(child) + ")";
    }
    return names;
}

TEST(TicketConversion, MakesGoodDocumentsWhateverThePrinterAndTheTicket)
{
    const std::vector<std::string> good;
    std::vector<Profile> printers = BuildPrinters();
    printers.insert(printers.end(), {Unlocked(), Parse(SampleProfile()), Parse(SparseProfile())});
    for (const Profile& profile : printers)
    {
        const std::string offered = NamesIn(Root(Text(Ask(profile, TicketQuery::TicketToCapabilities, ""))));
        for (const Case& test : Cases())
        {
            SCOPED_TRACE(profile.name + " " + test.Ticket());
            const TicketAnswer checked = Ask(profile, TicketQuery::ValidateTicket, test.Ticket());
            const std::string ticket = Text(checked);
            EXPECT_EQ(CheckPrintSchema(ticket, PrintSchemaKind::Ticket), good);
            EXPECT_EQ(Text(Ask(profile, TicketQuery::ValidateTicket, ticket)), ticket);
            const TicketAnswer capabilities = Ask(profile, TicketQuery::TicketToCapabilities, test.Ticket());
            EXPECT_EQ(capabilities.result, S_OK);
            EXPECT_EQ(CheckPrintSchema(Text(capabilities), PrintSchemaKind::Capabilities), good);
            EXPECT_EQ(NamesIn(Root(Text(capabilities))), offered);
            const TicketAnswer mode = Ask(profile, TicketQuery::TicketToDevMode, ticket);
            EXPECT_EQ(mode.result, kNoConflict);
            const std::string again = Text(AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, mode.data));
            EXPECT_EQ(CheckPrintSchema(again, PrintSchemaKind::Ticket), good);
            EXPECT_TRUE(Ask(profile, TicketQuery::TicketToDevMode, again).data == mode.data) << again;
        }
    }
}

// The constraints of a feature's options, joined.
std::string Constraints(const XmlElement& capabilities, std::string_view name)
{
    std::string text;
    for (const XmlElement& option : capabilities.FindChild(Psf("Feature"), Psk(name))->children)
    {
        const XmlAttribute* constrained = option.FindAttribute({"", "constrained"});
        text += constrained == nullptr ? "" : constrained->qualified->local + " ";
    }
    return text;
}

TEST(TicketConversion, MarksWhatExcludesOtherThingsAndWhatIsLocked)
{
    const std::string ticket = Ticket(Feature("DocumentStaple", "psk:None"));
    const XmlElement root = Root(Text(Ask(Parse(SampleProfile()), TicketQuery::TicketToCapabilities, ticket)));
    EXPECT_EQ(Constraints(root, "DocumentStaple"), "None None ");
    EXPECT_EQ(Constraints(root, "JobStapleAllDocuments"), "PrintTicketSettings PrintTicketSettings ");
    EXPECT_EQ(Constraints(root, "PageOutputColor"), "AdminSettings None ");
    EXPECT_EQ(Constraints(root, "PageOutputQuality"), "PrintTicketSettings PrintTicketSettings ");
    const XmlElement* type = root.FindChild(Psf("Feature"), Psk("PageMediaType"));
    const XmlElement* option = type->FindChild(Psf("Option"), Psk("PhotographicGlossy"));
    EXPECT_EQ(option->FindChild(Psf("Property"), Psk("DisplayName"))->children.at(0).text, "Glossy");
}

TEST(TicketConversion, TakesDeviceModesWhoseSizesLie)
{
    const Profile profile = Parse(SampleProfile());
    const std::vector<std::byte> mode = BuildDevMode(profile);
    const std::string usual = Text(AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, mode));
    EXPECT_EQ(Text(AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, {})), usual);
    for (const std::size_t size : {1u, 70u, 75u, 76u, 100u, 220u, 1341u, 1342u})
    {
        for (const WORD claimed : std::initializer_list<WORD>{0, 76, 220, 0xFFFF})
        {
            std::vector<std::byte> bytes = mode;
            std::memcpy(bytes.data() + offsetof(DEVMODEW, dmSize), &claimed, 2);
            bytes.resize(size);
            const TicketAnswer answer =
                AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, {AtTheEndOfMemory(bytes), size});
            const bool isReadable = size >= 76 && claimed != 0;
            EXPECT_EQ(answer.result, isReadable ? S_OK : E_INVALIDARG) << size << " " << claimed;
            EXPECT_EQ(Text(answer), isReadable ? usual : "");
        }
    }
}

} // namespace
} // namespace tsypr::service::test
