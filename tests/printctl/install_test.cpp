#include "tests/printctl/printctl_fixture.h"

#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <array>

namespace tsypr::printctl_tests
{

namespace
{

constexpr char kDriver[] = "Tessary Universal EMF Driver";

std::vector<std::string> PrinterNames()
{
    std::vector<std::string> names;
    for (const auto& printer : QueryJson({L"printers"}))
    {
        names.push_back(printer.at("name"));
    }
    return names;
}

// The names of the entries that are not the same in both, for a readable message.
std::string Difference(const SystemState& before, const SystemState& after)
{
    std::vector<SystemState::value_type> changed;
    std::ranges::set_symmetric_difference(before, after, std::back_inserter(changed));
    std::string names;
    for (const auto& [name, content] : changed)
    {
        names += name + '\n';
    }
    return names;
}

// Begins and ends with a system without our driver.
class InstallTest : public testing::Test
{
protected:
    InstallTest()
    {
        EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
    }

    ~InstallTest() override
    {
        EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
    }

    DriverFolder m_driver;
};

TEST_F(InstallTest, InstallsEverythingAndRemovesItAgain)
{
    const SystemState before = ReadSystemState();
    const Outcome outcome = m_driver.Install();
    ASSERT_EQ(outcome.code, 0) << outcome.error;

    const SystemState installed = ReadSystemState();
    const std::string product = std::string(getenv("ProgramFiles")) + "\\Zelmora\\Tessary";
    EXPECT_EQ(installed.count("driver " + std::string(kDriver)), 1u);
    EXPECT_EQ(PrinterNames(), (std::vector<std::string>{"Alpha", "B\u00fcro"}));
    EXPECT_EQ(installed.count("file " + product + "\\language\\tsyprUI_en_us_409.dll"), 1u);
    EXPECT_EQ(installed.at("file " + product + "\\printers\\alpha.json"), ProfileText("Alpha"));
    const std::string languages = installed.at("value Software\\Zelmora\\Tessary\\PrintRedir\\plugins\\tsyprui_source");
    const std::wstring wide(reinterpret_cast<const wchar_t*>(languages.data()));
    EXPECT_EQ(fs::path(wide), fs::path(product + "\\language\\"));
    EXPECT_EQ(wide.back(), L'\\');
    EXPECT_EQ(installed.count("folder " + std::string(getenv("ProgramData")) + "\\Zelmora\\Tessary"), 1u);
    const Json printers = QueryJson({L"printers"});
    EXPECT_EQ(printers.at(0).at("driver"), kDriver);
    EXPECT_EQ(printers.at(0).at("configVersion"), "0.3.256.1");

    const Outcome removed = RunPrintctl({L"remove"});
    EXPECT_EQ(removed.code, 0) << removed.error;
    EXPECT_NE(removed.out.find("removed printer \"Alpha\""), std::string::npos) << removed.out;
    EXPECT_EQ(Difference(before, ReadSystemState()), "");
    EXPECT_NE(RunPrintctl({L"remove"}).out.find("nothing was installed"), std::string::npos);
}

TEST_F(InstallTest, RemoveLeavesOtherPeoplesFiles)
{
    ASSERT_EQ(m_driver.Install().code, 0);
    const fs::path product = fs::path(_wgetenv(L"ProgramFiles")) / L"Zelmora" / L"Tessary";
    WriteText(product / L"printers" / L"own.json", "{}");
    // Another driver that has come to use a file of ours in the spooler's folder.
    const fs::path spooler = fs::path(_wgetenv(L"SystemRoot")) / L"system32" / L"spool" / L"drivers" / L"x64" / L"3";
    std::wstring name = L"Another Driver";
    std::wstring environment = L"Windows x64";
    std::wstring graphics = (spooler / L"wineps.drv").wstring();
    std::wstring data = (spooler / L"tessary.ppd").wstring();
    DRIVER_INFO_3W other{};
    other.cVersion = 3;
    other.pName = name.data();
    other.pEnvironment = environment.data();
    other.pDriverPath = graphics.data();
    other.pDataFile = data.data();
    other.pConfigFile = graphics.data();
    ASSERT_TRUE(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&other), APD_COPY_ALL_FILES));

    EXPECT_EQ(RunPrintctl({L"remove"}).code, 0);
    EXPECT_TRUE(fs::exists(product / L"printers" / L"own.json"));
    EXPECT_FALSE(fs::exists(product / L"printers" / L"alpha.json"));
    EXPECT_TRUE(fs::exists(data));
    EXPECT_TRUE(fs::exists(graphics));
    EXPECT_FALSE(fs::exists(spooler / L"tsyprui.dll"));
    DeletePrinterDriverExW(nullptr, environment.data(), name.data(), 0, 0);
    fs::remove(data);
    fs::remove_all(product.parent_path());
}

TEST_F(InstallTest, SecondInstallUpdatesAndStaysOne)
{
    ASSERT_EQ(m_driver.Install().code, 0);
    const SystemState first = ReadSystemState();
    ASSERT_EQ(m_driver.Install().code, 0);
    EXPECT_EQ(Difference(first, ReadSystemState()), "") << "the same files again change nothing";

    m_driver.PlaceLibrary(L"printctl_test_driver.dll", L"tsyprui.dll");
    AppendText(m_driver.Path() / L"tsyprui.dll", "newer");
    fs::remove(m_driver.Path() / L"printers" / L"alpha.json");
    m_driver.PlaceProfile(L"gamma.json", "Gamma");
    const Outcome outcome = m_driver.Install();
    ASSERT_EQ(outcome.code, 0) << outcome.error;
    EXPECT_EQ(Difference(first, ReadSystemState()).find("old"), std::string::npos) << "no copies left behind";
    const SystemState second = ReadSystemState();
    EXPECT_EQ(second.count("driver " + std::string(kDriver)), 1u);
    EXPECT_EQ(PrinterNames(), (std::vector<std::string>{"Alpha", "B\u00fcro", "Gamma"}));
    const std::string product = "file " + std::string(getenv("ProgramFiles")) + "\\Zelmora\\Tessary\\printers\\";
    EXPECT_EQ(second.count(product + "alpha.json"), 0u);
    EXPECT_EQ(second.count(product + "gamma.json"), 1u);
    const fs::path configFile = QueryJson({L"printers"}).at(0).at("configFile").get<std::string>();
    EXPECT_EQ(configFile.filename(), "tsyprui.dll");
    EXPECT_EQ(ReadText(configFile), ReadText(m_driver.Path() / L"tsyprui.dll"));
}

TEST_F(InstallTest, ReplacesLibrariesThatAProgramUses)
{
    ASSERT_EQ(m_driver.Install().code, 0);
    const fs::path module = QueryJson({L"printers"}).at(0).at("configFile").get<std::string>();
    const fs::path service = fs::path(_wgetenv(L"SystemRoot")) / L"system32" / L"tsyprserverapi.dll";
    const std::array<HMODULE, 2> used{LoadLibraryW(module.c_str()), LoadLibraryW(service.c_str())};
    EXPECT_TRUE(used[0] != nullptr && used[1] != nullptr);
    AppendText(m_driver.Path() / L"tsyprui.dll", "newer");
    AppendText(m_driver.Path() / L"tsyprserverapi.dll", "newer");
    m_driver.PlaceProfile(L"silent.json", "Silent");
    const std::string old = ReadText(module);
    const Outcome failed = m_driver.Install();
    EXPECT_EQ(failed.code, 3);
    EXPECT_EQ(failed.error.find("warning"), std::string::npos) << failed.error;
    EXPECT_EQ(ReadText(module), old);
    fs::remove(m_driver.Path() / L"printers" / L"silent.json");
    const Outcome outcome = m_driver.Install();
    EXPECT_EQ(outcome.code, 0) << outcome.error;
    EXPECT_EQ(ReadText(module), ReadText(m_driver.Path() / L"tsyprui.dll"));
    EXPECT_EQ(ReadText(service), ReadText(m_driver.Path() / L"tsyprserverapi.dll"));
    for (const HMODULE library : used)
    {
        FreeLibrary(library);
    }
}

TEST_F(InstallTest, PrinterMayCarryASessionSuffix)
{
    const Outcome outcome = m_driver.Install({L"--printer", L"Alpha,session 4", L"--port", L"LPT1:"});
    ASSERT_EQ(outcome.code, 0) << outcome.error;
    const Json printers = QueryJson({L"printers"});
    ASSERT_EQ(printers.size(), 1u);
    EXPECT_EQ(printers.at(0).at("name"), "Alpha,session 4");
    EXPECT_EQ(printers.at(0).at("port"), "LPT1:");
}

struct FailingCase
{
    const char* spoil;                   // what becomes of the driver folder: see Spoil
    std::vector<std::wstring> arguments; // "%" stands for the driver folder
    int code;
    const char* message;
};

const FailingCase kFailingCases[] = {
    {"remove tsyprui.dll", {}, 4, "tsyprui.dll\" is missing"},
    {"", {L"--language-dir", L"%\\nowhere"}, 4, "no language libraries"},
    {"", {L"--profiles", L"%"}, 4, "no printer profiles"},
    {"break printers/broken.json", {}, 4, "broken.json"},
    {"", {L"--printer", L"Omega,1"}, 2, "no printer profile is named \"Omega\""},
    {"", {L"--printer", L"a\\Alpha,1"}, 1, "cannot be a printer's name"},
    {"", {L"--data-file", L"%\\no.ppd"}, 4, "no.ppd"},
    {"break tsyprui.dll", {}, 3, "loading"},
    {"empty tsyprui.dll", {}, 3, "does not export Drv"},
    {"empty tsyprserverapi.dll", {}, 3, "does not export VpOpenRemotePrinter"},
    {"add Silent", {}, 3, "DrvConvertDevMode for \"Silent\""}, // the driver knows nothing of this second printer
};

// Does what the text says: removes a file, makes it no library and no profile, makes it a library without functions, or
// adds a printer.
void Spoil(const DriverFolder& driver, const std::string& what)
{
    const std::string object = what.substr(what.find(' ') + 1);
    if (what.starts_with("remove"))
    {
        fs::remove(driver.Path() / object);
    }
    else if (what.starts_with("break"))
    {
        WriteText(driver.Path() / object, "{ \"name\": ");
    }
    else if (what.starts_with("empty"))
    {
        driver.PlaceLibrary(L"printctl_test_empty.dll", fs::path(object));
    }
    else if (what.starts_with("add"))
    {
        driver.PlaceProfile(L"a0.json", "Aardvark");
        driver.PlaceProfile(L"added.json", object);
    }
}

struct FailingInstallTest : InstallTest, testing::WithParamInterface<std::tuple<bool, FailingCase>>
{
};

// Each fault leaves printers, driver, files and registry as they were, be it nothing or an earlier installation.
TEST_P(FailingInstallTest, LeavesEverythingAsItWas)
{
    const auto& [overAnother, failing] = GetParam();
    SCOPED_TRACE(failing.message);
    const fs::path& folder = m_driver.Path();
    if (overAnother)
    {
        ASSERT_EQ(m_driver.Install().code, 0);
        // So that the failing run has something to replace.
        AppendText(folder / L"tsyprui.dll", "newer");
        AppendText(folder / L"tsyprUI_en_us_409.dll", "newer");
        AppendText(folder / L"tsyprserverapi.dll", "newer");
        constexpr wchar_t elsewhere[] = L"X:\\elsewhere\\";
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        L"Software\\Zelmora\\Tessary\\PrintRedir\\plugins",
                        L"tsyprui_source",
                        REG_EXPAND_SZ,
                        elsewhere,
                        sizeof(elsewhere));
    }
    const SystemState before = ReadSystemState();
    Spoil(m_driver, failing.spoil);
    std::vector<std::wstring> arguments = failing.arguments;
    for (std::wstring& argument : arguments)
    {
        argument.replace(0, argument.starts_with(L'%') ? 1 : 0, argument.starts_with(L'%') ? folder.wstring() : L"");
    }
    const Outcome outcome = m_driver.Install(arguments);
    EXPECT_EQ(outcome.code, failing.code);
    EXPECT_NE(outcome.error.find(failing.message), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.error.find("warning"), std::string::npos) << outcome.error;
    EXPECT_EQ(Difference(before, ReadSystemState()), "");
}

INSTANTIATE_TEST_SUITE_P(Faults,
                         FailingInstallTest,
                         testing::Combine(testing::Bool(), testing::ValuesIn(kFailingCases)));

} // namespace

} // namespace tsypr::printctl_tests
