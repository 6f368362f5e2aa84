#include "service/profile_parser.h"
#include "tests/importer/test_support.h"
#include "tools/ppdimport/ppd_reader.h"

#include <algorithm>
#include <set>

namespace tsypr::ppdimport
{
namespace
{

// The service, which reads the profile, checks everything it says; the keywords must be distinct besides.
void ExpectGoodProfile(const std::string& path)
{
    const PrinterProfile imported = Import(ReadPpd(path));
    const auto expectDistinct = [](const auto& items)
    {
        std::set<std::string> keywords;
        std::ranges::for_each(items, [&](const auto& item) { EXPECT_TRUE(keywords.insert(item.keyword).second); });
    };
    expectDistinct(imported.papers);
    expectDistinct(imported.bins);
    expectDistinct(imported.mediaTypes);
    std::vector<service::ProfileProblem> problems;
    const auto profile = service::ParseProfile(ToJson(imported), path, problems);
    ASSERT_TRUE(profile.has_value()) << problems.front().field << ": " << problems.front().reason;
    ASSERT_NE(profile->FindPaper(9), nullptr);
    EXPECT_TRUE(profile->FindPaper(9)->keyword == "psk:ISOA4" && profile->FindPaper(9)->height == 2970);
    EXPECT_EQ(profile->FindPaper(256) != nullptr, profile->customPaper.has_value());
}

TEST(ImporterRealFiles, GiveProfilesThatTheServiceTakes)
{
    int count = 0;
    for (const auto& file : std::filesystem::directory_iterator(TESSARY_TEST_PPDS))
    {
        SCOPED_TRACE(file.path());
        ExpectGoodProfile(file.path().string());
        ++count;
    }
    EXPECT_GE(count, 8);
}

// The printer that the product is shown with.
TEST(ImporterExamplePrinter, HasItsCapabilities)
{
    const PpdModel model = ReadPpd(TESSARY_TEST_PPDS "/Ricoh-MP_C4503_PS.ppd");
    const PrinterProfile profile = ImportPrinter(model, {"", {"duplex"}, true}).profile;
    ExpectProfile(profile, R"({"name": "Ricoh MP C4503",
        "staple": ["psk:None", "psk:StapleTopLeft", "psk:StapleTopRight", "psk:StapleDualLeft", "psk:StapleDualRight",
            "psk:StapleDualTop", "psk:SaddleStitch"],
        "punch": ["psk:None", "psk:LeftEdge", "psk:RightEdge", "psk:TopEdge"],
        "resolutions": [{"x": 600, "y": 600}, {"x": 1200, "y": 1200}], "duplex": ["simplex", "vertical", "horizontal"],
        "pagesPerMinute": 45, "landscapeRotation": 270, "color": true, "customPaper": {"maxHeight": 6001},
        "private": {"locked": ["duplex"],
            "features": ["nup", "printAsImage", "popupPreDialog", "compressionZlib", "finishing"]},
        "deviceMode": {"formName": "Letter"}})");
    EXPECT_TRUE(profile.papers.size() == 59 && profile.bins.size() == 7 && profile.mediaTypes.size() == 23);
}

} // namespace
} // namespace tsypr::ppdimport
