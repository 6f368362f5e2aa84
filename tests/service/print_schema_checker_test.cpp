// The checker of print schema documents must see what is wrong.
#include "tests/support/print_schema_checker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "service/ticket/keywords.h"

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

TEST(PrintSchemaChecker, SeesEachViolation)
{
    const std::string none = "<psf:Option name='psk:None'/>";
    const std::string reference = "<psf:Option name='psk:CustomSquare'><psf:ScoredProperty name='psk:Scale'>"
                                  "<psf:ParameterRef name='psk:PageScalingScale'/></psf:ScoredProperty></psf:Option>";
    const auto scaling = [](const std::string& content) { return Feature("psk:PageScaling", content); };
    const auto property = [](const std::string& value)
    { return "<psf:Property name='psk:A'>" + value + "</psf:Property>"; };
    const std::pair<std::string, const char*> tickets[] = {
        {"<psf:Thing/>", "may stand here"},
        {"<psk:Feature/>", "may stand here"},
        {"text", "has text"},
        {"<psf:ParameterDef name='psk:PageCopies'/>", "may stand here"},
        {Feature("PageScaling", none), "without a declared prefix"},
        {"<psf:Feature>" + none + "</psf:Feature>", "has no name"},
        {Feature("psk:PageScalling", none), "is no public feature"},
        {scaling("<psf:Option name='psk:Nothing'/>"), "is no public option"},
        {scaling(""), "has neither options nor features"},
        {scaling(none + reference), "has more than one option"},
        {scaling(reference), "refers to a parameter that is not there"},
        {scaling("<psf:Option/>"), "has neither a name nor a scored property"},
        {scaling("<psf:Option name='psk:None' constrained='psk:None'/>"), "has a constraint"},
        {scaling(none) + scaling(none), "is a second one"},
        {Feature("psk:JobHolePunch", none) + Feature("psk:DocumentHolePunch", none), "excludes it"},
        {"<psf:ParameterInit name='psk:PageCopies'/>", "needs one value"},
        {"<psf:ParameterInit name='psk:Copies'><psf:Value/></psf:ParameterInit>", "is no public parameter"},
        {property("<psf:Value xsi:type='xsd:integer'>x</psf:Value>"), "is not of its type"},
        {property("<psf:Value xsi:type='xsd:int'/>"), "has an unknown type"},
        {property(""), "holds nothing"},
        {"<psf:Property name='psk:A' id='1'><psf:Value/></psf:Property>", "has an attribute that is not its own"}};
    const std::pair<std::string, const char*> capabilities[] = {
        {scaling(none), "has no selection type"},
        {scaling(kSelection + "<psf:Option name='psk:None' constrained='psk:Yes'/>"), "has a constraint"},
        {"<psf:ParameterDef name='psk:PageCopies'>" + kSelection + "</psf:ParameterDef>", "lacks a property"},
        {Feature("psk:JobHolePunch", kSelection + none) + Feature("psk:DocumentHolePunch", kSelection + none),
         "excludes it"}};
    const auto expect = [](const std::vector<std::string>& violations, const char* reason)
    { EXPECT_THAT(violations, testing::Contains(testing::HasSubstr(reason))); };
    for (const auto& [body, reason] : tickets)
    {
        expect(CheckTicket(body), reason);
    }
    for (const auto& [body, reason] : capabilities)
    {
        expect(CheckCapabilities(body), reason);
    }
    EXPECT_EQ(CheckTicket(scaling(none)), std::vector<std::string>());
    EXPECT_THAT(CheckPrintSchema("<psf:PrintTicket xmlns:psf='" + std::string(service::kFrameworkUri) + "'/>",
                                 PrintSchemaKind::Ticket),
                testing::ElementsAre(testing::HasSubstr("usual prefixes"), testing::HasSubstr("version")));
    EXPECT_EQ(CheckPrintSchema("<a>", PrintSchemaKind::Ticket).size(), 1u);
}

} // namespace
} // namespace tsypr::test
