#include "printschema/pt_parser.h"
#include "tests/lib/test_files.h"
#include "tests/module/test_registry.h"
#include "tests/printschema/documents.h"
#include "tests/remote/log_capture.h"

namespace tsypr::test
{
namespace
{

// The switch is read once per process: this is the only test of the program that asks for it.
TEST(DocumentDump, GoesToTheLogsFolderUnderANameWithoutWhiteSpace)
{
    const ComThread com;
    LogCapture log;
    const auto doc = Load(Ticket(Feature("psk:PageMediaType", Option("psk:Plain"))));
    const ScratchFolder folder("dumps");
    const TestRegistry registry; // from here on nothing can be found that is registered with COM
    DWORD on = 1;
    SetBytes(HKEY_LOCAL_MACHINE, kDriverKeyW, L"DumpPTData", REG_DWORD, &on, sizeof(on));
    const std::wstring path = folder.path.native();
    SetBytes(
        HKEY_LOCAL_MACHINE, kProductKey, L"AppDataPath", REG_SZ, path.c_str(), (path.size() + 1) * sizeof(wchar_t));
    std::wstring name = L"Office \t\n\v\f\rLaser, 4_PT2DM.xml";
    log.Take();
    PTParser::DumpXMLDataIfEnabledInReg(doc.Get(), name);
    EXPECT_EQ(L"OfficeLaser,4_PT2DM.xml", name);
    const std::string lead = "error PTParser::DumpXMLDataIfEnabledInReg, ";
    EXPECT_EQ(
        Messages{lead + "failed to save PT data to \"" + Utf8(folder.path) + "\\logs\\OfficeLaser,4_PT2DM.xml\"."},
        log.Take()); // there is no such folder yet
    std::filesystem::create_directory(folder / "logs");
    std::ofstream(folder / "logs" / name) << "an older one";
    on = 0; // too late
    SetBytes(HKEY_LOCAL_MACHINE, kDriverKeyW, L"DumpPTData", REG_DWORD, &on, sizeof(on));
    PTParser::DumpXMLDataIfEnabledInReg(doc.Get(), name);
    EXPECT_EQ(Messages{}, log.Take());
    EXPECT_TRUE(ReadLines(folder / "logs" / name).front().starts_with("<?xml"));
    PTParser::DumpXMLDataIfEnabledInReg(nullptr, name);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProductKey);
    const std::wstring nowhere = path + L"\\nowhere";
    SetBytes(HKEY_LOCAL_MACHINE,
             kProductKey,
             L"AppDataPath",
             REG_SZ,
             nowhere.c_str(),
             (nowhere.size() + 1) * sizeof(wchar_t));
    PTParser::DumpXMLDataIfEnabledInReg(doc.Get(), name);
    EXPECT_EQ((Messages{lead + "xmlDoc is null", lead + "failed call W32Util_GetTessaryCommonAppDataFilePath."}),
              log.Take());
}

} // namespace
} // namespace tsypr::test
