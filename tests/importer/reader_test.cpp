#include "service/profile_parser.h"
#include "tests/importer/test_support.h"
#include "tests/lib/scoped_variable.h"
#include "tools/ppdimport/ppd_reader.h"
#include "tools/ppdimport/text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace tsypr::ppdimport
{
namespace
{

PpdModel ReadText(const std::string& text)
{
    const ScratchFolder folder;
    return ReadPpd(folder.Write("small.ppd", text));
}

PpdOption Find(const PpdModel& model, const std::string& keyword)
{
    const auto found = std::ranges::find(model.options, keyword, &PpdOption::keyword);
    return found != model.options.end() ? *found : throw std::runtime_error("no option " + keyword);
}

TEST(ImporterReader, ReadsSmallFile)
{
    const PpdModel model = ReadText(SmallPpd(R"(*OpenGroup: InstallableOptions/Fitted
*OpenUI *Tray2/Second tray: Boolean
*DefaultTray2: False
*Tray2 True/Yes: ""
*Tray2 False/No: ""
*CloseUI: *Tray2
*CloseGroup: InstallableOptions
*UIConstraints: *Tray2 False *PageSize Letter
*HWMargins: 12 12 12 12
*MaxMediaWidth: "908"
*MaxMediaHeight: "1701"
*CustomPageSize True: "pop"
*ParamCustomPageSize Width: 1 points 255 908
*ParamCustomPageSize Height: 2 points 419 1701
)"));
    EXPECT_TRUE(model.manufacturer == "Maker" && model.modelName == "Model 1" && model.nickname == "Maker Model 1 PS");
    EXPECT_TRUE(model.colorDevice && model.throughput == 30);
    EXPECT_EQ(model.attributes.at("LandscapeOrientation"), "Minus90");
    const PpdOption sizes = Find(model, "PageSize");
    EXPECT_TRUE(sizes.defaultChoice == "A4" && sizes.choices.at(0).text == "US Letter");
    EXPECT_EQ(sizes.choices.size(), 2u); // no choice named Custom
    EXPECT_DOUBLE_EQ(model.sizes.at("A4").length, 842);
    EXPECT_TRUE(Find(model, "Tray2").installable);
    EXPECT_EQ(model.constraints.at(0).secondOption, "PageSize");
    ASSERT_TRUE(model.customSize.has_value());
    EXPECT_DOUBLE_EQ(model.customSize->minimum.width, 255);
    EXPECT_DOUBLE_EQ(model.customSize->maximum.length, 1701);
}

TEST(ImporterReader, DecodesTexts)
{
    const auto read = [](const std::string& text, const std::string& encoding)
    {
        const std::string option = "*OpenUI *MediaType/Sorte: PickOne\n*DefaultMediaType: A\n*MediaType A/" + text;
        const PpdModel model = ReadText(SmallPpd(option + ": \"\"\n*CloseUI: *MediaType\n", encoding));
        return Find(model, "MediaType").choices[0].text;
    };
    EXPECT_EQ(read("Papier gr\xF6", "ISOLatin1"), "Papier gr\xC3\xB6");
    EXPECT_EQ(read("Hex <E9>t<E9>", "ISOLatin1"), "Hex \xC3\xA9t\xC3\xA9");
    EXPECT_EQ(read("\xE7\xB4\x99", "UTF-8"), "\xE7\xB4\x99");
}

// The caller's language must not change a profile.
TEST(ImporterReader, TakesEnglishTexts)
{
    const test::ScopedVariable language("LANG", "de_DE.UTF-8");
    const test::ScopedVariable all("LC_ALL", "de_DE.UTF-8");
    const PpdModel model = ReadText(SmallPpd("*cupsLanguages: \"de\"\n*de.PageSize A4/A4 Papier: \"\"\n", "UTF-8"));
    EXPECT_EQ(Find(model, "PageSize").choices.at(1).text, "A4");
}

TEST(ImporterReader, ErrorsNameFileAndLine)
{
    const ScratchFolder folder;
    const auto expect = [](const std::string& path, const std::string& place)
    {
        const auto matcher = testing::AllOf(testing::StartsWith(path), testing::HasSubstr(place));
        EXPECT_THAT([&] { ReadPpd(path); }, testing::ThrowsMessage<InputError>(matcher));
    };
    expect("missing.ppd", "(No such file");
    expect(folder.Write("empty.ppd", ""), ".ppd:");
    expect(folder.Write("letter.ppd", "Dear printer,\nplease print.\n"), ".ppd:1: ");
    const std::string text = SmallPpd();
    const std::string place = ".ppd:" + std::to_string(std::ranges::count(text, '\n') + 2) + ": ";
    expect(folder.Write("groups.ppd", text + "*OpenGroup: One\n*OpenGroup: Two\n"), place);
}

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

TEST(ImporterText, CleansDecodesAndCuts)
{
    EXPECT_EQ(CleanText("  a \t\r\n b  \x01\x7F\xC2\x85"), "a b");
    EXPECT_EQ(CleanText("Gr\xC3\xB6\xC3\x9F"), "Gr\xC3\xB6\xC3\x9F"); // UTF-8 stays
    EXPECT_EQ(CleanText("Gr\xF6\xDF"), "Gr\xC3\xB6\xC3\x9F");         // Latin-1
    EXPECT_EQ(CleanText("x\xC0\xAF"), "x\xC3\x80\xC2\xAF");           // overlong form is no UTF-8
    EXPECT_EQ(CleanText("x\xED\xA0\x80"), "x\xC3\xAD\xC2\xA0");       // surrogate: Latin-1, ends in a control character
    EXPECT_EQ(CleanText("cut \xE2\x82"), "cut \xC3\xA2");             // incomplete, likewise
    EXPECT_EQ(CutText("ab\xE2\x82\xAC\xF0\x9F\x98\x80", 4), "ab\xE2\x82\xAC"); // the last one counts as two
    EXPECT_EQ(CutText("ab cd", 3), "ab");                                      // no blank left at the end
    EXPECT_EQ(VendorKeyword("Bin", "++"), "ns0000:Bin");
}

} // namespace
} // namespace tsypr::ppdimport
