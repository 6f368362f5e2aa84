#include "tests/importer/test_support.h"

#include <gmock/gmock.h>

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

TEST(ImporterSettings, OptionsBecomeFields)
{
    using Options = std::vector<std::pair<const char*, const char*>>;
    const struct
    {
        Options options;
        const char* expected;
        const char* report = "";
    } cases[] = {
        {{},
         R"({"resolutions": [{"x": 600, "y": 600}], "duplex": ["simplex"], "collation": false, "nup": null,
            "deviceMode": {"color": "color"}})",
         "N-up: the PPD file has no such option"},
        {{{"Resolution", "1200x600dpi/Fine|600dpi|R3/300 dpi|600x600dpi/Again|Best/Best|0dpi"}},
         R"({"deviceMode": {"resolution": {"x": 1200, "y": 600}},
            "resolutions": [{"x": 1200, "y": 600}, {"x": 600, "y": 600}, {"x": 300, "y": 300}]})",
         "Resolution=Best: not a resolution"},
        {{{"OutputMode", "Best|FastNormal|Fast|Odd"}},
         R"({"resolutions": null, "qualityLevels": ["draft", "low", "high"],
            "deviceMode": {"quality": "high", "resolution": null}})"},
        {{{"Duplex", "DuplexTumble/Short Edge|DuplexNoTumble/Long Edge|None"},
          {"ColorModel", "Gray/Black and White|CMYK/Color"},
          {"Collate", "True/On|False/Off"}},
         R"({"duplex": ["simplex", "vertical", "horizontal"], "color": true, "collation": true,
            "deviceMode": {"duplex": "horizontal", "color": "monochrome", "collate": true}})"},
        {{{"Nup", "None|4up/4 in 1|2up|Many|999up"}},
         R"({"nup": {"pagesPerSheet": [1, 2, 4], "directions": ["psk:RightBottom"]},
            "private": {"features": ["nup", "printAsImage", "popupPreDialog", "compressionZlib"]}})"},
        {{{"KCPunch", "None|Left"}},
         R"({"private": {"features": ["printAsImage", "popupPreDialog", "compressionZlib", "finishing"]}})"},
        // Each keyword once, and not stapling is possible although the file has no choice for it.
        {{{"RIPunch", "Left2/2 at left|Left3/3 at left|None/Off"},
          {"StapleJob", "TopLeft/Top Left|TopRight/Top Right"}},
         R"({"punch": ["psk:None", "psk:LeftEdge"], "private": {"punch": "psk:LeftEdge"},
            "staple": ["psk:None", "psk:StapleTopLeft", "psk:StapleTopRight"]})",
         "RIPunch=Left3 (3 at left): psk:LeftEdge stands for Left2"},
        {{{"StapleJob",
           "FalseM/Off|Upperleft/Oben Links|S2/2 staples left|CenterW/2 at center|1PRU/1 Staple (Port RU)"}},
         R"({"staple": ["psk:None", "psk:StapleTopLeft", "psk:StapleDualLeft", "psk:SaddleStitch"]})"},
        {{{"StapleJob", "None|Rear"}, {"RIPunch", "UpperEU4/4 at top (Europe)|2Hole/2 Holes (US)|Odd/Spiral"}},
         R"({"staple": ["psk:None", "psk:StapleTopLeft"], "punch": ["psk:None", "psk:LeftEdge", "psk:TopEdge"]})",
         "RIPunch=Odd (Spiral): no keyword"},
        {{{"StapleJob", "None/Off|PrinterS/Printer"}}, R"({"staple": null})"},
    };
    for (const auto& [options, expected, report] : cases)
    {
        SCOPED_TRACE(expected);
        PpdModel model = MakeModel();
        for (const auto& [keyword, choices] : options)
        {
            model.options.push_back(MakeOption(keyword, choices));
        }
        ExpectProfile(Import(model), expected);
        EXPECT_THAT(ReportOf(model), HasSubstr(report));
    }
    const ImportResult composed = ImportPrinter(MakeModel(), {"", {}, true});
    ExpectProfile(composed.profile, R"({"nup": {"pagesPerSheet": [1, 2, 4, 6, 9, 16]}})");
    EXPECT_EQ(composed.profile.nup->directions.size(), 8u);
    EXPECT_THAT(composed.report, HasSubstr("composed by the redirection client"));
}

TEST(ImporterSettings, NameLocksAndNumbers)
{
    PpdModel model = MakeModel({MakeOption("ColorModel", "Gray/Black and White|CMYK/Color")});
    model.colorDevice = false;
    model.attributes = {{"LandscapeOrientation", "Plus90"}, {"cupsMaxCopies", "99"}, {"DefaultResolution", "720dpi"}};
    const PrinterProfile locked = ImportPrinter(model, {"", {"color", "duplex", "color"}, false}).profile;
    ExpectProfile(locked, R"({"name": "Maker Model", "landscapeRotation": 90, "maxCopies": 99, "color": false,
        "resolutions": [{"x": 720, "y": 720}], "private": {"locked": ["duplex", "color"]},
        "vendorNamespace": "http://schemas.zelmora.example/tessary/printer/maker-model"})");
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
    for (const char* const expected : {"  Finishing: Fold, 2 choices\n",
                                       "all taken as fitted: Tray\n",
                                       "  Duplex with Fold: 2 rules\n",
                                       "  Fold with Tray: 1 rule\n"})
    {
        EXPECT_THAT(ReportOf(model), HasSubstr(expected));
    }
}

TEST(ImporterFinishing, FindsTheOption)
{
    PpdOption byText = MakeOption("XYFinish", "None/Off|L/Left");
    byText.text = "Hole Punch";
    PpdOption fitted = MakeOption("Staple", "NotInstalled|UpperLeft");
    fitted.installable = true; // tells the hardware, offers nothing
    ExpectProfile(Import(MakeModel({byText, fitted})), R"({"punch": ["psk:None", "psk:LeftEdge"], "staple": null})");
}

} // namespace
} // namespace tsypr::ppdimport
