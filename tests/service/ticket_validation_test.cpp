// Tickets that ask for what the printer lacks, and bytes that are no ticket.
#include <gtest/gtest.h>

#include "tests/service/service_library.h"
#include "tests/service/ticket_documents.h"

namespace tsypr::service::test
{
namespace
{

const Profile& Sample()
{
    static const Profile profile = Parse(SampleProfile());
    return profile;
}

// A ticket's body, and one thing that the validated ticket says.
struct Case
{
    std::string body;
    const char* feature;
    const char* chosen;
};

void Check(HRESULT result, const std::vector<Case>& cases)
{
    for (const Case& test : cases)
    {
        SCOPED_TRACE(test.body);
        const TicketAnswer answer = Ask(Sample(), TicketQuery::ValidateTicket, Ticket(test.body));
        ASSERT_EQ(answer.result, result);
        EXPECT_EQ(Chosen(answer, test.feature), test.chosen);
        const std::string ticket = Text(answer);
        const TicketAnswer again = Ask(Sample(), TicketQuery::ValidateTicket, ticket);
        EXPECT_EQ(again.result, kNoConflict);
        EXPECT_EQ(Text(again), ticket);
        EXPECT_EQ(tsypr::test::CheckPrintSchema(ticket, tsypr::test::PrintSchemaKind::Ticket),
                  std::vector<std::string>());
        const TicketAnswer mode = Ask(Sample(), TicketQuery::TicketToDevMode, Ticket(test.body));
        EXPECT_EQ(mode.result, result);
        EXPECT_TRUE(mode.data == Ask(Sample(), TicketQuery::TicketToDevMode, ticket).data);
    }
}

TEST(TicketValidation, ResolvesFeaturesAndOptions)
{
    const std::string foreign = "<psf:Feature xmlns:psk='http://else.example/'  name='psk:PageMediaSize'>"
                                "<psf:Option name='psk:ISOA3'/></psf:Feature>";
    const std::string sized = Scored("MediaSizeWidth", "297900") + Scored("MediaSizeHeight", "419100");
    const std::string both = "<psf:Option name='psk:JISB0'>" + sized + "</psf:Option>";
    const std::string portrait = Feature("PageOrientation", "psk:Portrait");
    const std::string landscape = "<psf:Option name='psk:Landscape'/>";
    const std::string inside = Feature("ScaleOffsetAlignment", "psk:Center");
    const auto nup = [](const char* pages) { return Unnamed("DocumentNUp", Scored("PagesPerSheet", pages)); };
    Check(kNoConflict,
          {{"", "PageOrientation", "Landscape"},
           {"<psf:Feature name='psk:PageOrientation'/>", "PageOrientation", "Landscape"},
           {Unnamed("PageMediaSize", sized), "PageMediaSize", "ISOA3"}});
    Check(kConflictResolved,
          {{Feature("JobBindAllDocuments", "psk:None"), "JobBindAllDocuments", ""},
           {foreign, "PageMediaSize", "ISOA4"},
           {Feature("PageMediaSize", "undeclared:ISOA3"), "PageMediaSize", "ISOA4"},
           {Feature("PageMediaSize", "psk:NorthAmericaLegal"), "PageMediaSize", "ISOA4"},
           {"<psf:Feature name='psk:PageMediaSize'>" + both + "</psf:Feature>", "PageMediaSize", "ISOA3"},
           {Feature("PageOutputColor", "psk:Grayscale"), "PageOutputColor", "Monochrome"},
           {Feature("PageOutputColor", "psk:Color"), "PageOutputColor", "Monochrome"},
           {Feature("PageOrientation", "psk:Portrait", landscape), "PageOrientation", "Portrait"},
           {portrait + Feature("PageOrientation", "psk:Landscape"), "PageOrientation", "Portrait"},
           {Feature("PageScaling", "psk:None", inside), "PageScaling/ScaleOffsetAlignment", ""},
           {nup("3"), "DocumentNUp", "4"},
           {nup("many"), "DocumentNUp", "4"},
           {"<psf:Nonsense/>", "PageOrientation", "Landscape"}});
}

TEST(TicketValidation, KeepsOneOfSettingsThatExcludeEachOther)
{
    const std::string fine = Unnamed("PageResolution", Scored("ResolutionX", "600") + Scored("ResolutionY", "600"));
    const std::string staple = Feature("JobStapleAllDocuments", "psk:StapleTopLeft");
    const std::string punch = Feature("DocumentHolePunch", "psk:LeftEdge");
    const std::string tray = Feature("PageInputBin", "v:Tray.1-b");
    Check(kConflictResolved,
          {{staple + Feature("DocumentStaple", "psk:None"), "DocumentStaple", "None"},
           {Feature("JobHolePunch", "psk:None") + punch, "JobHolePunch", "None"},
           {tray + Feature("DocumentInputBin", "psk:AutoSelect"), "DocumentInputBin", "AutoSelect"},
           {fine + Feature("PageOutputQuality", "psk:High"), "PageOutputQuality", "High"},
           {fine + Feature("PageOutputQuality", "v:Best"), "PageResolution", "600x600"},
           {Feature("PageOutputQuality", "psk:Text"), "PageResolution", "1200x600"},
           {Feature("PageOutputQuality", "psk:Photographic"), "PageOutputQuality", "High"}});
}

TEST(TicketValidation, BringsParametersIntoRange)
{
    static constexpr char kCopies[] = "JobCopiesAllDocuments";
    const auto copies = [](const char* job, const char* document, const char* page)
    { return Parameter(kCopies, job) + Parameter("DocumentCopiesAllPages", document) + Parameter("PageCopies", page); };
    // A parameter that nothing refers to says nothing.
    const std::string unused = Feature("PageScaling", "psk:None") + Parameter("PageScalingScale", "5000");
    Check(kNoConflict,
          {{"", kCopies, "3"},
           {Parameter(kCopies, ""), kCopies, "3"},
           {copies("2", "5", "5"), "DocumentCopiesAllPages", "5"},
           {unused, "PageScalingScale", ""},
           {Parameter("PageScalingScale", "80"), "PageScalingScale", "80"}});
    Check(kConflictResolved,
          {{Parameter(kCopies, "0"), kCopies, "1"},
           {Parameter(kCopies, "99999999999999999999"), kCopies, "50"},
           {Parameter(kCopies, "two"), kCopies, "3"},
           {Parameter(kCopies, "4") + Parameter(kCopies, "5"), kCopies, "4"},
           {copies("2", "5", "6"), kCopies, "50"},
           {Parameter("PageScalingOffsetWidth", "4"), "PageScalingOffsetWidth", ""}});
    const TicketAnswer mode = Ask(Sample(), TicketQuery::TicketToDevMode, Ticket(copies("2", "3", "4")));
    EXPECT_EQ(ModeParts(mode.data).mode.dmCopies, 24);
}

// The property's value, with the names in it resolved; "-" when the element has no such property.
std::string PropertyText(const XmlElement& parent, const QName& name)
{
    const XmlElement* property = parent.FindChild(Psf("Property"), name);
    const XmlElement* value = property == nullptr ? nullptr : property->FindChild(Psf("Value"));
    return value == nullptr ? "-" : value->qualifiedText ? value->qualifiedText->local : value->text;
}

TEST(TicketValidation, KeepsPropertiesOfNamespacesThatThePrinterKnows)
{
    const auto property = [](const std::string& name, const std::string& text, const std::string& type = "string")
    {
        return "<psf:Property name='" + name + "'><psf:Value xsi:type='xsd:" + type + "'>" + text +
               "</psf:Value></psf:Property>";
    };
    const std::string named = "<psf:Feature name='psk:PageOrientation'>" +
                              property("psf:SelectionType", "psk:PickOne", "QName") +
                              "<psf:Option name='psk:Portrait'>" + property("psk:Future", "1 &lt; 2 &amp; \"3\"") +
                              "</psf:Option></psf:Feature>";
    const std::string imperfect = "<psf:Feature name='psk:PageMediaType'><psf:Option name='psk:Plain'>" +
                                  Scored("Weight", "80") + property("psk:Future", "1") + "</psf:Option></psf:Feature>";
    const std::string ticket = Ticket(property("v:Account", "x:y") + property("psk:JobName", "v:Report") + named +
                                      imperfect + "<psf:Property xmlns:e='http://else.example' name='e:Other'/>");
    for (const std::string& input : {ticket, Reprefixed(ticket)})
    {
        const TicketAnswer answer = Ask(Sample(), TicketQuery::ValidateTicket, input);
        EXPECT_EQ(answer.result, kNoConflict);
        const XmlElement root = Root(Text(answer));
        EXPECT_EQ(PropertyText(root, {"http://vendor.example/ns", "Account"}), "x:y");
        EXPECT_EQ(PropertyText(root, Psk("JobName")), "v:Report");
        EXPECT_EQ(PropertyText(root, {"http://else.example", "Other"}), "-");
        const XmlElement* orientation = root.FindChild(Psf("Feature"), Psk("PageOrientation"));
        EXPECT_EQ(PropertyText(*orientation, Psf("SelectionType")), "PickOne");
        EXPECT_EQ(PropertyText(*orientation->FindChild(Psf("Option")), Psk("Future")), "1 < 2 & \"3\"");
        const XmlElement* type = root.FindChild(Psf("Feature"), Psk("PageMediaType"));
        EXPECT_TRUE(type->FindChild(Psf("Option"))->children.empty());
        EXPECT_EQ(Text(Ask(Sample(), TicketQuery::ValidateTicket, Text(answer))), Text(answer));
    }
}

TEST(TicketValidation, RefusesWhatIsNoTicket)
{
    const std::string good = Ticket("");
    const auto changed = [&](const std::string& from, const std::string& to)
    {
        std::string text = good;
        return text.replace(text.find(from), from.size(), to);
    };
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
    {
        deep += "<psf:Property name='psk:A'>";
    }
    const std::string bad[] = {"<",
                               "text",
                               "<a/>",
                               good.substr(0, good.size() - 1),
                               good + "<a/>",
                               "\xFF\xFE",
                               changed("version='1'", ""),
                               changed("version='1'", "version='2'"),
                               changed("printschemaframework", "elsewhere"),
                               changed("</psf:", "<psf:Feature name='\xC3'/></psf:"),
                               "<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]>" + good,
                               Ticket(deep),
                               good + std::string(64 * 1024 * 1024, ' ')};
    for (const std::string& text : bad)
    {
        for (const TicketQuery query :
             {TicketQuery::TicketToDevMode, TicketQuery::TicketToCapabilities, TicketQuery::ValidateTicket})
        {
            const TicketAnswer answer = Ask(Sample(), query, text);
            EXPECT_EQ(answer.result, kBadTicket) << text.substr(0, 100);
            EXPECT_TRUE(answer.data.empty());
        }
    }
    EXPECT_EQ(Ask(Sample(), TicketQuery::ValidateTicket, "").result, kBadTicket);
    EXPECT_EQ(Ask(Sample(), TicketQuery::TicketToDevMode, "").result, kNoConflict);
}

using TicketApi = SampleService;

TEST_F(TicketApi, GivesRepliesToBeFreedAsTheirKindAsks)
{
    void* handle = library.Open(L"Sample");
    const std::string ticket = Ticket("");
    DWORD size = 0;
    void* data = nullptr;
    LONG result = 0;
    for (const DWORD kind : {0u, 1u, 2u, 3u})
    {
        const bool fromMode = kind == 1;
        const DWORD length = fromMode ? 0 : static_cast<DWORD>(ticket.size());
        EXPECT_EQ(library.makePTQuery(handle, kind, length, ticket.data(), &size, &data, &result), ERROR_SUCCESS);
        EXPECT_TRUE(data != nullptr && size > 0 && SUCCEEDED(result)) << kind;
        kind == 0 ? library.freePTData(data) : library.freeDevMode(static_cast<DEVMODEW*>(data));
        EXPECT_EQ(library.Counters().outstandingReplies, 1u);
        kind == 0 ? library.freeDevMode(static_cast<DEVMODEW*>(data)) : library.freePTData(data);
        EXPECT_EQ(library.Counters().outstandingReplies, 0u);
    }
    const auto refuses = [&](void* printer, DWORD kind, DWORD length, const char* input, LONG expected)
    {
        size = 5;
        data = &size;
        EXPECT_NE(library.makePTQuery(printer, kind, length, input, &size, &data, &result), ERROR_SUCCESS);
        EXPECT_TRUE(size == 0 && data == nullptr && result == expected) << kind;
    };
    refuses(handle, 4, 0, nullptr, E_INVALIDARG);
    refuses(handle, 2, 4, nullptr, E_INVALIDARG);
    refuses(handle, 3, 4, "oops", kBadTicket);
    library.close(handle);
    refuses(handle, 2, 0, nullptr, E_HANDLE);
    EXPECT_NE(library.makePTQuery(handle, 2, 0, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(library.Counters().outstandingReplies, 0u);
}

} // namespace
} // namespace tsypr::service::test
