// Print tickets of the installed driver, as printctl has them converted by the driver's provider.
#include <windows.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "tests/printctl/printctl_fixture.h"
#include "tests/support/print_schema_checker.h"

namespace tsypr::spooler_tests
{
namespace
{

using printctl_tests::Json;
using printctl_tests::Outcome;
using printctl_tests::QueryJson;
using printctl_tests::ReadText;
using printctl_tests::RunPrintctl;
using printctl_tests::WriteText;
using test::PrintSchemaKind;
namespace fs = std::filesystem;

const std::string kSchemas = " xmlns:psf='http://schemas.microsoft.com/windows/2003/08/printing/printschemaframework'"
                             " xmlns:psk='http://schemas.microsoft.com/windows/2003/08/printing/printschemakeywords'"
                             " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
                             " xmlns:xsd='http://www.w3.org/2001/XMLSchema' version='1'>";

class Tickets : public testing::Test
{
public:
    // Wine's own XML documents are not enough for the driver.
    static void SetUpTestSuite()
    {
        wchar_t path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        const std::wstring repair = fs::path(path).replace_filename(L"tsydomrepair.dll").wstring();
        const auto size = static_cast<DWORD>((repair.size() + 1) * sizeof(wchar_t));
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                                  L"Software\\Classes\\CLSID\\{88D96A05-F192-11D4-A65F-0040963251E5}\\InprocServer32",
                                  nullptr,
                                  REG_SZ,
                                  repair.c_str(),
                                  size),
                  ERROR_SUCCESS);
        const Outcome installed = RunPrintctl({L"install"});
        ASSERT_EQ(installed.code, 0) << installed.error;
    }
    static void TearDownTestSuite()
    {
        EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
    }

protected:
    Tickets()
    {
        fs::create_directories(m_folder);
    }
    ~Tickets() override
    {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    std::wstring File(const wchar_t* name) const
    {
        return (m_folder / name).wstring();
    }

private:
    fs::path m_folder = fs::temp_directory_path() / L"tessary tickets";
};

TEST_F(Tickets, CarryTheSettingsOfEveryPrinterBothWays)
{
    for (const Json& printer : QueryJson({L"printers"}))
    {
        const std::string utf8 = printer.at("name").get<std::string>();
        const std::wstring name = fs::path(std::u8string(utf8.begin(), utf8.end())).wstring();
        const Json from = QueryJson({L"ticket", L"from-devmode", name, L"--out", File(L"ticket.xml")});
        const std::string ticket = ReadText(File(L"ticket.xml"));
        // A ticket without N-up leaves no number of pages in the device mode.
        const bool hasNup = ticket.find("psk:JobNUpAllDocumentsContiguously") != std::string::npos;
        EXPECT_EQ(from.at("changes").size(), hasNup ? 0u : 1u) << from.at("changes");
        EXPECT_TRUE(hasNup || from.at("changes").at(0).at("field") == "pagesPerSheet");
        EXPECT_EQ(test::CheckPrintSchema(ticket, PrintSchemaKind::Ticket), std::vector<std::string>());
        const Outcome capabilities = RunPrintctl({L"capabilities", L"--xml", name});
        EXPECT_EQ(test::CheckPrintSchema(capabilities.out, PrintSchemaKind::Capabilities), std::vector<std::string>());
        EXPECT_EQ(test::CheckTicketAgainst(ticket, capabilities.out), std::vector<std::string>());
        EXPECT_EQ(capabilities.out.find("PageScaling\""), std::string::npos);

        const Json to = QueryJson({L"ticket", L"to-devmode", name, File(L"ticket.xml"), L"--out", File(L"dm.bin")});
        EXPECT_EQ(to.at("conflictResolved"), false);
        EXPECT_EQ(to.at("deviceMode").at("fields"), QueryJson({L"devmode", name}).at("deviceMode").at("fields"));
    }
}

TEST_F(Tickets, CarryWhatTheDriverAdds)
{
    const Outcome set = RunPrintctl({L"devmode",
                                     L"Studio Color",
                                     L"--set",
                                     L"pagesPerSheet=4",
                                     L"--set",
                                     L"nupLayout=psk:BottomRight",
                                     L"--set",
                                     L"staple=psk:StapleDualLeft",
                                     L"--set",
                                     L"punch=psk:TopEdge",
                                     L"--set",
                                     L"mediatype=Card Stock",
                                     L"--set",
                                     L"source=Tray 2",
                                     L"--set",
                                     L"watermark=Draft",
                                     L"--out",
                                     File(L"in.bin")});
    ASSERT_EQ(set.code, 0) << set.error;
    const Json from = QueryJson({L"ticket", L"from-devmode", L"Studio Color", L"--in", File(L"in.bin")});
    EXPECT_EQ(from.at("changes"), Json::array());
    const std::string ticket = from.at("ticket");
    EXPECT_EQ(test::CheckPrintSchema(ticket, PrintSchemaKind::Ticket), std::vector<std::string>());
    for (const char* text : {"ns0000:Tray2", "psk:CardStock", "psk:StapleDualLeft", "psk:TopEdge", "psk:BottomRight"})
    {
        EXPECT_NE(ticket.find(text), std::string::npos) << text;
    }
}

TEST_F(Tickets, AreCorrectedWhereThePrinterLacksSomething)
{
    WriteText(File(L"ticket.xml"),
              "<psf:PrintTicket" + kSchemas +
                  "<psf:Feature name='psk:PageOutputColor'><psf:Option name='psk:Color'/></psf:Feature>"
                  "<psf:Feature name='psk:JobStapleAllDocuments'><psf:Option name='psk:StapleTopLeft'/></psf:Feature>"
                  "<psf:Feature name='psk:PageOrientation'><psf:Option name='psk:Landscape'/></psf:Feature>"
                  "</psf:PrintTicket>");
    const Json validated = QueryJson({L"ticket", L"validate", L"Office Laser", File(L"ticket.xml")});
    EXPECT_EQ(validated.at("conflictResolved"), true);
    EXPECT_EQ(test::CheckPrintSchema(validated.at("ticket").get<std::string>(), PrintSchemaKind::Ticket),
              std::vector<std::string>());
    const Json color = {{"setting", "psk:PageOutputColor"}, {"before", "psk:Color"}, {"after", "psk:Monochrome"}};
    const Json staple = {{"setting", "psk:JobStapleAllDocuments"}, {"before", "psk:StapleTopLeft"}, {"after", nullptr}};
    const Json& changes = validated.at("changes");
    EXPECT_NE(std::find(changes.begin(), changes.end(), color), changes.end()) << changes;
    EXPECT_NE(std::find(changes.begin(), changes.end(), staple), changes.end()) << changes;

    WriteText(File(L"valid.xml"), validated.at("ticket"));
    const Json again = QueryJson({L"ticket", L"validate", L"Office Laser", File(L"valid.xml")});
    EXPECT_EQ(again.at("conflictResolved"), false);
    EXPECT_EQ(again.at("changes"), Json::array());
    const Outcome text = RunPrintctl({L"ticket", L"to-devmode", L"Office Laser", File(L"ticket.xml")});
    EXPECT_EQ(text.code, 0) << text.error;
    EXPECT_NE(text.out.find("Conflicts were resolved.\n"), std::string::npos);
    EXPECT_NE(text.out.find("psk:PageOutputColor: changed from psk:Color to psk:Monochrome\n"), std::string::npos);
}

TEST_F(Tickets, AreRefusedWithACodeAndAReason)
{
    WriteText(File(L"bad.xml"), "<a>");
    WriteText(File(L"other.xml"), "<a/>");
    const struct
    {
        std::vector<std::wstring> arguments;
        int code;
        const char* message;
    } cases[] = {
        {{L"ticket", L"validate", L"Office Laser", File(L"missing.xml")}, 4, "missing.xml"},
        {{L"ticket", L"validate", L"Office Laser", File(L"bad.xml")}, 4, "no XML document that can be loaded"},
        {{L"ticket", L"to-devmode", L"Office Laser", File(L"other.xml")}, 3, "failed with 0x80040003"},
        {{L"ticket", L"from-devmode", L"Nobody"}, 2, "no printer named \"Nobody\""},
        {{L"ticket"}, 1, ""},
        {{L"capabilities", L"Office Laser", L"--xml", L"--json"}, 1, "excludes"},
    };
    for (const auto& refused : cases)
    {
        const Outcome outcome = RunPrintctl(refused.arguments);
        EXPECT_EQ(outcome.code, refused.code) << outcome.error;
        EXPECT_NE(outcome.error.find(refused.message), std::string::npos) << outcome.error;
    }
}

} // namespace
} // namespace tsypr::spooler_tests
