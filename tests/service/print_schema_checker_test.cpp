// The checker of print schema documents must see what is wrong.
#include "tests/support/print_schema_checker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tsypr::test
{
namespace
{

const std::string kHead = " xmlns:psf='http://schemas.microsoft.com/windows/2003/08/printing/printschemaframework'"
                          " xmlns:psk='http://schemas.microsoft.com/windows/2003/08/printing/printschemakeywords'"
                          " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
                          " xmlns:xsd='http://www.w3.org/2001/XMLSchema' version='1'>";
const std::string kSelection = "<psf:Property name='psf:SelectionType'><psf:Value xsi:type='xsd:QName'>psk:PickOne"
                               "</psf:Value></psf:Property>";

std::vector<std::string> CheckTicket(const std::string& body)
{
    return CheckPrintSchema("<psf:PrintTicket" + kHead + body + "</psf:PrintTicket>", PrintSchemaKind::Ticket);
}

std::vector<std::string> CheckCapabilities(const std::string& body)
{
    return CheckPrintSchema("<psf:PrintCapabilities" + kHead + body + "</psf:PrintCapabilities>",
                            PrintSchemaKind::Capabilities);
}

std::string Feature(const std::string& name, const std::string& content)
{
    return "<psf:Feature name='" + name + "'>" + content + "</psf:Feature>";
}

struct Case
{
    std::vector<std::string> (*check)(const std::string&);
    std::string body;
    const char* violation;
};

TEST(PrintSchemaChecker, SeesEachViolation)
{
    const std::string none = "<psf:Option name='psk:None'/>";
    const std::string reference = "<psf:Option name='psk:CustomSquare'><psf:ScoredProperty name='psk:Scale'>"
                                  "<psf:ParameterRef name='psk:PageScalingScale'/></psf:ScoredProperty></psf:Option>";
    const Case cases[] = {
        {CheckTicket, "<psf:Thing/>", "must not hold Thing"},
        {CheckTicket, "<psk:Feature/>", "is no element of the framework"},
        {CheckTicket, "text", "must not hold text"},
        {CheckTicket, "<psf:ParameterDef name='psk:PageCopies'/>", "must not hold ParameterDef"},
        {CheckTicket, Feature("PageScaling", none), "without a declared prefix"},
        {CheckTicket, "<psf:Feature>" + none + "</psf:Feature>", "has no name"},
        {CheckTicket, Feature("psk:PageScalling", none), "is no public feature"},
        {CheckTicket, Feature("psk:PageScaling", "<psf:Option name='psk:Nothing'/>"), "has no public option Nothing"},
        {CheckTicket, Feature("psk:PageScaling", ""), "has neither options nor features"},
        {CheckTicket, Feature("psk:PageScaling", none + reference), "has more than one option"},
        {CheckTicket, Feature("psk:PageScaling", reference), "refers to a parameter that is not there"},
        {CheckTicket, Feature("psk:PageScaling", "<psf:Option/>"), "has neither a name nor a scored property"},
        {CheckTicket,
         Feature("psk:PageScaling", "<psf:Option name='psk:None' constrained='psk:None'/>"),
         "in a ticket"},
        {CheckTicket, Feature("psk:PageScaling", none) + Feature("psk:PageScaling", none), "holds a second Feature"},
        {CheckTicket, Feature("psk:JobHolePunch", none) + Feature("psk:DocumentHolePunch", none), "exclude each other"},
        {CheckTicket, "<psf:ParameterInit name='psk:PageCopies'/>", "needs one value"},
        {CheckTicket, "<psf:ParameterInit name='psk:Copies'><psf:Value/></psf:ParameterInit>", "no public parameter"},
        {CheckTicket,
         "<psf:Property name='psk:A'><psf:Value xsi:type='xsd:integer'>x</psf:Value></psf:Property>",
         "is no integer"},
        {CheckTicket, "<psf:Property name='psk:A'><psf:Value xsi:type='xsd:int'/></psf:Property>", "unknown type"},
        {CheckTicket,
         "<psf:Property name='psk:A' id='1'><psf:Value/></psf:Property>",
         "must not have the attribute id"},
        {CheckCapabilities, Feature("psk:PageScaling", none), "has no selection type"},
        {CheckCapabilities,
         Feature("psk:PageScaling", kSelection + "<psf:Option name='psk:None' constrained='psk:Yes'/>"),
         "has an unknown constraint"},
        {CheckCapabilities,
         "<psf:ParameterDef name='psk:PageCopies'>" + kSelection + "</psf:ParameterDef>",
         "has no DefaultValue"},
        {CheckCapabilities,
         Feature("psk:JobHolePunch", kSelection + none) + Feature("psk:DocumentHolePunch", kSelection + none),
         "exclude each other"},
    };
    for (const Case& test : cases)
    {
        const std::vector<std::string> violations = test.check(test.body);
        const bool isSeen =
            std::any_of(violations.begin(),
                        violations.end(),
                        [&](const std::string& text) { return text.find(test.violation) != std::string::npos; });
        EXPECT_TRUE(isSeen) << test.body << "\n" << testing::PrintToString(violations);
    }
    EXPECT_EQ(CheckTicket(Feature("psk:PageScaling", none)), std::vector<std::string>());
    EXPECT_EQ(CheckPrintSchema("<a/>", PrintSchemaKind::Ticket).size(), 7u);
    EXPECT_EQ(CheckPrintSchema("<a>", PrintSchemaKind::Ticket).size(), 1u);
}

TEST(PrintSchemaChecker, ComparesTicketsWithCapabilities)
{
    const std::string two = Feature("psk:PageScaling", "<psf:Option name='psk:None'/>") +
                            Feature("psk:JobHolePunch", "<psf:Option name='psk:LeftEdge'/>");
    const std::string ticket = "<psf:PrintTicket" + kHead + two + "</psf:PrintTicket>";
    const std::string offer = Feature("psk:JobHolePunch", "<psf:Option name='psk:None'/>");
    const std::vector<std::string> expected = {"/PageScaling: is not offered",
                                               "/JobHolePunch: LeftEdge is not offered"};
    EXPECT_EQ(CheckTicketAgainst(ticket, "<psf:PrintCapabilities" + kHead + offer + "</psf:PrintCapabilities>"),
              expected);
}

} // namespace
} // namespace tsypr::test
