// Print tickets of the installed driver, as printctl has them converted by the driver's provider.
#include <algorithm>
#include <filesystem>
#include <string>

#include "tests/spooler/installed_product.h"
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

class Tickets : public InstalledProduct
{
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

TEST_F(Tickets, CarryWhatTheDriverAdds)
{
    ASSERT_EQ(RunPrintctl({L"devmode",
                           L"Studio Color",
                           L"--out",
                           File(L"in.bin"),
                           L"--set",
                           L"staple=psk:StapleDualLeft",
                           L"--set",
                           L"source=Tray 2"})
                  .code,
              0);
    const Json from = QueryJson({L"ticket", L"from-devmode", L"Studio Color", L"--in", File(L"in.bin")});
    EXPECT_EQ(from.at("changes"), Json::array());
    const std::string ticket = from.at("ticket");
    EXPECT_NE(ticket.find("ns0000:Tray2"), std::string::npos) << ticket;
    EXPECT_NE(ticket.find("psk:StapleDualLeft"), std::string::npos) << ticket;
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
}

TEST_F(Tickets, AreDumpedWhenTheRegistryAsksForIt)
{
    WriteText(File(L"ticket.xml"),
              "<psf:PrintTicket" + kSchemas +
                  "<psf:Feature name='psk:PageOutputColor'><psf:Option name='psk:Color'/></psf:Feature>"
                  "</psf:PrintTicket>");
    const std::wstring folder = File(L"data");
    fs::create_directories(fs::path(folder) / "logs");
    constexpr DWORD kOn = 1;
    const wchar_t* driverKey = L"Software\\Zelmora\\Tessary\\PrintRedir";
    const wchar_t* productKey = L"Software\\Zelmora\\Tessary";
    const auto bytes = static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t));
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, productKey, L"AppDataPath", REG_SZ, folder.c_str(), bytes);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, driverKey, L"DumpPTData", REG_DWORD, &kOn, sizeof(kOn));
    const Outcome text = RunPrintctl({L"ticket", L"to-devmode", L"Office Laser", File(L"ticket.xml")});
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, driverKey, L"DumpPTData");
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, productKey, L"AppDataPath");
    EXPECT_EQ(text.code, 0) << text.error;
    EXPECT_NE(text.out.find("Conflicts were resolved.\n"), std::string::npos);
    EXPECT_NE(text.out.find("psk:PageOutputColor: changed from psk:Color to psk:Monochrome\n"), std::string::npos);
    // The one that came in, and the one that the resulting device mode gives, corrected.
    const auto dump = [&](const char* name) { return ReadText(fs::path(folder) / "logs" / name); };
    const std::string cameIn = dump("OfficeLaser_PT2DM.xml");
    EXPECT_NE(cameIn.find("psk:Color"), std::string::npos);
    EXPECT_EQ(cameIn.find("psk:PageOrientation"), std::string::npos);
    const std::string wentOut = dump("OfficeLaser_DM2PT.xml");
    EXPECT_NE(wentOut.find("psk:Monochrome"), std::string::npos);
    EXPECT_EQ(wentOut.find("psk:PageScaling\""), std::string::npos);
    EXPECT_EQ(test::CheckPrintSchema(wentOut, PrintSchemaKind::Ticket), std::vector<std::string>());
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
