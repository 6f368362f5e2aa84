#include "tests/importer/test_support.h"
#include "tools/ppdimport/ppd_reader.h"

#include <gmock/gmock.h>

namespace tsypr::ppdimport
{
namespace
{

using testing::HasSubstr;

// Each case is the second paper of its own printer, behind A4.
TEST(ImporterPapers, FindsStandardPapers)
{
    const struct
    {
        const char* name;
        double width; // points
        double length;
        const char* expected; // id, keyword, tenths of a millimetre
    } cases[] = {
        {"Letter", 612, 792, "1 psk:NorthAmericaLetter 2159x2794"},
        {"B5", 516, 729, "13 psk:JISB5 1820x2570"},
        {"Ledger", 1224, 792, "4 ns0000:Ledger 4318x2794"},
        {"Ledger", 792, 1224, "3 psk:NorthAmericaTabloid 2794x4318"}, // some makers turn it
        // Known by size alone, within a millimetre.
        {"Odd", 614.8, 792, "1 psk:NorthAmericaLetter 2159x2794"},
        {"Odd", 615, 792, "257 ns0000:Odd 2170x2794"},
        // The print schema knows it, Windows does not.
        {"SRA3", 907, 1276, "257 psk:ISOSRA3 3200x4500"},
        // A known name with another size is another paper.
        {"B5", 499, 709, "257 ns0000:B5 1760x2501"},
        // Forms of A4.
        {"A4.FullBleed", 595, 841, "257 ns0000:A4FullBleed 2100x2970"},
        {"A4.Transverse", 595, 842, "55 ns0000:A4Transverse 2100x2970"},
        {"A4-R", 842, 595, "77 psk:ISOA4Rotated 2970x2100"},
        {"A4Small", 595, 842, "10 ns0000:A4Small 2100x2970"},
        // The name of the first paper is taken.
        {"MyA4", 595, 842, "257 ns0000:MyA4 2100x2970"},
    };
    for (const auto& c : cases)
    {
        PpdModel model = MakeModel();
        AddPageSize(model, c.name, c.width, c.length);
        const PrinterProfile profile = Import(model);
        ASSERT_EQ(profile.papers.size(), 2u) << c.name;
        const auto& [id, name, keyword, width, height] = profile.papers[1];
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        EXPECT_EQ(std::to_string(id) + " " + keyword + " " + size, c.expected);
    }
}

TEST(ImporterPapers, NamedPaperGoesBeforeOneOfItsSize)
{
    PpdModel model = MakeModel();
    AddPageSize(model, "Plain11", 612, 792); // comes first, but "Letter" has the name
    AddPageSize(model, "Letter", 612, 792);
    AddPageSize(model, "plain.11", 300, 300); // the same XML name
    EXPECT_EQ(Entries(Import(model).papers),
              "9 psk:ISOA4, 257 ns0000:Plain11, 1 psk:NorthAmericaLetter, 258 ns0000:Plain11_2, ");
}

TEST(ImporterPapers, LeavesOutUnusableSizes)
{
    PpdModel model = MakeModel();
    AddPageSize(model, "Flat", 0, 792);
    AddPageSize(model, "Roll", 612, 100000);
    model.options.front().choices.push_back({"Nameless", "No dimension"});
    EXPECT_EQ(Import(model).papers.size(), 1u);
    EXPECT_THAT(ReportOf(model), testing::ContainsRegex("PageSize=Flat(.|\n)*PageSize=Roll(.|\n)*PageSize=Nameless"));
    model.sizes.clear();
    EXPECT_THROW(Import(model), InputError);
    model.options.clear();
    EXPECT_THROW(Import(model), InputError);
}

TEST(ImporterPapers, UserDefinedSizes)
{
    PpdModel model = MakeModel();
    ExpectProfile(Import(model), R"({"customPaper": null})");
    model.customSize = PpdCustomSize{{255, 419}, {908, 100000}};
    const PrinterProfile profile = Import(model);
    ExpectProfile(profile, R"({"customPaper":
        {"minWidth": 900, "minHeight": 1478, "maxWidth": 3203, "maxHeight": 32767}})");
    EXPECT_TRUE(profile.papers.back().id == 256 && profile.papers.back().height >= 1478);
    model.customSize = PpdCustomSize{{908, 100}, {255, 200}};
    ExpectProfile(Import(model), R"({"customPaper": null})");
}

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
    const struct
    {
        std::vector<PpdOption> options;
        const char* expected;
        const char* report = "";
    } cases[] = {
        {{},
         R"({"resolutions": [{"x": 600, "y": 600}], "duplex": ["simplex"], "collation": false, "nup": null,
            "deviceMode": {"color": "color"}})",
         "N-up: the PPD file has no such option"},
        {{MakeOption("Resolution", "1200x600dpi/Fine|600dpi|R3/300 dpi|600x600dpi/Again|Best/Best|0dpi")},
         R"({"deviceMode": {"resolution": {"x": 1200, "y": 600}},
            "resolutions": [{"x": 1200, "y": 600}, {"x": 600, "y": 600}, {"x": 300, "y": 300}]})",
         "Resolution=Best: not a resolution"},
        {{MakeOption("OutputMode", "Best|FastNormal|Fast|Odd")},
         R"({"resolutions": null, "qualityLevels": ["draft", "low", "high"],
            "deviceMode": {"quality": "high", "resolution": null}})"},
        {{MakeOption("Duplex", "DuplexTumble/Short Edge|DuplexNoTumble/Long Edge|None"),
          MakeOption("ColorModel", "Gray/Black and White|CMYK/Color"),
          MakeOption("Collate", "True/On|False/Off")},
         R"({"duplex": ["simplex", "vertical", "horizontal"], "color": true, "collation": true,
            "deviceMode": {"duplex": "horizontal", "color": "monochrome", "collate": true}})"},
        {{MakeOption("Nup", "None|4up/4 in 1|2up|Many|999up")},
         R"({"nup": {"pagesPerSheet": [1, 2, 4], "directions": ["psk:RightBottom"]},
            "private": {"features": ["nup", "printAsImage", "popupPreDialog", "compressionZlib"]}})"},
        {{MakeOption("KCPunch", "None|Left")},
         R"({"private": {"features": ["printAsImage", "popupPreDialog", "compressionZlib", "finishing"]}})"},
        // Each keyword once, and not stapling is possible although the file has no choice for it.
        {{MakeOption("RIPunch", "Left2/2 at left|Left3/3 at left|None/Off"),
          MakeOption("StapleJob", "TopLeft/Top Left|TopRight/Top Right")},
         R"({"punch": ["psk:None", "psk:LeftEdge"], "private": {"punch": "psk:LeftEdge"},
            "staple": ["psk:None", "psk:StapleTopLeft", "psk:StapleTopRight"]})",
         "RIPunch=Left3 (3 at left): psk:LeftEdge stands for Left2"},
        {{MakeOption("StapleJob",
                     "FalseM/Off|Upperleft/Oben Links|S2/2 staples left|CenterW/2 at center|1PRU/1 Staple (Port RU)")},
         R"({"staple": ["psk:None", "psk:StapleTopLeft", "psk:StapleDualLeft", "psk:SaddleStitch"]})"},
        {{MakeOption("StapleJob", "None|Rear"),
          MakeOption("RIPunch", "UpperEU4/4 at top (Europe)|2Hole/2 Holes (US)|Odd/Spiral")},
         R"({"staple": ["psk:None", "psk:StapleTopLeft"], "punch": ["psk:None", "psk:TopEdge", "psk:LeftEdge"]})",
         "RIPunch=Odd (Spiral): no keyword"},
        {{MakeOption("StapleJob", "None/Off|PrinterS/Printer")}, R"({"staple": null})"},
    };
    for (const auto& [options, expected, report] : cases)
    {
        SCOPED_TRACE(expected);
        const PpdModel model = MakeModel(options);
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
