// Windows' DocumentProperties with a driver that is not ours, over our property sheet interface.
#include "tests/compstui/sheet_fixture.h"
#include "tools/compstui/contract_exports.h"
#include "ui/document_property_header.h"

#include <winspool.h>

#include <filesystem>

#include <gtest/gtest.h>

namespace tsypr::compstui_tests
{
namespace
{

std::wstring g_name = L"Property Sheets";
Describer* g_driver = nullptr;

LONG CALLBACK CallDriver(PROPSHEETUI_INFO* info, LPARAM lParam)
{
    return g_driver->Answer(*info, lParam);
}

template <typename Function>
Function FunctionOf(HMODULE library, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// Installs the driver and a printer of it in the prefix, where they stay, and opens the printer.
HANDLE InstallPrinter()
{
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring file = std::filesystem::path(program).parent_path() / L"compstui_test_driver.dll";
    std::wstring environment = L"Windows x64";
    DRIVER_INFO_3W driver = {};
    driver.cVersion = 3;
    driver.pName = g_name.data();
    driver.pEnvironment = environment.data();
    driver.pDriverPath = driver.pDataFile = driver.pConfigFile = file.data();
    const DWORD flags = APD_COPY_ALL_FILES | APD_COPY_FROM_DIRECTORY;
    EXPECT_TRUE(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<BYTE*>(&driver), flags)) << GetLastError();
    std::wstring processor = L"winprint";
    std::wstring port = L"LPT1:";
    std::wstring dataType = L"RAW";
    PRINTER_INFO_2W info = {};
    info.pPrinterName = info.pDriverName = g_name.data();
    info.pPortName = port.data();
    info.pPrintProcessor = processor.data();
    info.pDatatype = dataType.data();
    const HANDLE added = AddPrinterW(nullptr, 2, reinterpret_cast<BYTE*>(&info));
    EXPECT_TRUE(added != nullptr || GetLastError() == ERROR_PRINTER_ALREADY_EXISTS) << GetLastError();
    ClosePrinter(added);
    HANDLE printer = nullptr;
    EXPECT_TRUE(OpenPrinterW(g_name.data(), &printer, nullptr));
    return printer;
}

// Lets the copy of the driver that the spooler has made describe the test's sheet.
void ConnectDriver(HANDLE printer)
{
    DWORD needed = 0;
    std::vector<BYTE> buffer(4096);
    ASSERT_TRUE(GetPrinterDriverW(printer, nullptr, 3, buffer.data(), 4096, &needed));
    const HMODULE driver = LoadLibraryW(reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data())->pConfigFile);
    ASSERT_NE(driver, nullptr);
    FunctionOf<void(WINAPI*)(PFNPROPSHEETUI)>(driver, "SetDescriber")(CallDriver);
}

struct Case
{
    std::vector<int> buttons; // none for a driver that shows no sheet
    LONG answer;
    short copies;
    Events events;
};

const Case kCases[] = {
    {{IDOK}, IDOK, 42, {"INIT", "apply", "RESULT", "DESTROY"}},
    {{IDCANCEL}, IDCANCEL, 7, {"INIT", "reset", "DESTROY"}},
    {{kCloseBox}, IDCANCEL, 7, {"INIT", "reset", "DESTROY"}},
    {{}, -1, 7, {"INIT", "DESTROY"}},
};

void ExpectOutcome(HANDLE printer, const Case& expected)
{
    DEVMODEW out = {};
    out.dmSize = sizeof(out);
    out.dmCopies = 7;
    Events events;
    Describer driver(events);
    Page page(driver, kFirstPage);
    g_driver = &driver;
    driver.on[PROPSHEETUI_REASON_INIT] = [&](PROPSHEETUI_INFO& info, LPARAM lParam)
    {
        const auto& header = *reinterpret_cast<const DOCUMENTPROPERTYHEADER*>(lParam);
        EXPECT_EQ(info.lParamInit, lParam);
        EXPECT_EQ(header.pszPrinterName, g_name);
        EXPECT_EQ(header.pdmOut, &out);
        EXPECT_EQ(header.fMode, static_cast<DWORD>(DM_IN_PROMPT | DM_OUT_BUFFER));
        return !expected.buttons.empty() && page.Add() != nullptr ? 1 : 0;
    };
    driver.on[PROPSHEETUI_REASON_SET_RESULT] = [&](PROPSHEETUI_INFO&, LPARAM)
    {
        out.dmCopies = 42;
        return 1;
    };
    page.on[static_cast<int>(PSN_APPLY)] = [&](HWND, const PSHNOTIFY&)
    {
        EXPECT_EQ(page.SetResult(CPSUI_OK), 2);
        return PSNRET_NOERROR;
    };
    const User user(expected.buttons);
    EXPECT_EQ(DocumentPropertiesW(nullptr, printer, g_name.data(), &out, nullptr, DM_IN_PROMPT | DM_OUT_BUFFER),
              expected.answer);
    EXPECT_EQ(out.dmCopies, expected.copies);
    EXPECT_EQ(events, expected.events);
}

TEST(DocumentPropertiesTest, ReturnsTheButtonAndTheDriversSettings)
{
    const HANDLE printer = InstallPrinter();
    ConnectDriver(printer);
    for (const Case& one : kCases)
    {
        SCOPED_TRACE(one.buttons.empty() ? 0 : one.buttons.front());
        ExpectOutcome(printer, one);
    }
    ClosePrinter(printer);
    // It was our interface that winspool called, and nobody made a mistake.
    const auto faults =
        FunctionOf<decltype(&CompstuiContractFaults)>(GetModuleHandleW(L"compstui.dll"), "CompstuiContractFaults");
    ASSERT_NE(faults, nullptr);
    EXPECT_EQ(faults(), 0U);
}

} // namespace
} // namespace tsypr::compstui_tests
