#include "bench/benches.h"
#include "bench/device_mode.h"
#include "bench/library.h"
#include "remote/driver_exports.h"
#include "ui/document_property_header.h"
#include "ui/document_property_sheets.h"

#include <wingdi.h>

#include <functional>
#include <stdexcept>
#include <vector>

namespace tsypr::bench
{
namespace
{

struct DriverFunctions
{
    explicit DriverFunctions(const Library& library)
    {
        library.Bind("DrvDeviceCapabilities", capabilities);
        library.Bind("DrvSplDeviceCaps", spoolerCapabilities);
        library.Bind("DrvConvertDevMode", convert);
        library.Bind("DrvDocumentPropertySheets", propertySheets);
    }

    decltype(DrvDeviceCapabilities)* capabilities;
    decltype(DrvSplDeviceCaps)* spoolerCapabilities;
    decltype(DrvConvertDevMode)* convert;
    decltype(DrvDocumentPropertySheets)* propertySheets;
};

constexpr DWORD kConvert = 1;
constexpr DWORD kDriverDefault = 4;

wchar_t g_laser[] = L"Office Laser";
wchar_t g_color[] = L"Studio Color"; // takes papers of any size
wchar_t g_unknown[] = L"Nobody's Printer";

// A caller's output buffer, large enough for either printer's device mode.
struct Output
{
    alignas(DEVMODEW) unsigned char bytes[4096];

    DEVMODEW* Get() noexcept
    {
        return reinterpret_cast<DEVMODEW*>(bytes);
    }
};

LONG AskSheets(const DriverFunctions& driver, wchar_t* printer, DWORD mode, DeviceMode in)
{
    Output out = {};
    DOCUMENTPROPERTYHEADER header = {};
    header.cbSize = sizeof(header);
    header.hPrinter = INVALID_HANDLE_VALUE;
    header.pszPrinterName = printer;
    header.pdmIn = in.Get();
    header.pdmOut = out.Get();
    header.fMode = mode;
    return driver.propertySheets(nullptr, reinterpret_cast<LPARAM>(&header));
}

bool Merges(const DriverFunctions& driver, wchar_t* printer, DWORD fields, short paper = DMPAPER_A4)
{
    DeviceMode in = MakeDeviceMode(fields);
    in.Get()->dmPaperSize = paper;
    return AskSheets(driver, printer, DM_IN_BUFFER | DM_OUT_BUFFER, in) == 1;
}

bool Converts(const DriverFunctions& driver, wchar_t* printer, DWORD mode, bool withOutput)
{
    DeviceMode in = MakeDeviceMode(DM_COPIES);
    Output out = {};
    std::memcpy(out.bytes, in.bytes, sizeof(in.bytes));
    LONG needed = sizeof(out.bytes);
    return driver.convert(printer, in.Get(), withOutput ? out.Get() : nullptr, &needed, mode) != FALSE;
}

// One driver call; it returns whether the driver answered as it should.
struct Case
{
    const char* name;
    CallCounts expected;
    std::function<bool(const DriverFunctions&)> call;
};

CallCounts CapabilityCounts(unsigned withData)
{
    CallCounts counts;
    counts.open = counts.capabilities = counts.close = 1;
    counts.freeCapabilities = withData;
    return counts;
}

// The printer's device mode, and as many lists of the printer's.
CallCounts DevModeCounts(unsigned lookUps = 0)
{
    CallCounts counts;
    counts.open = counts.close = 1 + lookUps;
    counts.getDevMode = counts.freeDevMode = 1;
    counts.capabilities = counts.freeCapabilities = lookUps;
    return counts;
}

CallCounts OpenOnly()
{
    CallCounts counts;
    counts.open = 1;
    return counts;
}

void AddCapabilityCases(std::vector<Case>& cases)
{
    static WORD list[64];
    cases.push_back({"DrvDeviceCapabilities, DC_PAPERS", CapabilityCounts(1), [](const DriverFunctions& driver) {
                         return driver.capabilities(nullptr, g_laser, DC_PAPERS, list, nullptr) == 5;
                     }});
    cases.push_back(
        {"DrvDeviceCapabilities, DC_PAPERS, count only", CapabilityCounts(0), [](const DriverFunctions& driver) {
             return driver.capabilities(nullptr, g_laser, DC_PAPERS, nullptr, nullptr) == 5;
         }});
    cases.push_back({"DrvDeviceCapabilities, DC_COPIES", CapabilityCounts(0), [](const DriverFunctions& driver) {
                         return driver.capabilities(nullptr, g_laser, DC_COPIES, list, nullptr) == 99;
                     }});
    cases.push_back({"DrvDeviceCapabilities, unknown printer", OpenOnly(), [](const DriverFunctions& driver) {
                         return driver.capabilities(nullptr, g_unknown, DC_PAPERS, list, nullptr) == GDI_ERROR;
                     }});
    cases.push_back({"DrvSplDeviceCaps, DC_PAPERS", CapabilityCounts(1), [](const DriverFunctions& driver) {
                         return driver.spoolerCapabilities(nullptr, g_laser, DC_PAPERS, list, 64, nullptr) == 5;
                     }});
}

void AddConvertCases(std::vector<Case>& cases)
{
    cases.push_back({"DrvConvertDevMode, driver default", DevModeCounts(), [](const DriverFunctions& driver) {
                         return Converts(driver, g_laser, kDriverDefault, true);
                     }});
    cases.push_back({"DrvConvertDevMode, driver default, size only",
                     DevModeCounts(),
                     [](const DriverFunctions& driver) { return !Converts(driver, g_laser, kDriverDefault, false); }});
    cases.push_back({"DrvConvertDevMode, convert", {}, [](const DriverFunctions& driver) {
                         return Converts(driver, g_laser, kConvert, true);
                     }});
}

void AddSheetCases(std::vector<Case>& cases)
{
    constexpr DWORD kPaperWithSize = DM_PAPERSIZE | DM_PAPERLENGTH | DM_PAPERWIDTH;
    cases.push_back({"DrvDocumentPropertySheets, size only", DevModeCounts(), [](const DriverFunctions& driver) {
                         return AskSheets(driver, g_laser, 0, MakeDeviceMode(0)) == LONG{kDeviceModeBytes};
                     }});
    struct MergeCase
    {
        const char* name;
        wchar_t* printer;
        DWORD fields;
        short paper;
        unsigned lookUps;
    };
    const MergeCase merges[] = {
        {"DrvDocumentPropertySheets, merge without look-ups", g_laser, DM_COPIES | DM_FORMNAME, DMPAPER_A4, 0},
        {"DrvDocumentPropertySheets, merge paper", g_laser, DM_PAPERSIZE, DMPAPER_A4, 1},
        {"DrvDocumentPropertySheets, merge paper not offered", g_laser, kPaperWithSize, DMPAPER_A2, 1},
        {"DrvDocumentPropertySheets, merge paper with size", g_laser, kPaperWithSize, DMPAPER_A4, 2},
        {"DrvDocumentPropertySheets, merge user-defined paper", g_color, kPaperWithSize, DMPAPER_USER, 1},
        {"DrvDocumentPropertySheets, merge media type", g_laser, DM_MEDIATYPE, DMPAPER_A4, 1},
        {"DrvDocumentPropertySheets, merge paper and media", g_laser, kPaperWithSize | DM_MEDIATYPE, DMPAPER_A4, 3}};
    for (const MergeCase& merge : merges)
    {
        cases.push_back({merge.name, DevModeCounts(merge.lookUps), [merge](const DriverFunctions& driver) {
                             return Merges(driver, merge.printer, merge.fields, merge.paper);
                         }});
    }
}

} // namespace

void CheckServiceCalls(Report& report)
{
    const Library module(L"tsyprui.dll");
    const Library service(L"tsyprserverapi.dll");
    const DriverFunctions driver(module);
    decltype(VpReadCallCounters)* read = nullptr;
    decltype(VpResetCallCounters)* reset = nullptr;
    service.Bind("VpReadCallCounters", read);
    service.Bind("VpResetCallCounters", reset);
    std::vector<Case> cases;
    AddCapabilityCases(cases);
    AddConvertCases(cases);
    AddSheetCases(cases);
    for (const Case& one : cases)
    {
        reset();
        if (!one.call(driver))
        {
            throw std::runtime_error(std::string("unexpected answer: ") + one.name);
        }
        VpCallCounters counters = {};
        read(&counters);
        report.checks.push_back({one.name, one.expected, CountsFrom(counters)});
    }
}

} // namespace tsypr::bench
