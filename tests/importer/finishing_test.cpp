#include "tests/importer/test_support.h"
#include "tools/ppdimport/finishing_table.h"

#include <gtest/gtest.h>

namespace tsypr::ppdimport
{
namespace
{

struct ChoiceCase
{
    const char* name;
    const char* text;
    const char* keyword; // empty: none
    bool assumed;
};

void CheckChoices(const FinishingTable& table, std::initializer_list<ChoiceCase> cases)
{
    for (const ChoiceCase& c : cases)
    {
        SCOPED_TRACE(std::string(c.name) + "/" + c.text);
        const FinishingRule* rule = FindFinishingRule(table, {c.name, c.text});
        EXPECT_EQ(rule != nullptr ? rule->keyword : "", c.keyword);
        EXPECT_EQ(rule != nullptr && rule->assumed, c.assumed);
    }
}

TEST(ImporterFinishing, StaplePlaces)
{
    CheckChoices(StapleTable(),
                 {{"None", "Off", "psk:None", false},
                  {"FalseM", "Off", "psk:None", false},
                  {"UpperLeft", "Top left", "psk:StapleTopLeft", false},
                  {"Upperleft", "Oben Links", "psk:StapleTopLeft", false}, // the name tells what the text does not
                  {"LowerRight", "Bottom right", "psk:StapleBottomRight", false},
                  {"LeftW", "2 at left", "psk:StapleDualLeft", false},
                  {"S2", "2 staples left", "psk:StapleDualLeft", false},
                  {"DualTop", "Dual Top", "psk:StapleDualTop", false},
                  {"LowerW", "2 at bottom", "psk:StapleDualBottom", false},
                  {"CenterW", "2 at center", "psk:SaddleStitch", false},
                  {"Staple7", "2 Staples(Pamphlet)", "psk:SaddleStitch", false},
                  {"Rear", "Rear", "psk:StapleTopLeft", true},
                  {"Front", "Front", "psk:StapleBottomLeft", true},
                  {"Staple6", "2 Staples", "psk:StapleDualLeft", true},
                  {"StaplessUpperLeft", "Top left (stapleless)", "", false},
                  {"1PRU", "1 Staple (Port RU/Land RB)", "", false},
                  {"PrinterS", "Use Printer Setting", "", false},
                  {"Foo", "Bar", "", false}});
}

TEST(ImporterFinishing, PunchEdges)
{
    CheckChoices(PunchTable(),
                 {{"None", "Off", "psk:None", false},
                  {"2HoleLeft", "2Hole left", "psk:LeftEdge", false},
                  {"Right3", "3 at right", "psk:RightEdge", false},
                  {"UpperEU4", "4 at top (Europe)", "psk:TopEdge", false},
                  {"Lower2", "2 at bottom", "psk:BottomEdge", false},
                  {"2Hole", "2 Holes (US)", "psk:LeftEdge", true},
                  {"3HoleF", "3 Holes Front", "", false},
                  {"PrinterS", "Printer Setting", "", false}});
}

TEST(ImporterFinishing, ListsEachKeywordOnceWithNoneFirst)
{
    PpdModel model = MakeModel({MakeOption("RIPunch", {"Left2/2 at left", "Left3/3 at left", "None/Off", "Odd/Spiral"}),
                                MakeOption("StapleJob", {"TopLeft/Top Left", "TopRight/Top Right"})});
    const PrinterProfile profile = Import(model);
    EXPECT_EQ(profile.punch.keywords, (std::vector<std::string>{"psk:None", "psk:LeftEdge"}));
    EXPECT_EQ(profile.punch.defaultKeyword, "psk:LeftEdge");
    // Not stapling is possible although the file has no choice for it.
    EXPECT_EQ(profile.staple.keywords,
              (std::vector<std::string>{"psk:None", "psk:StapleTopLeft", "psk:StapleTopRight"}));
    const std::string report = ImportReportOf(model);
    EXPECT_NE(report.find("RIPunch=Left3 (3 at left): psk:LeftEdge stands for Left2"), std::string::npos);
    EXPECT_NE(report.find("RIPunch=Odd (Spiral): no keyword"), std::string::npos);
}

TEST(ImporterFinishing, FindsTheOption)
{
    PpdOption byText = MakeOption("XYFinish", {"None/Off", "L/Left"});
    byText.text = "Hole Punch";
    PpdOption fitted = MakeOption("Staple", {"NotInstalled", "UpperLeft"});
    fitted.installable = true;
    const PrinterProfile profile = Import(MakeModel({byText, fitted}));
    EXPECT_EQ(profile.punch.keywords, (std::vector<std::string>{"psk:None", "psk:LeftEdge"}));
    EXPECT_TRUE(profile.staple.keywords.empty()); // tells the hardware, offers nothing

    const PrinterProfile useless = Import(MakeModel({MakeOption("StapleJob", {"None/Off", "PrinterS/Printer"})}));
    EXPECT_TRUE(useless.staple.keywords.empty());
}

} // namespace
} // namespace tsypr::ppdimport
