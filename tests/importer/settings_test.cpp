#include "tests/importer/test_support.h"
#include "tools/ppdimport/finishing_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tsypr::ppdimport
{
namespace
{

using testing::HasSubstr;

TEST(ImporterSettings, BinsAndMediaTypes)
{
    const char* slots =
        "Upper/MP Tray|Auto/Automatic|LCT/Large Capacity Tray|Multi/Bypass|1/A tray with a name too long";
    const char* media = "Auto/Plain/Recycled|Plain1/Plain (60 g)|OHP/Transparency|Plain";
    const PrinterProfile profile = Import(MakeModel({MakeOption("InputSlot", slots), MakeOption("MediaType", media)}));
    // The bypass finds the manual feed's place taken.
    EXPECT_EQ(Entries(profile.bins),
              "4 psk:Manual, 7 psk:AutoSelect, 11 ns0000:LCT, 256 ns0000:Multi, 257 ns0000:Bin1, ");
    EXPECT_TRUE(profile.bins.back().name == "A tray with a name too" && profile.defaultBin == 4);
    EXPECT_EQ(Entries(profile.mediaTypes), "256 psk:AutoSelect, 1 psk:Plain, 2 psk:Transparency, 257 ns0000:Plain, ");
}

TEST(ImporterSettings, Resolutions)
{
    const char* choices = "1200x600dpi/Fine|600dpi|R3/300 dpi|600x600dpi/Again|Best/Best|0dpi";
    PpdModel model = MakeModel({MakeOption("Resolution", choices)});
    ExpectProfile(Import(model), R"({"deviceMode": {"resolution": {"x": 1200, "y": 600}},
        "resolutions": [{"x": 1200, "y": 600}, {"x": 600, "y": 600}, {"x": 300, "y": 300}]})");
    EXPECT_THAT(ReportOf(model), HasSubstr("Resolution=Best: not a resolution"));

    model = MakeModel();
    ExpectProfile(Import(model), R"({"resolutions": [{"x": 600, "y": 600}]})");
    model.attributes["DefaultResolution"] = "720dpi";
    ExpectProfile(Import(model), R"({"resolutions": [{"x": 720, "y": 720}]})");
    model = MakeModel({MakeOption("OutputMode", "Best|FastNormal|Fast|Odd")});
    ExpectProfile(Import(model), R"({"resolutions": null, "qualityLevels": ["draft", "low", "high"],
        "deviceMode": {"quality": "high", "resolution": null}})");
}

TEST(ImporterSettings, DuplexColorCollate)
{
    PpdModel model = MakeModel({MakeOption("Duplex", "DuplexTumble/Short Edge|DuplexNoTumble/Long Edge|None"),
                                MakeOption("ColorModel", "Gray/Black and White|CMYK/Color"),
                                MakeOption("Collate", "True/On|False/Off")});
    ExpectProfile(Import(model), R"({"duplex": ["simplex", "vertical", "horizontal"], "color": true, "collation": true,
        "deviceMode": {"duplex": "horizontal", "color": "monochrome", "collate": true}})");
    model.colorDevice = false;
    ExpectProfile(Import(model), R"({"color": false})");
    model = MakeModel();
    ExpectProfile(Import(model), R"({"duplex": ["simplex"], "collation": false, "deviceMode": {"color": "color"}})");
}

TEST(ImporterSettings, NupAndFinishingOnlyWhereOffered)
{
    PpdModel model = MakeModel({MakeOption("Nup", "None|4up/4 in 1|2up|Many|999up")});
    ExpectProfile(Import(model), R"({"nup": {"pagesPerSheet": [1, 2, 4], "directions": ["psk:RightBottom"]},
        "private": {"features": ["nup", "printAsImage", "popupPreDialog", "compressionZlib"]}})");
    model = MakeModel({MakeOption("KCPunch", "None|Left")});
    ExpectProfile(Import(model), R"({"nup": null, "private":
        {"features": ["printAsImage", "popupPreDialog", "compressionZlib", "finishing"]}})");
    EXPECT_THAT(ReportOf(model), HasSubstr("N-up: the PPD file has no such option"));

    const ImportResult composed = ImportPrinter(model, {"", {}, true});
    ExpectProfile(composed.profile, R"({"nup": {"pagesPerSheet": [1, 2, 4, 6, 9, 16]}})");
    EXPECT_EQ(composed.profile.nup->directions.size(), 8u);
    EXPECT_THAT(composed.report, HasSubstr("composed by the redirection client"));
}

TEST(ImporterSettings, NameLocksAndNumbers)
{
    PpdModel model = MakeModel();
    model.attributes = {{"LandscapeOrientation", "Plus90"}, {"cupsMaxCopies", "99"}};
    const PrinterProfile locked = ImportPrinter(model, {"", {"color", "duplex", "color"}, false}).profile;
    ExpectProfile(locked, R"({"name": "Maker Model", "landscapeRotation": 90, "maxCopies": 99,
        "vendorNamespace": "http://schemas.zelmora.example/tessary/printer/maker-model",
        "private": {"locked": ["duplex", "color"]}})");
    model.modelName = "MAKER Model"; // the maker is in it already
    model.attributes = {{"LandscapeOrientation", "Minus90"}};
    ExpectProfile(Import(model), R"({"name": "MAKER Model", "landscapeRotation": 270, "maxCopies": 999})");
    model.modelName = "Model 1, 2";
    ExpectProfile(Import(model), R"({"name": "Maker Model 1 2"})");
}

TEST(ImporterSettings, ReportsWhatHasNoField)
{
    PpdModel model = MakeModel({MakeOption("Fold", "None|Z"), MakeOption("Tray", "NotInstalled|Installed")});
    model.options[1].group = "Finishing";
    model.options[2].installable = true;
    model.constraints = {{"Fold", "Duplex"}, {"Duplex", "Fold"}, {"Fold", "Tray"}};
    const std::string report = ReportOf(model);
    EXPECT_THAT(report, HasSubstr("  Finishing: Fold, 2 choices\n"));
    EXPECT_THAT(report, HasSubstr("all taken as fitted: Tray\n"));
    EXPECT_THAT(report, HasSubstr("  Duplex with Fold: 2 rules\n"));
    EXPECT_THAT(report, HasSubstr("  Fold with Tray: 1 rule\n"));
}

// The keyword found for one choice, "?" behind an assumed place, or "" for none.
std::string Finishing(const FinishingTable& table, const char* name, const char* text)
{
    const FinishingRule* rule = FindFinishingRule(table, {name, text});
    return rule != nullptr ? std::string(rule->keyword) + (rule->assumed ? "?" : "") : "";
}

TEST(ImporterFinishing, FindsPlacesAndEdges)
{
    const FinishingTable& staple = StapleTable();
    EXPECT_EQ(Finishing(staple, "FalseM", "Off"), "psk:None");
    EXPECT_EQ(Finishing(staple, "UpperLeft", "Top left"), "psk:StapleTopLeft");
    EXPECT_EQ(Finishing(staple, "Upperleft", "Oben Links"), "psk:StapleTopLeft"); // by its name
    EXPECT_EQ(Finishing(staple, "S2", "2 staples left"), "psk:StapleDualLeft");
    EXPECT_EQ(Finishing(staple, "DualTop", "Dual Top"), "psk:StapleDualTop");
    EXPECT_EQ(Finishing(staple, "CenterW", "2 at center"), "psk:SaddleStitch");
    EXPECT_EQ(Finishing(staple, "Rear", "Rear"), "psk:StapleTopLeft?");
    EXPECT_EQ(Finishing(staple, "Staple6", "2 Staples"), "psk:StapleDualLeft?");
    EXPECT_EQ(Finishing(staple, "1PRU", "1 Staple (Port RU/Land RB)"), "");
    EXPECT_EQ(Finishing(staple, "PrinterS", "Use Printer Setting"), "");
    const FinishingTable& punch = PunchTable();
    EXPECT_EQ(Finishing(punch, "UpperEU4", "4 at top (Europe)"), "psk:TopEdge");
    EXPECT_EQ(Finishing(punch, "2Hole", "2 Holes (US)"), "psk:LeftEdge?");
    EXPECT_EQ(Finishing(punch, "3HoleF", "3 Holes Front"), "");
}

TEST(ImporterFinishing, ListsEachKeywordOnceWithNoneFirst)
{
    const PpdModel model = MakeModel({MakeOption("RIPunch", "Left2/2 at left|Left3/3 at left|None/Off|Odd/Spiral"),
                                      MakeOption("StapleJob", "TopLeft/Top Left|TopRight/Top Right")});
    // Not stapling is possible although the file has no choice for it.
    ExpectProfile(Import(model), R"({"punch": ["psk:None", "psk:LeftEdge"], "private": {"punch": "psk:LeftEdge"},
        "staple": ["psk:None", "psk:StapleTopLeft", "psk:StapleTopRight"]})");
    EXPECT_THAT(ReportOf(model), HasSubstr("RIPunch=Left3 (3 at left): psk:LeftEdge stands for Left2"));
    EXPECT_THAT(ReportOf(model), HasSubstr("RIPunch=Odd (Spiral): no keyword"));
}

TEST(ImporterFinishing, FindsTheOption)
{
    PpdOption byText = MakeOption("XYFinish", "None/Off|L/Left");
    byText.text = "Hole Punch";
    PpdOption fitted = MakeOption("Staple", "NotInstalled|UpperLeft");
    fitted.installable = true; // tells the hardware, offers nothing
    ExpectProfile(Import(MakeModel({byText, fitted})), R"({"punch": ["psk:None", "psk:LeftEdge"], "staple": null})");
    const PpdOption useless = MakeOption("StapleJob", "None/Off|PrinterS/Printer");
    ExpectProfile(Import(MakeModel({useless})), R"({"staple": null})");
}

} // namespace
} // namespace tsypr::ppdimport
