// Windows' DocumentProperties with a driver that is not ours, over our property sheet interface.
#include "tests/compstui/sheet_fixture.h"
#include "tests/compstui/test_driver.h"
#include "tools/compstui/contract_exports.h"

#include <winspool.h>

#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tsypr::compstui_tests
{
namespace
{

using testing::ElementsAre;

// Installs the driver and a printer of it in the prefix, where they stay.
class DocumentPropertiesTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring file = std::filesystem::path(program).parent_path() / L"compstui_test_driver.dll";
        std::wstring environment = L"Windows x64";
        DRIVER_INFO_3W driver = {};
        driver.cVersion = 3;
        driver.pName = s_name.data();
        driver.pEnvironment = environment.data();
        driver.pDriverPath = driver.pDataFile = driver.pConfigFile = file.data();
        const DWORD flags = APD_COPY_ALL_FILES | APD_COPY_FROM_DIRECTORY;
        ASSERT_TRUE(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver), flags)) << GetLastError();
        std::wstring processor = L"winprint";
        std::wstring port = L"LPT1:";
        std::wstring dataType = L"RAW";
        PRINTER_INFO_2W printer = {};
        printer.pPrinterName = printer.pDriverName = s_name.data();
        printer.pPortName = port.data();
        printer.pPrintProcessor = processor.data();
        printer.pDatatype = dataType.data();
        const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
        ASSERT_TRUE(added != nullptr || GetLastError() == ERROR_PRINTER_ALREADY_EXISTS) << GetLastError();
        ClosePrinter(added);
        ASSERT_TRUE(OpenPrinterW(s_name.data(), &s_printer, nullptr));
        LoadDriver();
    }

    static void TearDownTestSuite()
    {
        ClosePrinter(s_printer);
        FreeLibrary(s_driver);
    }

    static LONG Prompt(DEVMODEW& out, int button)
    {
        const User user({button});
        return DocumentPropertiesW(nullptr, s_printer, s_name.data(), &out, nullptr, DM_IN_PROMPT | DM_OUT_BUFFER);
    }

    static LONG WithoutSheet(DEVMODEW& in)
    {
        const DWORD mode = DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER;
        DEVMODEW out = {};
        return DocumentPropertiesW(nullptr, s_printer, s_name.data(), &out, &in, mode);
    }

    // What the driver was asked since the last time.
    static Events DriverEvents()
    {
        char text[1024];
        reinterpret_cast<TestDriverLogFunction>(reinterpret_cast<void*>(GetProcAddress(s_driver, "TestDriverLog")))(
            text, sizeof(text));
        Events events;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
        {
            events.push_back(line);
        }
        return events;
    }

private:
    // The copy that the spooler has made and uses.
    static void LoadDriver()
    {
        DWORD needed = 0;
        std::vector<BYTE> buffer(4096);
        ASSERT_TRUE(GetPrinterDriverW(s_printer, nullptr, 3, buffer.data(), 4096, &needed));
        s_driver = LoadLibraryW(reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data())->pConfigFile);
        ASSERT_NE(s_driver, nullptr);
    }

    inline static std::wstring s_name = L"Property Sheets";
    inline static HANDLE s_printer = nullptr;
    inline static HMODULE s_driver = nullptr;
};

TEST_F(DocumentPropertiesTest, ReturnsTheButtonAndTheDriversSettings)
{
    struct Case
    {
        int button;
        LONG answer;
        short copies;
        Events events;
    };
    const Case cases[] = {
        {IDOK, IDOK, kTestDriverCopies, {"INIT", "RESULT", "SET_RESULT answered 2", "DESTROY closed by the user"}},
        {IDCANCEL, IDCANCEL, 7, {"INIT", "DESTROY closed by the user"}},
        {kCloseBox, IDCANCEL, 7, {"INIT", "DESTROY closed by the user"}},
    };
    for (const Case& one : cases)
    {
        SCOPED_TRACE(one.button);
        DEVMODEW out = {};
        out.dmSize = sizeof(out);
        out.dmCopies = 7;
        EXPECT_EQ(Prompt(out, one.button), one.answer);
        EXPECT_EQ(out.dmCopies, one.copies);
        EXPECT_EQ(DriverEvents(), one.events);
    }
    DEVMODEW refused = {};
    refused.dmSize = sizeof(refused);
    refused.dmCopies = kTestDriverRefusedCopies;
    EXPECT_EQ(WithoutSheet(refused), -1);
    EXPECT_EQ(DriverEvents(), Events({"INIT", "DESTROY"}));

    // It was our interface that winspool called, and neither it nor the driver made a mistake.
    const HMODULE used = GetModuleHandleW(L"compstui.dll");
    const auto faults = reinterpret_cast<decltype(&CompstuiContractFaults)>(
        reinterpret_cast<void*>(GetProcAddress(used, "CompstuiContractFaults")));
    ASSERT_NE(faults, nullptr);
    EXPECT_EQ(faults(), 0U);
}

} // namespace
} // namespace tsypr::compstui_tests
