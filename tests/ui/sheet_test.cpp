// The property sheet through the driver's export, from opening to the result.
#include "tests/module/heap_blocks.h"
#include "tests/remote/allocation_faults.h"
#include "tests/ui/sheet_fixture.h"
#include "tests/watermark/system_calls.h"

#include <set>

namespace tsypr::test
{
namespace
{

const std::vector<int> kAllPages = {112, 107, 117, 120, 121};
const std::vector<int> kCommonPages = {112, 107, 117, 120};

class Sheet : public SheetTest
{
protected:
    std::wstring Keywords()
    {
        const PrivateDevMode& block = out.Private();
        return Text(block.nupLayout) + L" " + Text(block.staple) + L" " + Text(block.punch);
    }
    static DWORD StoredChoice()
    {
        DWORD value = 0xDEAD;
        DWORD size = sizeof(value);
        RegGetValueW(HKEY_CURRENT_USER, kDriverKeyW, L"DefaultChoice", RRF_RT_REG_DWORD, nullptr, &value, &size);
        return value;
    }
};

TEST_F(Sheet, HasItsPagesInOrder)
{
    const std::tuple<const wchar_t*, std::vector<int>, std::vector<int>, ULONG_PTR> cases[] = {
        {kOwnDriverName, {}, kAllPages, 0},
        {L"Tessary Universal EMF Driver ", {}, kCommonPages, 0},
        {L"tessary Universal EMF Driver", {107, 117}, {112, 120}, 0},
        {L"Other", kCommonPages, {}, 0x5A}};
    for (const auto& [driver, refused, pages, result] : cases)
    {
        g_spooler.text = driver;
        log.Take();
        FakeSheet sheet(header);
        sheet.refused = refused;
        EXPECT_EQ(1, sheet.Open());
        EXPECT_EQ(pages, sheet.templates);
        EXPECT_EQ(result, sheet.info.Result);
        EXPECT_STREQ(driver, CurrentDriverName().text);
        EXPECT_STREQ(L"Office Laser", sheet.Context().printerName);
        EXPECT_EQ(out.Get(), sheet.Context().devMode);
        EXPECT_EQ(L"Office Laser", Text(out.Private().printerName));
        EXPECT_EQ(Messages{"verbose DrvDocumentPropertySheets, the UPD driver name is " +
                           std::string(driver, driver + wcslen(driver))},
                  Lines("DrvDocumentPropertySheets"));
    }
    PROPSHEETUI_INFO untouched = {};
    for (const WORD reason : {WORD{PROPSHEETUI_REASON_GET_INFO_HEADER}, WORD{PROPSHEETUI_REASON_GET_ICON}, WORD{5}})
    {
        untouched.Reason = reason;
        PROPSHEETUI_INFO_HEADER title = {};
        EXPECT_EQ(1, DrvDocumentPropertySheets(&untouched, reinterpret_cast<LPARAM>(&title)));
        EXPECT_EQ(0, title.cbSize);
    }
}

TEST_F(Sheet, TellsWhyItCannotBeShown)
{
    service.devMode.reset();
    {
        FakeSheet sheet(header);
        log.Take();
        EXPECT_EQ(0, sheet.Open());
        EXPECT_EQ(0U, sheet.info.UserData);
    }
    EXPECT_EQ("error DrvDocumentPropertySheets, failed to retrieve devmode for printer Office Laser.",
              log.TakeErrors().back());
    service.devMode = dm.Whole();
    header.pdmOut = nullptr;
    EXPECT_EQ(0, FakeSheet(header).Open());
    EXPECT_EQ(Messages{"error MergeAndCopyDM, dmOut and dmCurrent cannot be NULL."}, log.TakeErrors());

    header.pdmOut = out.Get();
    dm.Private().featureBitmap = 0;
    service.devMode = dm.Whole();
    std::set<std::string> errors;
    bool happened = true;
    for (long n = 0; happened; ++n)
    {
        FakeSheet sheet(header);
        sheet.pages.reserve(8);
        sheet.templates.reserve(8);
        LONG opened = 0;
        {
            const AllocationFault fault(n);
            opened = sheet.Open();
            happened = fault.Happened();
        }
        const Messages lines = log.TakeErrors();
        errors.insert(lines.begin(), lines.end());
        EXPECT_TRUE(opened == 0 || !sheet.pages.empty());
    }
    for (const char* name : {"layout", "paper", "advanced", "finishing", "compression"})
    {
        EXPECT_TRUE(errors.contains("error DrvDocumentPropertySheets, failed to allocate memory for " +
                                    std::string(name) + " page."));
    }
}

TEST_F(Sheet, WritesTheResultFieldByField)
{
    constexpr DWORD kOptional = DM_FORMNAME | DM_DEFAULTSOURCE | DM_ORIENTATION | DM_DUPLEX | DM_MEDIATYPE;
    constexpr DWORD kAlways = DM_PAPERSIZE | DM_PRINTQUALITY | DM_YRESOLUTION | DM_COPIES;
    const std::pair<DWORD, const char*> cases[] = {{kOptional, "1 4 2 3 300 2 -4 1200 5 1"},
                                                   {0, "1 0 1 0 0 2 -4 1200 5 0"}};
    const std::string dump = "verbose PrintUtils::DumpDevMode(): ";
    for (const auto& [fields, values] : cases)
    {
        dm->dmFields = fields;
        service.devMode = dm.Whole();
        DeviceMode in;
        in->dmFields = fields != 0 ? DM_COPIES | DM_COLLATE : 0;
        in->dmCopies = 77;
        in->dmCollate = DMCOLLATE_TRUE;
        header.pdmIn = in.Get();
        FakeSheet sheet(header);
        sheet.Open();
        EXPECT_EQ((Messages{dump + "PROPSHEETUI_REASON_INIT, dmIn:", dump + "PROPSHEETUI_REASON_INIT, dmOut:"}),
                  Lines("PROPSHEETUI_REASON_INIT"));
        UIContext& chosen = sheet.Context();
        chosen.paperSize = 1;
        std::fill_n(chosen.formName, 32, L'f');
        chosen.paperSource = 4;
        chosen.orientation = 2;
        chosen.duplex = 3;
        chosen.mediaType = 300;
        chosen.color = 2;
        chosen.printQuality = -4;
        chosen.yResolution = 1200;
        chosen.copies = 5;
        chosen.printAsImage = chosen.showPreDialog = 1;
        chosen.printChoice = 1;
        chosen.compression = 3;
        chosen.pagesPerSheet = 9;
        chosen.nupDirectionIndex = 0;
        chosen.stapleIndex = chosen.punchIndex = 1;
        std::memset(&chosen.watermark, 0x41, sizeof(chosen.watermark));
        const Bytes before = out.Whole();
        EXPECT_EQ(1, sheet.TellResult(CPSUI_CANCEL));
        EXPECT_EQ(before, out.Whole());
        EXPECT_EQ(1, sheet.TellResult(CPSUI_OK));
        EXPECT_EQ((Messages{dump + "UI_REASON_SET_RESULT, dmIn:", dump + "UI_REASON_SET_RESULT, dmOut:"}),
                  Lines("UI_REASON_SET_RESULT"));
        EXPECT_EQ(kAlways | fields | (fields != 0 ? DM_COLLATE : 0U), out->dmFields);
        EXPECT_EQ(values,
                  Numbers({out->dmPaperSize,
                           out->dmDefaultSource,
                           out->dmOrientation,
                           out->dmDuplex,
                           out->dmMediaType,
                           out->dmColor,
                           out->dmPrintQuality,
                           out->dmYResolution,
                           out->dmCopies,
                           out->dmCollate}));
        EXPECT_EQ(fields != 0 ? std::wstring(31, L'f') : L"A4", out->dmFormName);
        const PrivateDevMode& block = out.Private();
        EXPECT_EQ("1 1 1 3 9",
                  Numbers({block.isPrintAsImage,
                           block.isShowPreDlg,
                           block.printTargetChoice,
                           block.compression,
                           block.pagesPerSheet}));
        EXPECT_EQ(L"psk:RightBottom psk:SaddleStitch psk:LeftEdge", Keywords());
        EXPECT_EQ(0, std::memcmp(block.watermark, &chosen.watermark, kWatermarkBytes));
        EXPECT_EQ(1U, StoredChoice());
        FailCall("RegCreateKeyExW");
        log.Take();
        EXPECT_EQ(1, sheet.TellResult(CPSUI_OK));
        EXPECT_EQ(Messages{"error DrvDocumentPropertySheets, failed to store print choice into registry."},
                  Lines("error"));
    }
}

TEST_F(Sheet, CarriesAnyWatermark)
{
    for (const std::wstring& text : kOddTexts)
    {
        WatermarkBlock block = {};
        std::memset(&block.font, static_cast<int>(text.size()) * 37 + 129, sizeof(block.font));
        text.copy(block.text, kWatermarkTextChars);
        std::memcpy(dm.Private().watermark, &block, sizeof(block));
        service.devMode = dm.Whole();
        FakeSheet sheet(header);
        sheet.Open();
        sheet.Show();
        log.Take();
        sheet.PressOk();
        EXPECT_EQ(0, std::memcmp(out.Private().watermark, &block, sizeof(block)));
        const Messages told = Lines("verbose DrvDocumentPropertySheets, text: ");
        ASSERT_EQ(kAllPages.size(), told.size());
        EXPECT_TRUE(text.front() != L'x' || told[0].ends_with(": " + std::string(127, 'x') + ".")) << told[0];
    }
}

TEST_F(Sheet, KeepsWhatCannotBeChosen)
{
    const std::tuple<uint32_t, int32_t, const wchar_t*, uint32_t, DWORD, int16_t, int32_t, int32_t, bool> cases[] = {
        {kEveryFeature, -1, L"Office Laser", 9, 1, 256, 500, 600, true},
        {kEveryFeature, 2, L"Office Laser", 9, 1, 256, 0, 600, false},
        {kEveryFeature, 0, L"Unknown", 9, 1, 256, 500, 0, false},
        {0, 0, L"Office Laser", 4, 0, 9, 500, 600, false}};
    constexpr DWORD kDimensions = DM_PAPERLENGTH | DM_PAPERWIDTH;
    PrivateDevMode& block = dm.Private();
    for (WideField<kKeywordChars>* keyword : {&block.nupLayout, &block.staple, &block.punch})
    {
        keyword->Write(L"kept");
    }
    dm->dmFields |= kDimensions;
    for (const auto& [features, index, printer, pages, lock, paper, width, length, dimensions] : cases)
    {
        SetMachine(kPolicyKeyW, L"DisablePrintChoice", lock);
        block.featureBitmap = features;
        service.devMode = dm.Whole();
        FakeSheet sheet(header);
        sheet.Open();
        UIContext& chosen = sheet.Context();
        chosen.pagesPerSheet = 9;
        chosen.nupDirectionIndex = chosen.stapleIndex = chosen.punchIndex = index;
        chosen.paperSize = paper;
        chosen.customPaperWidth = width;
        chosen.customPaperLength = length;
        chosen.printChoice = 1;
        wcscpy(chosen.printerName, printer);
        sheet.TellResult(CPSUI_OK);
        EXPECT_EQ(L"kept kept kept", Keywords());
        EXPECT_EQ(pages, out.Private().pagesPerSheet);
        EXPECT_EQ(dimensions ? kDimensions : 0U, out->dmFields & kDimensions);
        EXPECT_TRUE(!dimensions || (out->dmPaperWidth == 500 && out->dmPaperLength == 600));
        EXPECT_EQ(lock != 0 ? 0xDEAD : 1U, StoredChoice());
        EXPECT_EQ(1U, out.Private().printTargetChoice);
    }
}

// Without DM_OUT_BUFFER the output counts only if it holds a device mode like the printer's; else the sheet works on
// the fetched one, which lives as long.
TEST_F(Sheet, LeavesMemoryAloneThatIsNoOutput)
{
    enum Output
    {
        None,
        Garbage,
        Valid
    };
    DeviceMode in;
    in->dmFields = DM_ORIENTATION;
    in->dmOrientation = DMORIENT_LANDSCAPE;
    header.pdmIn = in.Get();
    const std::pair<DWORD, Output> cases[] = {
        {0, None}, {0, Garbage}, {0, Valid}, {DM_IN_BUFFER, Garbage}, {DM_IN_BUFFER, Valid}};
    for (const auto& [mode, output] : cases)
    {
        out = output == Valid ? dm : DeviceMode(220, 1112, 0x5A);
        out.Private().signature = output == Valid ? kPrivateDevModeSignature : 0;
        header.pdmOut = output != None ? out.Get() : nullptr;
        header.fMode = mode;
        // One unfilled buffer for both is no input either.
        header.pdmIn = output == Garbage && mode == 0 ? out.Get() : in.Get();
        const Bytes before = out.Whole();
        log.Take();
        FakeSheet sheet(header);
        ASSERT_EQ(1, sheet.Open());
        EXPECT_EQ(output == Valid, sheet.Context().devMode == out.Get());
        sheet.Show();
        sheet.Choose(IDC_PAPER_SIZE, 1);
        sheet.PressOk();
        EXPECT_EQ(DMPAPER_LETTER, sheet.Context().devMode->dmPaperSize);
        EXPECT_EQ(mode == 0 ? DMORIENT_PORTRAIT : DMORIENT_LANDSCAPE, sheet.Context().devMode->dmOrientation);
        EXPECT_EQ(output == Valid, before != out.Whole());
        std::string lines;
        for (const std::string& line : log.Take())
        {
            lines += line + "\n";
        }
        EXPECT_EQ(header.pdmIn == in.Get(), lines.find("SET_RESULT, dmIn:") != std::string::npos);
    }
}

// With DM_NOPERMISSION the pages show the settings, and the user changes nothing.
TEST_F(Sheet, IsReadOnlyWithoutPermission)
{
    header.fMode |= DM_NOPERMISSION;
    FakeSheet sheet(header);
    ASSERT_EQ(1, sheet.Open());
    const Bytes before = out.Whole();
    sheet.Show(); // when some pages store settings
    for (const FakeSheet::Page& one : sheet.pages)
    {
        for (HWND control = GetWindow(one.dialog, GW_CHILD); control != nullptr;
             control = GetWindow(control, GW_HWNDNEXT))
        {
            const bool takesKeys = (GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP) != 0;
            EXPECT_FALSE(takesKeys && IsWindowEnabled(control)) << GetDlgCtrlID(control);
        }
    }
    sheet.Choose(IDC_ORIENTATION, 1);
    sheet.PressOk();
    EXPECT_EQ(before, out.Whole());
    EXPECT_EQ(0xDEAD, StoredChoice());
}

TEST_F(Sheet, OpensWithoutAPrivateBlock)
{
    dm.Private().signature = 0;
    const Bytes bytes = dm.Whole();
    service.devMode = bytes;
    FakeSheet sheet(header);
    ASSERT_EQ(1, sheet.Open());
    sheet.Show();
    sheet.Choose(IDC_ORIENTATION, 1);
    sheet.PressOk();
    EXPECT_EQ(DMORIENT_LANDSCAPE, out->dmOrientation);
    const Bytes result = out.Whole();
    EXPECT_TRUE(std::equal(bytes.begin() + 220, bytes.end(), result.begin() + 220)) << "nothing was written there";
    EXPECT_EQ(0xDEAD, StoredChoice());
}

// The calls of docs/preferences-dialog.md, each of which takes its time.
TEST_F(Sheet, AsksTheServiceNoMoreThanItMust)
{
    const auto list = [](const std::string& index) {
        return Messages{"open Office Laser", "caps " + index, "close", "freeCaps"};
    };
    const auto number = [](const std::string& index) {
        return Messages{"open Office Laser", "caps " + index, "close"};
    };
    Messages expected = {"open Office Laser", "getDevMode", "close", "freeDevMode"};
    const Messages prefetch = {"open Office Laser", "query DM2PT", "query PT2PC", "freePT", "freePT", "close"};
    expected.insert(expected.end(), prefetch.begin(), prefetch.end());
    for (const Messages& calls : {number("17"),
                                  number("7"),
                                  list("12"),
                                  list("6"),
                                  list("16"),
                                  list("2"),
                                  number("32"),
                                  list("13"),
                                  number("18")})
    {
        expected.insert(expected.end(), calls.begin(), calls.end());
    }
    service.delay = 20;
    {
        FakeSheet sheet(header);
        ASSERT_EQ(1, sheet.Open());
        sheet.Show();
    }
    service.delay = 0;
    EXPECT_EQ(expected, service.TakeCalls());
}

// A sheet and the page that it opens with, and a service that answers at once: what the dialog adds to the time of its
// calls. The log is off, as it is for users.
TEST_F(Sheet, IsThereAtOnce)
{
    LogStop();
    std::vector<double> milliseconds(15);
    LARGE_INTEGER frequency = {};
    QueryPerformanceFrequency(&frequency);
    for (double& one : milliseconds)
    {
        LARGE_INTEGER begin = {};
        LARGE_INTEGER end = {};
        QueryPerformanceCounter(&begin);
        FakeSheet sheet(header);
        sheet.Open();
        sheet.Show(1);
        QueryPerformanceCounter(&end);
        one = static_cast<double>(end.QuadPart - begin.QuadPart) * 1000 / static_cast<double>(frequency.QuadPart);
    }
    // The fastest one counts, which nothing else on the machine disturbed.
    std::sort(milliseconds.begin(), milliseconds.end());
    RecordProperty("medianMicroseconds", static_cast<int>(milliseconds[milliseconds.size() / 2] * 1000));
    EXPECT_LT(milliseconds.front(), 100);
}

// The pages are made on every 25th opening, which takes most of the time, or on each with TESSARY_SHOW_ALWAYS.
TEST_F(Sheet, OpensManyTimesWithoutGrowth)
{
    service.notesCalls = false;
    LogStop();
    const int showEvery = std::getenv("TESSARY_SHOW_ALWAYS") != nullptr ? 1 : 25;
    const auto open = [&](int times)
    {
        for (int i = 0; i < times; ++i)
        {
            FakeSheet sheet(header);
            sheet.Open();
            if (i % showEvery == 0)
            {
                sheet.Show();
                sheet.PressOk();
            }
        }
        return std::pair(LiveAllocations(), BusyBlocks());
    };
    open(26);
    const auto [live, blocks] = open(26);
    const auto [liveLater, blocksLater] = open(500);
    EXPECT_EQ(live, liveLater);
    EXPECT_LT(blocksLater, blocks + 50);
}

} // namespace
} // namespace tsypr::test
