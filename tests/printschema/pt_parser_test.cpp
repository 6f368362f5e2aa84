#include "printschema/pt_parser.h"
#include "tests/printschema/documents.h"
#include "tests/remote/log_capture.h"

namespace tsypr::test
{
namespace
{

using Texts = std::vector<std::wstring>;

class PTParserTest : public testing::Test
{
protected:
    ComThread com;
    LogCapture log;

    // What a question left in the log, without how the document was loaded.
    Messages Said()
    {
        Messages messages = log.Take();
        std::erase_if(messages, [](const std::string& line) { return line.starts_with("verbose Mem2IXML"); });
        return messages;
    }
};

std::string Missing(const std::string& name)
{
    return "verbose PTParser::GetFeatureRootNode, can't find \"" + name + "\" node.";
}
const Messages kNoNup = {Missing("psk:JobNUpAllDocumentsContiguously"), Missing("psk:DocumentNUp")};
const Messages kNoStaple = {Missing("psk:JobStapleAllDocuments"), Missing("psk:DocumentStaple")};
const Messages kNoPunch = {Missing("psk:JobHolePunch"), Missing("psk:DocumentHolePunch")};

Messages Both(Messages first, const Messages& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// Decided by the compiler.
static_assert(HasKeyword(kStaples, L"psk:StapleTopLeft") && !HasKeyword(kStaples, L"psk:stapletopleft"));
static_assert(HasKeyword(kStaples, L"psk:None") && HasKeyword(kPunches, L"psk:None"));
static_assert(!HasKeyword(kPunches, L" psk:None") && !HasKeyword(kNupDirections, L"RightBottom"));
static_assert(std::wstring_view(FindDisplayName(kStaples, L"psk:SaddleStitch")) == L"Saddle Stitch");
static_assert(FindDisplayName(kPunches, L"psk:SaddleStitch") == nullptr);

TEST_F(PTParserTest, NupCapabilityOfRealDocuments)
{
    const auto job = [](const std::string& body) { return Feature("psk:JobNUpAllDocumentsContiguously", body); };
    const auto document = [](const std::string& body) { return Feature("psk:DocumentNUp", body); };
    const std::string directions = Feature("psk:PresentationDirection",
                                           Option("psk:RightBottom") + Option("ns0000:Spiral") + Option("psk:TopLeft"));
    const Texts both = {L"psk:RightBottom", L"psk:TopLeft"};
    const std::string four = PagesOption("1") + PagesOption(" 2 ") + PagesOption("4") + PagesOption("2");
    const std::string comments = " <!-- 1 -->" + PagesOption("<!-- a -->16") + "\t";
    const std::string odd = PagesOption("1") + Option("psk:None") + PagesOption("four");
    const Messages notJob = {Missing("psk:JobNUpAllDocumentsContiguously")};
    const std::string lead = "error PTParser::GetNupCapability, failed to get value node for nup option ";
    const struct
    {
        std::string body;
        Texts pages, directions; // no pages: the answer is no
        Messages said;
    } cases[] = {{job(four + directions), {L"1", L"2", L"4", L"2"}, both, {}},
                 {"<!-- text --> \n" + document(comments), {L"16"}, {}, notJob},
                 {document(PagesOption("9")) + job(PagesOption("6")), {L"6"}, {}, {}},
                 {job(odd + directions), {L"1", L"four"}, both, {lead + "1."}},
                 {job(Option("a") + Option("b") + directions), {}, {}, {lead + "0.", lead + "1."}},
                 {job(directions), {}, {}, {}},
                 {Feature("ns0000:NUp", PagesOption("2")), {}, {}, kNoNup},
                 {Feature("psk:Wrapper", job(PagesOption("2"))), {}, {}, kNoNup}};
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.body);
        NupCapability capability;
        const bool result = PTParser::GetNupCapability(Load(Capabilities(one.body)).Get(), capability);
        EXPECT_EQ(!one.pages.empty(), result);
        EXPECT_EQ(one.pages, capability.pagesPerSheet);
        EXPECT_EQ(one.directions, capability.directions);
        EXPECT_EQ(one.said, Said());
    }
}

TEST_F(PTParserTest, FinishingCapability)
{
    const std::string staples = Option("psk:None") + Option("psk:StapleTopLeft") + Option("psk:stapletopleft") +
                                Option("ns0000:Staple") + Option("") + Option("psk:SaddleStitch");
    const std::string whole = Feature("psk:JobStapleAllDocuments", staples) +
                              Feature("psk:DocumentHolePunch", Option("psk:LeftEdge") + Option("psk:SaddleStitch"));
    const Texts known = {L"psk:None", L"psk:StapleTopLeft", L"psk:SaddleStitch"};
    const Messages notJob = Both({Missing("psk:JobStapleAllDocuments")}, kNoPunch);
    const struct
    {
        std::string body;
        Texts staples, punches; // neither: the answer is no
        Messages said;
    } cases[] = {{whole, known, {L"psk:LeftEdge"}, {Missing("psk:JobHolePunch")}},
                 {Feature("psk:JobHolePunch", Option("psk:None")), {}, {L"psk:None"}, kNoStaple},
                 {Feature("psk:DocumentStaple", Option("ns0000:Corner")), {}, {}, notJob},
                 {"", {}, {}, Both(kNoStaple, kNoPunch)}};
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.body);
        FinishingCapability capability;
        const bool result = PTParser::GetFinishingCapability(Load(Capabilities(one.body)).Get(), capability);
        EXPECT_EQ(!one.staples.empty() || !one.punches.empty(), result);
        EXPECT_EQ(one.staples, capability.staples);
        EXPECT_EQ(one.punches, capability.punches);
        EXPECT_EQ(one.said, Said());
    }
}

TEST_F(PTParserTest, MediaTypesByName)
{
    const std::string lead = "error PTParser::GetFeatureOptions, failed to get ";
    const struct
    {
        std::string body;
        FeatureOptions options;
        Messages said;
    } cases[] = {{Feature("psk:PageMediaType",
                          NamedOption("psk:Plain", "Plain &amp; simple") + NamedOption("ns0000:Glossy", "Glossy") +
                              Option("psk:Label") + NamedOption("", "Nameless") + NamedOption("psk:Plain", "Again")),
                  {{L"psk:Plain", L"Again"}, {L"ns0000:Glossy", L"Glossy"}},
                  {lead + "display name node for option 'psk:Label'.", lead + "value for node."}},
                 {Feature("psk:PageMediaType", ""), {}, {}},
                 {"", {}, {Missing("psk:PageMediaType")}}};
    for (const auto& one : cases)
    {
        FeatureOptions options;
        EXPECT_EQ(!one.options.empty(), PTParser::GetMediaTypeOptions(Load(Capabilities(one.body)).Get(), options));
        EXPECT_EQ(one.options, options);
        EXPECT_EQ(one.said, Said());
    }
}

TEST_F(PTParserTest, NupOfTicketsIsRead)
{
    const auto job = [](const std::string& body) { return Feature("psk:JobNUpAllDocumentsContiguously", body); };
    const std::string direction = Feature("psk:PresentationDirection", Option("psk:TopLeft"));
    const std::string lead = "PTParser::GetOrSetNupOption, ";
    const Messages noLayout = {"verbose " + lead + "no Nup Layout node in print ticket."};
    const Messages noValue = {"error " + lead + "failed to get value for node."};
    const Messages noNode = {"error " + lead + "failed to get value node for nup option."};
    const struct
    {
        std::string body;
        bool result;
        uint32_t pages;
        std::wstring direction;
        Messages said;
    } cases[] = {{Nup("4", "psk:TopLeft"), true, 4, L"psk:TopLeft", {}},
                 {Nup(" 16 pages", "ns0000:Spiral"), true, 16, L"ns0000:Spiral", {}},
                 {Nup("many", "psk:TopLeft"), true, 0, L"psk:TopLeft", {}},
                 {Nup("", "psk:TopLeft"), true, 0, L"psk:TopLeft", {}},
                 {job(PagesOption("2") + PagesOption("9")), false, 2, L"old", noLayout},
                 {Nup("2", ""), false, 2, L"old", noValue},
                 {job(direction), false, 77, L"old", noNode},
                 {"", false, 77, L"old", kNoNup}};
    for (const auto& one : cases)
    {
        SCOPED_TRACE(one.body);
        uint32_t pages = 77;
        std::wstring read = L"old";
        EXPECT_EQ(one.result, PTParser::GetNupOption(Load(Ticket(one.body)).Get(), pages, read));
        EXPECT_EQ(std::pair(one.pages, one.direction), std::pair(pages, read));
        EXPECT_EQ(one.said, Said());
    }
}

TEST_F(PTParserTest, TicketsAreWritten)
{
    const auto ticket = Load(Ticket(Nup("1", "psk:RightBottom") + Feature("psk:DocumentHolePunch", Option("psk:None")) +
                                    Feature("psk:PageMediaType", Option("psk:Plain") + Option("psk:Label"))));
    EXPECT_TRUE(PTParser::SetNupOption(ticket.Get(), 6, L"ns0000:<odd & \"long\">"));
    EXPECT_TRUE(PTParser::SetPunchOption(ticket.Get(), L"psk:LeftEdge"));
    EXPECT_TRUE(PTParser::SetMediaTypeOption(ticket.Get(), L"ns0000:Glossy"));
    Said();
    EXPECT_FALSE(PTParser::SetStapleOption(ticket.Get(), L"psk:StapleTopLeft"));
    EXPECT_EQ(kNoStaple, Said());
    const auto again = Load([&] { // written and read once more
        XmlText text;
        EXPECT_EQ(S_OK, text.Take(ticket.Get()));
        return std::vector<BYTE>(text.Data(), text.Data() + text.Size());
    }());
    uint32_t pages = 0;
    std::wstring direction, punch, media, staple;
    EXPECT_TRUE(PTParser::GetNupOption(again.Get(), pages, direction));
    EXPECT_TRUE(PTParser::GetPunchOption(again.Get(), punch));
    EXPECT_TRUE(PTParser::GetMediaTypeOption(again.Get(), media));
    EXPECT_FALSE(PTParser::GetStapleOption(again.Get(), staple));
    EXPECT_EQ(6U, pages);
    EXPECT_EQ((Texts{L"ns0000:<odd & \"long\">", L"psk:LeftEdge", L"ns0000:Glossy", L""}),
              (Texts{direction, punch, media, staple}));
    EXPECT_EQ((Texts{L"ns0000:Glossy", L"psk:Label"}),
              Find(again.Get(), L"//psf:Feature[@name='psk:PageMediaType']/psf:Option/@name")); // the first alone
    Said();
    const auto odd = Load(Ticket(Feature("psk:DocumentStaple", "") + Feature("psk:JobHolePunch", Option(""))));
    EXPECT_FALSE(PTParser::GetStapleOption(odd.Get(), staple));
    EXPECT_FALSE(PTParser::GetPunchOption(odd.Get(), punch));
    const std::string lead = "error PTParser::GetOrSetStringOption, ";
    EXPECT_EQ((Messages{Missing("psk:JobStapleAllDocuments"),
                        lead + "no \"psf:Option\" found in print ticket.",
                        lead + "failed to get value for node."}),
              Said());
}

TEST_F(PTParserTest, TheFrameworksNamespaceIsTheDocumentsOwn)
{
    const std::string body = Nup("4", "psk:TopLeft");
    const std::string ticket = Ticket(body);
    std::string otherPrefix = ticket;
    for (size_t at = 0; (at = otherPrefix.find("psf", at)) != std::string::npos;)
    {
        otherPrefix.replace(at, 3, "fw");
    }
    std::string utf16 = ticket;
    utf16.replace(utf16.find("UTF-8"), 5, "UTF-16");
    std::string vendorFirst = ticket; // the vendor's prefix as a real driver binds it, and comments around
    vendorFirst.insert(vendorFirst.find("<psf:PrintTicket"), "<!-- made by a driver -->\n\n");
    vendorFirst += "\n<!-- end -->\n";
    const struct
    {
        std::vector<BYTE> bytes;
        bool result;
    } cases[] = {{BytesOf(ticket), true},
                 {BytesOf(Document("PrintTicket", body, "urn:another-version")), true},
                 {BytesOf("\xEF\xBB\xBF" + ticket), true},
                 {Utf16Of(utf16, true), true},
                 {Utf16Of(utf16, false), true},
                 {BytesOf(vendorFirst), true},
                 {BytesOf(otherPrefix), false},
                 {BytesOf(Document("PrintCapabilities", body)), false}};
    for (const auto& one : cases)
    {
        const auto doc = Load(one.bytes);
        uint32_t pages = 0;
        std::wstring direction;
        Said();
        EXPECT_EQ(one.result, PTParser::GetNupOption(doc.Get(), pages, direction));
        EXPECT_EQ(one.result ? 4U : 0U, pages);
        EXPECT_EQ(one.result ? Messages{}
                             : Messages{"error PTParser::GetFeatureRootNode, no \"psf:PrintTicket\" element found"},
                  Said());
    }
}

TEST_F(PTParserTest, NoDocumentIsReported)
{
    NupCapability nup;
    FinishingCapability finishing;
    FeatureOptions options;
    uint32_t pages = 0;
    std::wstring text;
    EXPECT_FALSE(PTParser::GetNupCapability(nullptr, nup));
    EXPECT_FALSE(PTParser::GetFinishingCapability(nullptr, finishing));
    EXPECT_FALSE(PTParser::GetMediaTypeOptions(nullptr, options));
    EXPECT_FALSE(PTParser::SetNupOption(nullptr, pages, text));
    EXPECT_FALSE(PTParser::GetStapleOption(nullptr, text));
    EXPECT_EQ(nullptr, PTParser::GetFeatureRootNode(nullptr, PTParser::kPrintTicket, kStapleFeatureNames).Get());
    Messages expected;
    for (const char* name : {"GetNupCapability",
                             "GetFinishingCapability",
                             "GetFeatureOptions",
                             "GetOrSetNupOption",
                             "GetOrSetStringOption",
                             "GetFeatureRootNode"})
    {
        expected.push_back(std::string("error PTParser::") + name + ", xmlDoc is null");
    }
    EXPECT_EQ(expected, Said());
}

} // namespace
} // namespace tsypr::test
