#include "tests/importer/test_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tsypr::ppdimport
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

TEST(ImporterSettings, BinsAndMediaTypes)
{
    const PrinterProfile profile = Import(MakeModel({
        MakeOption("InputSlot",
                   {"Upper/MP Tray",
                    "Lower/Tray 2",
                    "Auto/Automatic",
                    "LCT/Large Capacity Tray",
                    "MultiTray/Bypass Tray",
                    "1Tray/A tray with a name longer than the field"}),
        MakeOption("MediaType", {"Auto/Plain/Recycled", "Plain1/Plain (60 g)", "OHP/Transparency", "Thick", "Plain"}),
    }));
    std::vector<std::string> bins;
    for (const ProfileItem& bin : profile.bins)
    {
        bins.push_back(std::to_string(bin.id) + " " + bin.keyword + " " + bin.name);
    }
    EXPECT_THAT(bins,
                ElementsAre("4 psk:Manual MP Tray",
                            "2 ns0000:Lower Tray 2",
                            "7 psk:AutoSelect Automatic",
                            "11 ns0000:LCT Large Capacity Tray",
                            "256 ns0000:MultiTray Bypass Tray", // the manual feed's place is taken
                            "257 ns0000:Bin1Tray A tray with a name long"));
    EXPECT_EQ(profile.defaultBin, 4);
    std::vector<std::string> media;
    for (const ProfileItem& item : profile.mediaTypes)
    {
        media.push_back(std::to_string(item.id) + " " + item.keyword);
    }
    EXPECT_THAT(
        media,
        ElementsAre("256 psk:AutoSelect", "1 psk:Plain", "2 psk:Transparency", "257 ns0000:Thick", "258 ns0000:Plain"));
}

TEST(ImporterSettings, Resolutions)
{
    PpdModel model = MakeModel({MakeOption(
        "Resolution", {"1200x600dpi/Fine", "600dpi", "R3/300 dpi", "600x600dpi/Again", "Best/Best", "0dpi"})});
    const PrinterProfile profile = Import(model);
    EXPECT_THAT(profile.resolutions,
                ElementsAre(ProfileResolution{1200, 600}, ProfileResolution{600, 600}, ProfileResolution{300, 300}));
    EXPECT_EQ(profile.defaultResolution, (ProfileResolution{1200, 600}));
    EXPECT_THAT(ImportReportOf(model), HasSubstr("Resolution=Best: not a resolution"));

    model = MakeModel();
    EXPECT_THAT(Import(model).resolutions, ElementsAre(ProfileResolution{600, 600}));
    model.attributes["DefaultResolution"] = "720dpi";
    EXPECT_THAT(Import(model).resolutions, ElementsAre(ProfileResolution{720, 720}));

    const PrinterProfile levels = Import(MakeModel({MakeOption("OutputMode", {"Best", "FastNormal", "Fast", "Odd"})}));
    EXPECT_TRUE(levels.resolutions.empty());
    EXPECT_THAT(levels.qualityLevels, ElementsAre("draft", "low", "high"));
    const nlohmann::json json = nlohmann::json::parse(ToJson(levels));
    EXPECT_FALSE(json.contains("resolutions"));
    EXPECT_EQ(json.at("deviceMode").at("quality"), "high");
    EXPECT_FALSE(json.at("deviceMode").contains("resolution"));
}

TEST(ImporterSettings, DuplexColorCollate)
{
    PpdModel model = MakeModel({MakeOption("Duplex", {"DuplexTumble/Short Edge", "DuplexNoTumble/Long Edge", "None"}),
                                MakeOption("ColorModel", {"Gray/Black and White", "CMYK/Color"}),
                                MakeOption("Collate", {"True/On", "False/Off"})});
    PrinterProfile profile = Import(model);
    EXPECT_THAT(profile.duplex, ElementsAre("simplex", "vertical", "horizontal"));
    EXPECT_EQ(profile.defaultDuplex, "horizontal");
    EXPECT_TRUE(profile.color);
    EXPECT_FALSE(profile.defaultColor);
    EXPECT_TRUE(profile.collation);
    EXPECT_TRUE(profile.defaultCollate);

    model.colorDevice = false;
    EXPECT_FALSE(Import(model).color);

    profile = Import(MakeModel());
    EXPECT_THAT(profile.duplex, ElementsAre("simplex"));
    EXPECT_TRUE(profile.defaultColor);
    EXPECT_FALSE(profile.collation);
}

TEST(ImporterSettings, NupOnlyWhereOffered)
{
    const PpdModel plain = MakeModel();
    EXPECT_FALSE(Import(plain).nup.has_value());
    EXPECT_THAT(ImportReportOf(plain), HasSubstr("N-up: the PPD file has no such option"));

    const PrinterProfile offered =
        Import(MakeModel({MakeOption("Nup", {"None", "4up/4 in 1", "2up", "Many", "999up"})}));
    ASSERT_TRUE(offered.nup.has_value());
    EXPECT_THAT(offered.nup->pagesPerSheet, ElementsAre(1, 2, 4));
    EXPECT_THAT(offered.nup->directions, ElementsAre("psk:RightBottom"));

    const ImportResult composed = ImportPrinter(plain, {"", {}, true});
    ASSERT_TRUE(composed.profile.nup.has_value());
    EXPECT_THAT(composed.profile.nup->pagesPerSheet, ElementsAre(1, 2, 4, 6, 9, 16));
    EXPECT_EQ(composed.profile.nup->directions.size(), 8u);
    EXPECT_THAT(composed.report, HasSubstr("composed by the redirection client"));
}

TEST(ImporterSettings, FeaturesFollowTheCapabilities)
{
    const auto features = [](const PpdModel& model, const ImportOptions& options)
    { return nlohmann::json::parse(ToJson(ImportPrinter(model, options).profile))["private"]["features"].dump(); };
    EXPECT_EQ(features(MakeModel(), {}), R"(["printAsImage","popupPreDialog","compressionZlib"])");
    EXPECT_EQ(features(MakeModel({MakeOption("KCPunch", {"None", "Left"})}), {"", {}, true}),
              R"(["nup","printAsImage","popupPreDialog","compressionZlib","finishing"])");
}

TEST(ImporterSettings, NameLocksAndNumbers)
{
    PpdModel model = MakeModel();
    model.attributes = {{"LandscapeOrientation", "Plus90"}, {"cupsMaxCopies", "99"}};
    PrinterProfile profile = ImportPrinter(model, {"", {"color", "duplex", "color"}, false}).profile;
    EXPECT_EQ(profile.name, "Maker Model");
    EXPECT_EQ(profile.vendorNamespace, "http://schemas.zelmora.example/tessary/printer/maker-model");
    EXPECT_THAT(profile.locked, ElementsAre("duplex", "color"));
    EXPECT_EQ(profile.landscapeRotation, 90);
    EXPECT_EQ(profile.maxCopies, 99);

    model.modelName = "MAKER Model";
    model.attributes = {{"LandscapeOrientation", "Minus90"}};
    profile = Import(model);
    EXPECT_EQ(profile.name, "MAKER Model"); // the maker is in it already
    EXPECT_EQ(profile.landscapeRotation, 270);
    EXPECT_EQ(profile.maxCopies, 999);

    model.modelName = "Model 1, 2";
    EXPECT_EQ(Import(model).name, "Maker Model 1 2");
}

TEST(ImporterSettings, ReportsWhatHasNoField)
{
    PpdModel model = MakeModel({MakeOption("Fold", {"None", "Z"}), MakeOption("Tray", {"NotInstalled", "Installed"})});
    model.options[1].group = "Finishing";
    model.options[2].installable = true;
    model.constraints = {{"Fold", "Duplex"}, {"Duplex", "Fold"}, {"Fold", "Tray"}};
    const std::string report = ImportReportOf(model);
    EXPECT_THAT(report, HasSubstr("  Finishing: Fold, 2 choices\n"));
    EXPECT_THAT(report, HasSubstr("all taken as fitted: Tray\n"));
    EXPECT_THAT(report, HasSubstr("  Duplex with Fold: 2 rules\n"));
    EXPECT_THAT(report, HasSubstr("  Fold with Tray: 1 rule\n"));
}

} // namespace
} // namespace tsypr::ppdimport
