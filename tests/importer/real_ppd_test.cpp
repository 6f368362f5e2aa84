#include "tests/importer/test_support.h"
#include "tools/ppdimport/ppd_reader.h"
#include "tools/ppdimport/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace tsypr::ppdimport
{
namespace
{

using nlohmann::json;
using testing::ElementsAre;
using testing::IsSupersetOf;

// The finishing keywords that the print schema names, which the property pages know.
const std::set<std::string> kStaple = {"psk:None",
                                       "psk:StapleTopLeft",
                                       "psk:StapleTopRight",
                                       "psk:StapleDualTop",
                                       "psk:StapleDualLeft",
                                       "psk:StapleDualRight",
                                       "psk:StapleBottomLeft",
                                       "psk:StapleBottomRight",
                                       "psk:StapleDualBottom",
                                       "psk:SaddleStitch"};
const std::set<std::string> kPunch = {"psk:None", "psk:BottomEdge", "psk:LeftEdge", "psk:RightEdge", "psk:TopEdge"};

json ImportFile(const std::string& file, const ImportOptions& options = {})
{
    return json::parse(ToJson(ImportPrinter(ReadPpd(TESSARY_TEST_PPDS "/" + file), options).profile));
}

void ExpectUnique(const json& entries, const char* field)
{
    std::set<json> seen;
    for (const json& entry : entries)
    {
        EXPECT_TRUE(seen.insert(entry.at(field)).second) << field << " twice: " << entry;
    }
}

void ExpectItems(const json& entries, std::size_t maxName)
{
    ExpectUnique(entries, "id");
    ExpectUnique(entries, "keyword");
    for (const json& entry : entries)
    {
        const std::string name = entry.at("name");
        const std::string keyword = entry.at("keyword");
        EXPECT_GE(entry.at("id"), 1);
        EXPECT_LE(entry.at("id"), 65535);
        EXPECT_GE(TextLength(name), 1u) << entry;
        EXPECT_LE(TextLength(name), maxName) << entry;
        EXPECT_THAT(keyword, testing::MatchesRegex("(psk|ns0000):[A-Za-z][A-Za-z0-9_]*"));
    }
}

bool HasId(const json& entries, const json& id)
{
    return std::any_of(entries.begin(), entries.end(), [&](const json& entry) { return entry.at("id") == id; });
}

class ImporterRealFile : public testing::TestWithParam<const char*>
{
};

TEST_P(ImporterRealFile, GivesConsistentProfile)
{
    const json profile = ImportFile(GetParam());
    EXPECT_FALSE(profile.at("name").get<std::string>().empty());
    ASSERT_FALSE(profile.at("papers").empty());
    ExpectItems(profile.at("papers"), 63);
    ExpectItems(profile.at("bins"), 23);
    ExpectItems(profile.at("mediaTypes"), 63);
    for (const json& paper : profile.at("papers"))
    {
        EXPECT_GT(paper.at("width"), 500) << paper;
        EXPECT_GT(paper.at("height"), 500) << paper;
        EXPECT_NE(paper.at("id"), 256) << paper; // the user-defined size
    }
    EXPECT_TRUE(std::any_of(profile.at("papers").begin(),
                            profile.at("papers").end(),
                            [](const json& paper)
                            {
                                return paper.at("id") == 9 && paper.at("keyword") == "psk:ISOA4" &&
                                       paper.at("width") == 2100 && paper.at("height") == 2970;
                            }));
    const json& mode = profile.at("deviceMode");
    EXPECT_TRUE(HasId(profile.at("papers"), mode.at("paper")));
    EXPECT_TRUE(!mode.contains("source") || HasId(profile.at("bins"), mode.at("source")));
    EXPECT_TRUE(!mode.contains("mediaType") || HasId(profile.at("mediaTypes"), mode.at("mediaType")));
    EXPECT_THAT(profile.at("duplex"), testing::Contains(mode.at("duplex")));
    EXPECT_TRUE(profile.contains("resolutions") || profile.contains("qualityLevels"));
    for (const std::string keyword : profile.value("staple", json::array()))
    {
        EXPECT_TRUE(kStaple.contains(keyword)) << keyword;
    }
    for (const std::string keyword : profile.value("punch", json::array()))
    {
        EXPECT_TRUE(kPunch.contains(keyword)) << keyword;
    }
}

INSTANTIATE_TEST_SUITE_P(Makers,
                         ImporterRealFile,
                         testing::Values("Ricoh-MP_C4503_PS.ppd",
                                         "Kyocera_CS_250ci.ppd",
                                         "hp_officejet_9100_series.ppd",
                                         "Sharp-MX-3110N-ps.ppd",
                                         "Lexmark_X950_Series.ppd",
                                         "KOC451UX.ppd",
                                         "Samsung_CLX-92x1_93x1_Series.ppd",
                                         "cnadv4045x1g.ppd"));

// The printer that the product is shown with.
TEST(ImporterExamplePrinter, HasItsCapabilities)
{
    const json profile = ImportFile("Ricoh-MP_C4503_PS.ppd", {"", {"duplex"}, true});
    EXPECT_EQ(profile.at("name"), "Ricoh MP C4503");
    EXPECT_EQ(profile.at("papers").size(), 58u);
    EXPECT_EQ(profile.at("bins").size(), 7u);
    EXPECT_EQ(profile.at("mediaTypes").size(), 23u);
    EXPECT_THAT(profile.at("staple"),
                ElementsAre("psk:None",
                            "psk:StapleTopLeft",
                            "psk:StapleTopRight",
                            "psk:StapleDualLeft",
                            "psk:StapleDualRight",
                            "psk:StapleDualTop",
                            "psk:SaddleStitch"));
    EXPECT_THAT(profile.at("punch"), ElementsAre("psk:None", "psk:LeftEdge", "psk:RightEdge", "psk:TopEdge"));
    EXPECT_EQ(profile.at("resolutions").dump(), R"([{"x":600,"y":600},{"x":1200,"y":1200}])");
    EXPECT_THAT(profile.at("duplex"), ElementsAre("simplex", "vertical", "horizontal"));
    EXPECT_EQ(profile.at("pagesPerMinute"), 45);
    EXPECT_EQ(profile.at("landscapeRotation"), 270);
    EXPECT_EQ(profile.at("color"), true);
    EXPECT_EQ(profile.at("customPaper").at("maxHeight"), 6001);
    EXPECT_EQ(profile.at("private").at("locked").dump(), R"(["duplex"])");
    EXPECT_THAT(profile.at("private").at("features"), IsSupersetOf({"nup", "finishing"}));
    EXPECT_EQ(profile.at("deviceMode").at("formName"), "Letter");
}

} // namespace
} // namespace tsypr::ppdimport
