#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

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
    const char* value;   // its new JSON value, null to remove it
    const char* field;   // where the problem must be reported
    const char* reason;  // part of the reason
};

std::ostream& operator<<(std::ostream& stream, const BadField& bad)
{
    return stream << bad.pointer << " = " << (bad.value == nullptr ? "(removed)" : bad.value);
}

class BadProfile : public testing::TestWithParam<BadField>
{
};

TEST_P(BadProfile, IsRefusedWithFieldAndReason)
{
    const BadField& bad = GetParam();
    json document = SampleProfile();
    const json::json_pointer pointer(bad.pointer);
    if (bad.value == nullptr)
    {
        document.at(pointer.parent_pointer()).erase(pointer.back());
    }
    else
    {
        document[pointer] = json::parse(bad.value);
    }

    std::vector<ProfileProblem> problems;
    EXPECT_FALSE(ParseProfile(document.dump(), "bad.json", problems).has_value());
    ASSERT_EQ(problems.size(), 1u) << testing::PrintToString(problems.empty() ? "" : problems.back().field);
    EXPECT_EQ(problems[0].file, "bad.json");
    EXPECT_EQ(problems[0].field, bad.field);
    EXPECT_THAT(problems[0].reason, testing::HasSubstr(bad.reason));
}

INSTANTIATE_TEST_SUITE_P(
    Shape,
    BadProfile,
    testing::Values(
        BadField{"/colour", "true", "colour", "unknown field"},
        BadField{"/papers/1/size", "3", "papers[1].size", "unknown field"},
        BadField{"/deviceMode/resolution/z", "3", "deviceMode.resolution.z", "unknown field"},
        BadField{"/a\nb", "1", "a?b", "unknown field"},
        BadField{"/schemaVersion", "2", "schemaVersion", "from 1 to 1"},
        BadField{"/schemaVersion", nullptr, "schemaVersion", "is missing"},
        BadField{"/name", nullptr, "name", "is missing"},
        BadField{"/name", "\"\"", "name", "1 to 255 characters, has 0"},
        BadField{"/name", "\"Left, right\"", "name", "comma"},
        BadField{"/name", R"("a\u0000b")", "name", "control characters"},
        BadField{"/name", "7", "name", "must be a text"},
        BadField{"/vendorNamespace", "\"a b\"", "vendorNamespace", "URI"},
        BadField{"/deviceMode", "[]", "deviceMode", "must be an object"},
        BadField{"/deviceMode/paper", nullptr, "deviceMode.paper", "is missing"},
        BadField{"/deviceMode/orientation", "\"upside\"", "deviceMode.orientation", "portrait, landscape"},
        BadField{"/deviceMode/orientation", "1", "deviceMode.orientation", "must be one of"},
        BadField{"/deviceMode/collate", "1", "deviceMode.collate", "true or false"},
        BadField{"/deviceMode/formName", "\"12345678901234567890123456789012\"", "deviceMode.formName", "has 32"},
        BadField{"/private/locked", "[\"duplex\",\"duplex\"]", "private.locked[1]", "twice"},
        BadField{"/private/features", "[\"sorting\"]", "private.features[0]", "must be one of"},
        BadField{"/papers", "{}", "papers", "must be a list"},
        BadField{"/papers", "[]", "papers", "must not be empty"},
        BadField{"/papers/1", "8", "papers[1]", "must be an object"},
        BadField{"/bins/0/name", "\"Twenty-four characters!!\"", "bins[0].name", "has 24"},
        BadField{"/papers/0/keyword", "\"ISOA4\"", "papers[0].keyword", "must be a keyword"},
        BadField{"/papers/0/keyword", "\"psk:\"", "papers[0].keyword", "must be a keyword"},
        BadField{"/papers/0/keyword", "\"psk:A\\\"B\"", "papers[0].keyword", "must be a keyword"},
        BadField{"/nup/directions", "[]", "nup.directions", "must not be empty"},
        BadField{"/nup/directions/2", "\"ns0000:ThisKeywordIsTooLong123\"", "nup.directions[2]", "at most 29"}));

INSTANTIATE_TEST_SUITE_P(
    Numbers,
    BadProfile,
    testing::Values(BadField{"/papers/1/width", "0", "papers[1].width", "from 1 to 32767"},
                    BadField{"/papers/1/height", "32768", "papers[1].height", "from 1 to 32767"},
                    BadField{"/papers/1/width", "2100.0", "papers[1].width", "must be an integer"},
                    BadField{"/papers/1/width", "\"2100\"", "papers[1].width", "must be an integer"},
                    BadField{"/papers/1/id", "65536", "papers[1].id", "from 1 to 65535"},
                    BadField{"/papers/1/id", "18446744073709551615", "papers[1].id", "from 1 to 65535"},
                    BadField{"/papers/1/id", "-9223372036854775808", "papers[1].id", "from 1 to 65535"},
                    BadField{"/papers/1/id", "1e5", "papers[1].id", "must be an integer"},
                    BadField{"/mediaTypes/0/id", "0", "mediaTypes[0].id", "from 1 to"},
                    BadField{"/maxCopies", "0", "maxCopies", "from 1 to 32767"},
                    BadField{"/deviceMode/leadingExtra", "64204", "deviceMode.leadingExtra", "from 0 to 64203"},
                    BadField{"/deviceMode/scale", "0", "deviceMode.scale", "from 1 to 1000"},
                    BadField{"/private/compression", "4", "private.compression", "from 0 to 3"},
                    BadField{"/private/printTargetChoice", "2", "private.printTargetChoice", "from 0 to 1"},
                    BadField{"/resolutions/0/x", "-600", "resolutions[0].x", "from 1 to 32767"},
                    BadField{"/landscapeRotation", "180", "landscapeRotation", "0, 90 or 270"},
                    BadField{"/landscapeRotation", "45", "landscapeRotation", "0, 90 or 270"}));

INSTANTIATE_TEST_SUITE_P(
    Meaning,
    BadProfile,
    testing::Values(BadField{"/papers/1/id", "9", "papers[1].id", "used twice"},
                    BadField{"/bins/0/id", "15", "bins[1].id", "used twice"},
                    BadField{"/deviceMode/source", "16", "deviceMode.source", "not an id of bins"},
                    BadField{"/mediaTypes/0/id", "2", "mediaTypes[1].id", "used twice"},
                    BadField{"/resolutions/2", R"({"x": 600, "y": 600})", "resolutions[2]", "twice"},
                    BadField{"/nup/pagesPerSheet", "[1,4,4]", "nup.pagesPerSheet[2]", "twice"},
                    BadField{"/deviceMode/paper", "10", "deviceMode.paper", "not an id of papers"},
                    BadField{"/deviceMode/mediaType", "3", "deviceMode.mediaType", "not an id of mediaTypes"},
                    BadField{"/deviceMode/copies", "51", "deviceMode.copies", "maxCopies"},
                    BadField{"/deviceMode/resolution/y", "1199", "deviceMode.resolution", "resolutions"},
                    BadField{"/deviceMode/quality", "\"low\"", "deviceMode.quality", "qualityLevels"},
                    BadField{"/duplex", "[\"simplex\"]", "deviceMode.duplex", "not listed"},
                    BadField{"/landscapeRotation", "0", "deviceMode.orientation", "no landscape"},
                    BadField{"/customPaper", nullptr, "papers[2].id", "needs customPaper"},
                    BadField{"/customPaper/maxHeight", "1999", "papers[2].height", "within customPaper"},
                    BadField{"/customPaper/minHeight", "5001", "customPaper.minHeight", "larger than maxHeight"},
                    BadField{"/private/pagesPerSheet", "6", "private.pagesPerSheet", "not listed"},
                    BadField{"/private/nupLayout", "\"psk:TopLeft\"", "private.nupLayout", "not listed"},
                    BadField{"/private/staple", "\"psk:SaddleStitch\"", "private.staple", "not listed"},
                    BadField{"/private/punch", "\"psk:TopEdge\"", "private.punch", "not listed"},
                    BadField{"/staple/0", "\"psk:StapleNowhere\"", "staple[0]", "not a keyword of this list"},
                    BadField{"/punch/0", "\"ns0000:Hole\"", "punch[0]", "not a keyword of this list"},
                    BadField{"/nup/directions/2", "\"psk:Spiral\"", "nup.directions[2]", "not a keyword"}));

TEST(ProfileParser, ReportsEveryProblemOfAProfile)
{
    json document = SampleProfile();
    document.erase("vendorNamespace");
    document["private"]["features"] = {"nup", "finishing"};
    for (const char* key : {"nup", "staple", "punch"})
    {
        document.erase(key);
    }
    std::vector<ProfileProblem> problems;
    EXPECT_FALSE(ParseProfile(document.dump(), "bad.json", problems).has_value());
    std::vector<std::string> lines;
    for (const ProfileProblem& problem : problems)
    {
        lines.push_back(problem.field + ": " + problem.reason);
    }
    EXPECT_THAT(lines,
                testing::UnorderedElementsAre("bins[1].keyword: needs vendorNamespace",
                                              "private.features: nup needs the nup object",
                                              "private.features: finishing needs a staple or punch list",
                                              "private.pagesPerSheet: is not listed in nup.pagesPerSheet",
                                              "private.nupLayout: is not listed in nup.directions",
                                              "private.staple: is not listed in staple",
                                              "private.punch: is not listed in punch"));
}

TEST(ProfileParser, RefusesWhatIsNotOneJsonObject)
{
    struct
    {
        std::string text;
        const char* field;
        const char* reason;
    } const cases[] = {
        {"", "", "is not JSON"},
        {"{\"name\":\n  oops}", "", "line 2, column"},
        {"[]", "", "must be an object"},
        {"{\"name\": \"\xFF\"}", "", "is not JSON"},
        {"{\"name\": \"\\ud800\"}", "", "is not JSON"},
        {SampleProfile().dump() + "{}", "", "is not JSON"},
        {std::string(100000, '['), "", "is not JSON"},
        {"{\"papers\": 1e400}", "", "is not JSON"},
        {R"({"schemaVersion": 1, "schemaVersion": 1})", "schemaVersion", "is given twice"},
    };
    for (const auto& [text, field, reason] : cases)
    {
        SCOPED_TRACE(text.substr(0, 40));
        std::vector<ProfileProblem> problems;
        EXPECT_FALSE(ParseProfile(text, "bad.json", problems).has_value());
        ASSERT_FALSE(problems.empty());
        EXPECT_EQ(problems[0].field, field);
        EXPECT_THAT(problems[0].reason, testing::HasSubstr(reason));
    }
}

TEST(ProfileParser, KeepsWhatTheProfileSays)
{
    const Profile profile = Parse(SampleProfile());
    EXPECT_EQ(profile.deviceMode.source, 15);
    EXPECT_EQ(profile.deviceMode.collate, false);
    EXPECT_EQ(profile.deviceMode.duplex, DuplexMode::Horizontal);
    EXPECT_EQ(profile.privateSettings.locked, 0x6u);
    EXPECT_EQ(profile.privateSettings.features, 0x17u);
    EXPECT_EQ(profile.bins[1].keyword, "ns0000:Tray.1-b");
    EXPECT_EQ(profile.qualityLevels, (std::vector{QualityLevel::Draft, QualityLevel::High}));
    EXPECT_EQ(profile.customPaper->maxHeight, 5000);
}

TEST(ProfileParser, CompletesOnlyWhatThePrinterHas)
{
    const Profile sparse = Parse(SparseProfile());
    EXPECT_EQ(sparse.deviceMode.orientation, Orientation::Portrait);
    EXPECT_EQ(sparse.deviceMode.quality, QualityLevel::Medium);
    EXPECT_FALSE(sparse.deviceMode.source || sparse.deviceMode.mediaType || sparse.deviceMode.collate ||
                 sparse.deviceMode.color || sparse.deviceMode.duplex || sparse.deviceMode.resolution);

    json document = SampleProfile();
    document["deviceMode"] = {{"paper", 8}};
    document["private"] = json::object();
    document["private"]["locked"] = json::array();
    const Profile profile = Parse(document);
    EXPECT_EQ(profile.deviceMode.source, 7);
    EXPECT_EQ(profile.deviceMode.mediaType, 1u);
    EXPECT_EQ(profile.deviceMode.collate, true);
    EXPECT_EQ(profile.deviceMode.color, ColorMode::Color);
    EXPECT_EQ(profile.deviceMode.duplex, DuplexMode::Simplex);
    EXPECT_EQ(profile.deviceMode.resolution, (Resolution{600, 600}));
    EXPECT_EQ(profile.privateSettings.nupLayout, "psk:RightBottom");
    EXPECT_EQ(profile.privateSettings.staple, "psk:None");

    // A quality level and a resolution share one field of the device mode; the level is the more deliberate one.
    document["deviceMode"] = {{"paper", 8}, {"quality", "high"}, {"resolution", {{"x", 600}, {"y", 600}}}};
    EXPECT_FALSE(Parse(document).deviceMode.resolution.has_value());
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
