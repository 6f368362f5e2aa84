// Every setting from tickets to device modes and back, for the sample printer and for every printer beside the service.
#include <gtest/gtest.h>

#include <cwchar>
#include <set>

#include "service/device_mode.h"
#include "service/profile_loader.h"
#include "service/ticket/document_writer.h"
#include "service/ticket/ticket_state.h"
#include "service/ticket/xml_writer.h"
#include "tests/service/service_library.h"
#include "tests/service/ticket_documents.h"

namespace tsypr::service::test
{
namespace
{

using tsypr::test::CheckPrintSchema;
using tsypr::test::CheckTicketAgainst;
using tsypr::test::PrintSchemaKind;

// The sample printer without locks.
Profile Unlocked()
{
    nlohmann::json document = SampleProfile();
    document["private"]["locked"] = nlohmann::json::array();
    return Parse(document);
}

// A ticket, a field of its device mode, and what the usual scope's feature says afterwards.
struct Case
{
    std::string body;
    const char* feature;
    int (*field)(const ModeParts&);
    int expected;
    const char* usual;
};

#define MODE(field) [](const ModeParts& parts) -> int { return static_cast<int>(parts.mode.field); }
#define KEYWORD(field, text) [](const ModeParts& parts) -> int { return std::wcscmp(parts.block.field, text) == 0; }

const std::string kNup = Feature("PresentationDirection", "v:Spiral");

const std::vector<Case>& Cases()
{
    static const std::vector<Case> kCases = {
        {Feature("PageMediaSize", "psk:ISOA3"), "PageMediaSize", MODE(dmPaperSize), 8, "PageMediaSize"},
        {Feature("PageOrientation", "psk:Portrait"), "PageOrientation", MODE(dmOrientation), 1, "PageOrientation"},
        {Feature("JobDuplexAllDocumentsContiguously", "psk:TwoSidedLongEdge"),
         "JobDuplexAllDocumentsContiguously",
         MODE(dmDuplex),
         DMDUP_VERTICAL,
         "JobDuplexAllDocumentsContiguously"},
        {Feature("DocumentDuplex", "psk:OneSided"),
         "DocumentDuplex",
         MODE(dmDuplex),
         DMDUP_SIMPLEX,
         "JobDuplexAllDocumentsContiguously"},
        {Feature("PageOutputColor", "psk:Color"), "PageOutputColor", MODE(dmColor), DMCOLOR_COLOR, "PageOutputColor"},
        {Feature("PageOutputQuality", "psk:Draft"),
         "PageOutputQuality",
         MODE(dmPrintQuality),
         DMRES_DRAFT,
         "PageOutputQuality"},
        {Unnamed("PageResolution", Scored("ResolutionX", "1200") + Scored("ResolutionY", "1200")),
         "PageResolution",
         MODE(dmYResolution),
         1200,
         "PageResolution"},
        {Feature("JobInputBin", "psk:AutoSelect"), "JobInputBin", MODE(dmDefaultSource), 7, "JobInputBin"},
        {Feature("DocumentInputBin", "psk:AutoSelect"), "DocumentInputBin", MODE(dmDefaultSource), 7, "JobInputBin"},
        {Feature("PageInputBin", "psk:AutoSelect"), "PageInputBin", MODE(dmDefaultSource), 7, "JobInputBin"},
        {Feature("PageMediaType", "psk:Plain"), "PageMediaType", MODE(dmMediaType), 1, "PageMediaType"},
        {Feature("DocumentCollate", "psk:Collated"), "DocumentCollate", MODE(dmCollate), 1, "DocumentCollate"},
        {Feature("JobCollateAllDocuments", "psk:Collated"),
         "JobCollateAllDocuments",
         MODE(dmCollate),
         1,
         "DocumentCollate"},
        {Feature("PageScaling", "psk:None"), "PageScaling", MODE(dmScale), 100, "PageScaling"},
        {Feature("PageScaling", "psk:CustomSquare") + Parameter("PageScalingScale", "55"),
         "PageScalingScale",
         MODE(dmScale),
         55,
         "PageScalingScale"},
        {Parameter("JobCopiesAllDocuments", "7"), "JobCopiesAllDocuments", MODE(dmCopies), 7, "JobCopiesAllDocuments"},
        {Unnamed("JobNUpAllDocumentsContiguously", Scored("PagesPerSheet", "2"), kNup),
         "JobNUpAllDocumentsContiguously",
         [](const ModeParts& parts) { return int(parts.block.pagesPerSheet); },
         2,
         "JobNUpAllDocumentsContiguously"},
        {Unnamed("DocumentNUp", Scored("PagesPerSheet", "1"), kNup),
         "DocumentNUp/PresentationDirection",
         KEYWORD(nupLayout, L"ns0000:Spiral"),
         1,
         "JobNUpAllDocumentsContiguously/PresentationDirection"},
        {Feature("JobStapleAllDocuments", "psk:None"),
         "JobStapleAllDocuments",
         KEYWORD(staple, L"psk:None"),
         1,
         "JobStapleAllDocuments"},
        {Feature("DocumentStaple", "psk:None"),
         "DocumentStaple",
         KEYWORD(staple, L"psk:None"),
         1,
         "JobStapleAllDocuments"},
        {Feature("JobHolePunch", "psk:None"), "JobHolePunch", KEYWORD(punch, L"psk:None"), 1, "JobHolePunch"},
        {Feature("DocumentHolePunch", "psk:None"), "DocumentHolePunch", KEYWORD(punch, L"psk:None"), 1, "JobHolePunch"},
    };
    return kCases;
}

TEST(TicketConversion, CarriesEverySettingBothWays)
{
    const Profile profile = Unlocked();
    for (const Case& test : Cases())
    {
        for (const std::string& ticket : {Ticket(test.body), Reprefixed(Ticket(test.body))})
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
            EXPECT_EQ(Chosen(back, test.usual), chosen);
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

// The printers beside the service, the imported ones included, and those of the tests.
const std::vector<Profile>& Printers()
{
    static const std::vector<Profile> kPrinters = []
    {
        WCHAR path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        std::vector<Profile> printers = LoadProfiles(std::filesystem::path(path).parent_path() / L"printers").printers;
        EXPECT_GE(printers.size(), 2u);
        printers.push_back(Unlocked());
        printers.push_back(Parse(SampleProfile()));
        printers.push_back(Parse(SparseProfile()));
        return printers;
    }();
    return kPrinters;
}

// Checks a ticket's way to a device mode and back to what says the same.
void CheckRoundTrip(const TicketModel& model, const TicketState& state)
{
    const Profile& profile = model.profile;
    const std::string ticket = WriteXml(BuildTicket(model, state), model.vendorUri);
    EXPECT_EQ(CheckPrintSchema(ticket, PrintSchemaKind::Ticket), std::vector<std::string>());
    const TicketAnswer checked = Ask(profile, TicketQuery::ValidateTicket, ticket);
    EXPECT_EQ(checked.result, kNoConflict);
    EXPECT_EQ(Text(checked), ticket);
    const TicketAnswer mode = Ask(profile, TicketQuery::TicketToDevMode, ticket);
    EXPECT_EQ(mode.result, kNoConflict);
    const std::string again = Text(AnswerTicketQuery(profile, TicketQuery::DevModeToTicket, mode.data));
    EXPECT_EQ(CheckPrintSchema(again, PrintSchemaKind::Ticket), std::vector<std::string>());
    EXPECT_TRUE(Ask(profile, TicketQuery::TicketToDevMode, again).data == mode.data) << ticket << again;
    const ModeParts parts(mode.data);
    for (std::size_t i = 0; i < model.settings.size(); ++i)
    {
        EXPECT_EQ(model.settings[i].row->get(profile, parts), model.settings[i].Option(state.settings[i].choice).value)
            << ticket;
    }
}

void CheckCapabilities(const Profile& profile, const TicketModel& model, const TicketState& state)
{
    const std::string ticket = WriteXml(BuildTicket(model, state), model.vendorUri);
    const std::string capabilities = Text(Ask(profile, TicketQuery::TicketToCapabilities, ticket));
    EXPECT_EQ(CheckPrintSchema(capabilities, PrintSchemaKind::Capabilities), std::vector<std::string>());
    EXPECT_EQ(CheckTicketAgainst(ticket, capabilities), std::vector<std::string>());
}

// The printer's defaults, but numbers as large as they may be.
TicketState LargeState(const TicketModel& model)
{
    TicketState state = DefaultState(model);
    for (std::size_t i = 0; i < model.parameters.size(); ++i)
    {
        const bool isOther = model.parameters[i].row->isUnconditional && i > 0;
        state.parameters[i] = isOther ? 1 : model.parameters[i].range.largest;
    }
    return state;
}

void CheckEveryOption(const Profile& profile)
{
    const TicketModel model(profile);
    for (std::size_t i = 0; i < model.settings.size(); ++i)
    {
        const TicketSetting& setting = model.settings[i];
        TicketState state = LargeState(model);
        for (std::size_t feature = 0; feature < setting.features.size(); ++feature)
        {
            SCOPED_TRACE(profile.name + " " + setting.features[feature].name.local);
            for (std::size_t option = 0; option < setting.features[feature].options.size(); ++option)
            {
                const Choice choice{feature, option};
                if (!setting.isLocked || setting.Option(choice).value == setting.DefaultValue())
                {
                    state.settings[i].choice = choice;
                    CheckRoundTrip(model, state);
                }
            }
            CheckCapabilities(profile, model, state);
        }
    }
}

TEST(TicketConversion, LosesNothingForAnyChoiceOfAnyPrinter)
{
    for (const Profile& profile : Printers())
    {
        const TicketModel model(profile);
        CheckRoundTrip(model, DefaultState(model));
        CheckEveryOption(profile);
    }
}

// All the names in a document, with where they are.
void CollectNames(const XmlElement& element, const std::string& place, std::multiset<std::string>& names)
{
    for (const XmlElement& child : element.children)
    {
        const std::string here = place + "/" + child.tag.local + " " + (child.Name() ? child.Name()->local : "");
        names.insert(here);
        CollectNames(child, here, names);
    }
}

TEST(TicketConversion, OffersTheSameWhateverTheTicketSays)
{
    for (const Profile& profile : Printers())
    {
        std::multiset<std::string> usual;
        CollectNames(Root(Text(Ask(profile, TicketQuery::TicketToCapabilities, ""))), "", usual);
        for (const Case& test : Cases())
        {
            std::multiset<std::string> names;
            const TicketAnswer answer = Ask(profile, TicketQuery::TicketToCapabilities, Ticket(test.body));
            EXPECT_EQ(answer.result, S_OK);
            CollectNames(Root(Text(answer)), "", names);
            EXPECT_EQ(names, usual) << profile.name << " " << test.body;
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
