#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "service/profile_loader.h"
#include "service/text.h"
#include "tests/service/sample_profile.h"

namespace tsypr::service::test
{
namespace
{

using nlohmann::json;

struct BadField
{
    const char* pointer; // the field that is changed
    const char* value;   // its new JSON value
    const char* field;   // where the problem must be reported
    const char* reason;  // part of the reason
};

constexpr BadField kBadFields[] = {
    {"/colour", "true", "colour", "unknown field"},
    {"/a\nb", "1", "a?b", "unknown field"},
    {"/schemaVersion", "2", "schemaVersion", "from 1 to 1"},
    {"/name", "\"\"", "name", "1 to 255 characters, has 0"},
    {"/name", "\"Left, right\"", "name", "comma"},
    {"/name", R"("a\u0000b")", "name", "control characters"},
    {"/name", "7", "name", "must be a text"},
    {"/deviceMode", "{}", "deviceMode.paper", "is missing"},
    {"/deviceMode", "[]", "deviceMode", "must be an object"},
    {"/deviceMode/orientation", "\"upside\"", "deviceMode.orientation", "portrait, landscape"},
    {"/deviceMode/formName", "\"12345678901234567890123456789012\"", "deviceMode.formName", "has 32"},
    {"/private/features", "[\"sorting\"]", "private.features[0]", "must be one of"},
    {"/papers", "{}", "papers", "must be a list"},
    {"/papers/0/keyword", "\"ISOA4\"", "papers[0].keyword", "must be a keyword"},
    {"/papers/0/keyword", "\"psk:A\\\"B\"", "papers[0].keyword", "must be a keyword"},
    {"/nup/directions/2", "\"ns0000:ThisKeywordIsTooLong123\"", "nup.directions[2]", "at most 29"},
    {"/papers/1/height", "32768", "papers[1].height", "from 1 to 32767"},
    {"/papers/1/width", "2100.0", "papers[1].width", "must be an integer"},
    {"/papers/1/id", "18446744073709551615", "papers[1].id", "from 1 to 65535"},
    {"/landscapeRotation", "180", "landscapeRotation", "0, 90 or 270"},
    // contradictions
    {"/papers/1/id", "9", "papers[1].id", "used twice"},
    {"/deviceMode/copies", "51", "deviceMode.copies", "maxCopies"},
    {"/duplex", "[\"simplex\"]", "deviceMode.duplex", "not listed"},
    {"/landscapeRotation", "0", "deviceMode.orientation", "no landscape"},
    {"/customPaper/maxHeight", "1999", "papers[2].height", "within customPaper"},
    {"/staple/0", "\"psk:StapleNowhere\"", "staple[0]", "not a keyword of this list"},
    {"/nup/directions/2", "\"psk:Spiral\"", "nup.directions[2]", "not a keyword"},
};

void ExpectProblem(const std::string& text, const std::string& field, const std::string& reason)
{
    std::vector<ProfileProblem> problems;
    EXPECT_FALSE(ParseProfile(text, "bad", problems).has_value());
    EXPECT_THAT(
        Lines(problems),
        testing::ElementsAre(testing::AllOf(testing::StartsWith("bad|" + field + "|"), testing::HasSubstr(reason))));
}

TEST(ProfileParser, RefusesBadFieldsWithPlaceAndReason)
{
    for (const BadField& bad : kBadFields)
    {
        SCOPED_TRACE(std::string(bad.pointer) + " = " + bad.value);
        json document = SampleProfile();
        document[json::json_pointer(bad.pointer)] = json::parse(bad.value);
        ExpectProblem(document.dump(), bad.field, bad.reason);
    }
}

TEST(ProfileParser, ReportsEveryProblemOfAProfile)
{
    json document = SampleProfile();
    document["private"]["features"] = {"nup", "finishing"};
    for (const char* key : {"vendorNamespace", "customPaper", "nup", "staple", "punch"})
    {
        document.erase(key);
    }
    std::vector<ProfileProblem> problems;
    EXPECT_FALSE(ParseProfile(document.dump(), "bad", problems).has_value());
    EXPECT_THAT(Lines(problems),
                testing::UnorderedElementsAre("bad|bins[1].keyword|needs vendorNamespace",
                                              "bad|papers[2].id|256 is the user-defined size and needs customPaper",
                                              "bad|private.features|nup needs the nup object",
                                              "bad|private.features|finishing needs a staple or punch list",
                                              "bad|private.pagesPerSheet|is not listed in nup.pagesPerSheet",
                                              "bad|private.nupLayout|is not listed in nup.directions",
                                              "bad|private.staple|is not listed in staple",
                                              "bad|private.punch|is not listed in punch"));
}

TEST(ProfileParser, RefusesWhatIsNotOneJsonObject)
{
    const std::string good = SampleProfile().dump();
    for (const std::string& text : {std::string(), good + "{}", std::string(100000, '['), std::string("[1e400]")})
    {
        ExpectProblem(text, "", "is not JSON");
    }
    ExpectProblem("{\"name\": \"\xFF\"}", "", "is not JSON");
    ExpectProblem("{\"name\": \"\\ud800\"}", "", "is not JSON");
    ExpectProblem("{\"name\":\n  oops}", "", "line 2, column");
    ExpectProblem("[]", "", "must be an object");
    ExpectProblem("{\"schemaVersion\": 1," + good.substr(1), "schemaVersion", "is given twice");
}

TEST(ProfileParser, CompletesDefaults)
{
    json document = SampleProfile();
    document["deviceMode"] = {{"paper", 8}};
    document["private"] = json::object();
    const Profile profile = Parse(document);
    const PublicDefaults& mode = profile.deviceMode;
    EXPECT_TRUE(mode.source == 7 && mode.mediaType == 1u && mode.collate == true);
    EXPECT_TRUE(mode.color == ColorMode::Color && mode.duplex == DuplexMode::Simplex);
    EXPECT_EQ(mode.resolution, (Resolution{600, 600}));
    EXPECT_TRUE(profile.privateSettings.nupLayout == "psk:RightBottom" && profile.privateSettings.staple == "psk:None");

    // A quality level and a resolution share one field of the device mode; the level is the more deliberate one.
    document["deviceMode"] = {{"paper", 8}, {"quality", "high"}, {"resolution", {{"x", 600}, {"y", 600}}}};
    EXPECT_FALSE(Parse(document).deviceMode.resolution.has_value());
}

TEST(ProfileLoader, TakesFilesInNameOrderAndKeepsTheFirstOfTwoNames)
{
    const ProfileDirectory directory;
    directory.Write("b.json", Named("Second"));
    directory.Write("c.JSON", Named("First"));
    directory.Write("a.json", "\xEF\xBB\xBF" + Named("First"));
    directory.Write("broken.json", "[]");
    directory.Write("notes.txt", "not a profile");
    directory.Write("large.json", std::string(1024 * 1024 + 1, ' '));
    std::filesystem::create_directory(directory.path / "folder.json");

    const ProfileSet set = LoadProfiles(directory.path);
    ASSERT_EQ(set.printers.size(), 2u);
    EXPECT_EQ(set.printers[0].name, "First");
    EXPECT_EQ(set.Find(u"Second"), &set.printers[1]);
    EXPECT_EQ(set.Find(u"second"), nullptr);
    EXPECT_THAT(Lines(set.problems),
                testing::ElementsAre("broken.json||must be an object",
                                     "c.JSON|name|is taken by an earlier file",
                                     "folder.json||cannot be read",
                                     "large.json||is larger than 1 MB"));

    const ProfileSet none = LoadProfiles(directory.path / "missing");
    EXPECT_THAT(Lines(none.problems), testing::ElementsAre(testing::EndsWith("missing||the directory cannot be read")));
}

TEST(ProfileText, CountsAndCutsInUtf16Units)
{
    EXPECT_EQ(Utf16FromUtf8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x96\xA8"), u"a\u00E4\u20AC\U0001F5A8");
    EXPECT_EQ(Utf16Length("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x96\xA8"), 5u);
    EXPECT_EQ(CutUtf16(u"ab\U0001F5A8", 3), u"ab");
    EXPECT_EQ(CutUtf16(u"ab\U0001F5A8", 4), u"ab\U0001F5A8");
    for (const char* broken : {"\x80", "\xC0\x80", "\xE2\x82", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"})
    {
        EXPECT_THAT(Utf16FromUtf8(broken), testing::Contains(char16_t{0xFFFD}));
    }
}

} // namespace
} // namespace tsypr::service::test
