#include "tests/printctl/printctl_fixture.h"

#include <memory>

namespace tsypr::printctl_tests
{

namespace
{

// The driver is installed once for all the tests.
class QueryTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<DriverFolder>();
        s_folder->PlaceProfile(L"chatty.json", "Chatty");
        const Outcome outcome = s_folder->Install();
        ASSERT_EQ(outcome.code, 0) << outcome.error;
    }

    static void TearDownTestSuite()
    {
        EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
        s_folder.reset();
    }

    static std::wstring File(const wchar_t* name)
    {
        return (s_folder->Path() / name).wstring();
    }

    static inline std::unique_ptr<DriverFolder> s_folder;
};

Json Find(const Json& list, const char* key, const Json& value)
{
    for (const auto& entry : list)
    {
        if (entry.at(key) == value)
        {
            return entry;
        }
    }
    ADD_FAILURE() << "no entry with " << key << " = " << value;
    return Json::object();
}

TEST_F(QueryTest, CapabilitiesAreDecoded)
{
    const Json answer = QueryJson({L"capabilities", L"Alpha"});
    EXPECT_EQ(answer.at("printer"), "Alpha");
    ASSERT_EQ(answer.at("papers").size(), 3u);
    EXPECT_EQ(answer.at("papers").at(2),
              Json({{"id", 300}, {"name", "Umschlag gro\u00df"}, {"widthMm", 105.5}, {"heightMm", 241.5}}));
    EXPECT_EQ(answer.at("bins").at(1), Json({{"id", 2}, {"name", "Tray 2"}}));
    EXPECT_EQ(answer.at("mediaTypes").at(1), Json({{"id", 0x80000005}, {"name", "Glossy Photo"}}));
    EXPECT_EQ(answer.at("resolutions").at(1), Json({{"x", 1200}, {"y", 1200}}));
    EXPECT_EQ(answer.at("pagesPerSheet"), Json({1, 2, 4}));
    EXPECT_EQ(answer.at("answers").size(), 35u);
    EXPECT_EQ(Find(answer.at("answers"), "name", "DC_COPIES").at("result"), 99);
    EXPECT_EQ(Find(answer.at("answers"), "name", "DC_STAPLE").at("result"), -1);
    EXPECT_EQ(Find(answer.at("answers"), "name", "DC_MAXEXTENT").at("meaning"), "215.9 x 355.6 mm");
    EXPECT_EQ(answer.at("faults"), Json::array());

    const Outcome text = RunPrintctl({L"capabilities", L"Alpha"});
    EXPECT_EQ(text.code, 0);
    EXPECT_NE(text.out.find("  300  Umschlag gro\u00df  105.5  241.5\n"), std::string::npos) << text.out;
}

TEST_F(QueryTest, CapabilitiesReportFaultsAndPassTheDeviceModeOn)
{
    const Json chatty = QueryJson({L"capabilities", L"Chatty"});
    EXPECT_EQ(chatty.at("bins").size(), 2u);
    EXPECT_EQ(chatty.at("faults"), Json({"DC_BINNAMES delivers more data than it announces"}));
    ASSERT_EQ(RunPrintctl({L"devmode", L"Alpha", L"--set", L"copies=12", L"--out", File(L"dm.bin")}).code, 0);
    const Json answer = QueryJson({L"capabilities", L"Alpha", L"--in", File(L"dm.bin")});
    EXPECT_EQ(Find(answer.at("answers"), "name", "DC_COPIES").at("result"), 12);
}

TEST_F(QueryTest, DeviceModeShowsPublicAndPrivateFields)
{
    const Json answer = QueryJson({L"devmode", L"B\u00fcro"});
    const Json& dm = answer.at("deviceMode");
    EXPECT_EQ(dm.at("size"), 220);
    EXPECT_EQ(dm.at("driverExtra"), 8 + 1112);
    EXPECT_EQ(dm.at("fields").at("paper"), Json({{"value", 9}, {"set", true}, {"name", "A4"}}));
    EXPECT_EQ(dm.at("fields").at("color"), Json({{"value", 0}, {"set", false}}));
    EXPECT_EQ(dm.at("fields").at("mediatype").at("name"), "Glossy Photo");
    EXPECT_EQ(dm.at("private").at("nupLayout").at("value"), "psk:RightBottom");
    EXPECT_EQ(dm.at("private").at("featureBitmap").at("name"), "NUP, FINISHING");
    EXPECT_EQ(dm.at("private").at("lockedSettings").at("name"), "Duplex");
    EXPECT_TRUE(answer.at("changes").is_null());
    const Json stored = QueryJson({L"devmode", L"Alpha", L"--raw"});
    EXPECT_EQ(stored.at("deviceMode").at("fields").at("quality").at("value"), 600);
}

TEST_F(QueryTest, MergeReportsWhatWasAppliedAndWhatNot)
{
    const Json answer = QueryJson({L"devmode", L"Alpha",         L"--set", L"orientation=landscape",
                                   L"--set",   L"duplex=2",      L"--set", L"paper=letter",
                                   L"--set",   L"compression=2", L"--set", L"staple=psk:StapleTopLeft",
                                   L"--set",   L"copies=1",      L"--set", L"watermark=Geheim \u00a7",
                                   L"--set",   L"scale=50",      L"--out", File(L"merged.bin")});
    const Json& changes = answer.at("changes");
    EXPECT_EQ(Find(changes, "field", "orientation").at("applied"), true);
    EXPECT_EQ(Find(changes, "field", "paper").at("result"), 1);
    EXPECT_EQ(Find(changes, "field", "duplex").at("text"),
              "duplex: requested vertical (2), got simplex (1) (not applied)");
    EXPECT_EQ(Find(changes, "field", "compression").at("applied"), true);
    EXPECT_EQ(Find(changes, "field", "staple").at("applied"), false);
    EXPECT_EQ(Find(changes, "field", "watermark").at("result"), "Geheim \u00a7");
    EXPECT_EQ(Find(changes, "field", "scale").at("text"), "scale: requested 50, got nothing (not applied)");
    EXPECT_EQ(changes.size(), 7u) << "copies was asked for, but is what it was: " << changes;
    EXPECT_EQ(fs::file_size(File(L"merged.bin")), 220u + 8 + 1112);

    // What was stored is what comes back as a request.
    const Json again = QueryJson({L"devmode", L"Alpha", L"--in", File(L"merged.bin")});
    EXPECT_EQ(again.at("deviceMode"), answer.at("deviceMode"));
}

TEST_F(QueryTest, ConvertGivesTheDefaultAndConvertsIntoIt)
{
    ASSERT_EQ(RunPrintctl({L"convert", L"Alpha", L"--default", L"--out", File(L"default.bin")}).code, 0);
    ASSERT_EQ(RunPrintctl({L"devmode", L"Alpha", L"--out", File(L"documented.bin")}).code, 0);
    EXPECT_EQ(ReadText(File(L"default.bin")), ReadText(File(L"documented.bin")));
    ASSERT_EQ(RunPrintctl({L"devmode", L"Alpha", L"--set", L"copies=12", L"--out", File(L"twelve.bin")}).code, 0);
    const Json answer =
        QueryJson({L"convert", L"Alpha", L"--in", File(L"twelve.bin"), L"--out", File(L"converted.bin")});
    EXPECT_EQ(answer.at("mode"), "convert");
    EXPECT_EQ(answer.at("hasPrivateBlock"), true);
    EXPECT_EQ(ReadText(File(L"converted.bin")), ReadText(File(L"twelve.bin")));
}

TEST_F(QueryTest, RefusesWithACodeAndAReason)
{
    const std::wstring good = File(L"good.bin");
    ASSERT_EQ(RunPrintctl({L"devmode", L"Alpha", L"--out", good}).code, 0);
    const std::string bytes = ReadText(good);
    WriteText(File(L"cut.bin"), bytes.substr(0, bytes.size() - 1));
    WriteText(File(L"long.bin"), bytes + "x");
    WriteText(File(L"tiny.bin"), bytes.substr(0, 40));
    WriteText(File(L"empty.bin"), "");
    const std::tuple<std::vector<std::wstring>, int, const char*> cases[] = {
        {{L"devmode", L"Nobody"}, 2, "no printer named \"Nobody\""},
        {{L"capabilities", L"Nobody"}, 2, "no printer named"},
        {{L"convert", L"Nobody", L"--out", File(L"x")}, 2, "no printer named"},
        {{L"devmode", L"Alpha", L"--set", L"colour=1"},
         1,
         "\"colour\" is no field that can be set (known: orientation"},
        {{L"devmode", L"Alpha", L"--set", L"lockedSettings=0"}, 1, "no field that can be set"},
        {{L"devmode", L"Alpha", L"--set", L"copies"}, 1, "FIELD=VALUE"},
        {{L"devmode", L"Alpha", L"--set", L"copies=99999"}, 1, "not between -32768 and 32767"},
        {{L"devmode", L"Alpha", L"--set", L"copies=many"}, 1, "\"many\" is no value of field copies"},
        {{L"devmode", L"Alpha", L"--set", L"paper=A44"}, 1, "\"Umschlag gro\u00df\""},
        {{L"devmode", L"Alpha", L"--set", L"staple=123456789012345678901234567890"}, 1, "at most 29 characters"},
        {{L"devmode", L"Alpha", L"--in", File(L"cut.bin")}, 4, "states 220 public and 1120 driver bytes"},
        {{L"devmode", L"Alpha", L"--in", File(L"long.bin")}, 4, "but the file has 1341"},
        {{L"capabilities", L"Alpha", L"--in", File(L"tiny.bin")}, 4, "too short"},
        {{L"convert", L"Alpha", L"--in", File(L"empty.bin"), L"--out", File(L"x")}, 4, "too short"},
        {{L"convert", L"Alpha", L"--in", File(L"missing.bin"), L"--out", File(L"x")}, 4, "missing.bin"},
        {{L"convert", L"Alpha"}, 1, "--out is required"},
        {{L"devmode", L"Alpha", L"--raw", L"--user-default"}, 1, ""},
        {{L"preferences", L"Alpha", L"--language", L"xx-yy", L"--out", File(L"x")},
         2,
         "\"xx-yy\" is no installed language (installed: en-us)"},
        {{L"nonsense"}, 1, ""},
    };
    for (const auto& [arguments, code, message] : cases)
    {
        const Outcome outcome = RunPrintctl(arguments);
        EXPECT_EQ(outcome.code, code) << outcome.error;
        EXPECT_NE(outcome.error.find(message), std::string::npos) << outcome.error;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_FALSE(fs::exists(File(L"x")));
}

TEST_F(QueryTest, ProfilesAreChecked)
{
    const std::wstring folder = File(L"printers");
    EXPECT_EQ(QueryJson({L"profiles", folder}).at("printers").at(0).at("name"), "Alpha");
    WriteText(s_folder->Path() / L"printers" / L"wrong.json",
              "{\"schemaVersion\": 1, \"name\": \"Wrong\", \"colour\": 1}");
    const Outcome outcome = RunPrintctl({L"profiles", folder, L"--json"});
    EXPECT_EQ(outcome.code, 4);
    const Json document = Json::parse(outcome.out, nullptr, false);
    ASSERT_FALSE(document.is_discarded()) << outcome.out;
    EXPECT_EQ(document.at("printers").size(), 3u);
    EXPECT_EQ(Find(document.at("problems"), "field", "colour").at("file"), "wrong.json");
}

} // namespace

} // namespace tsypr::printctl_tests
