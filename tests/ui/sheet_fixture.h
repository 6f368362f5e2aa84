// A stand-in for the system's property sheet, which asks the driver for pages and tells it the result as Windows
// documents it, and checks what it is given.
#ifndef TESSARY_TESTS_UI_SHEET_FIXTURE_H
#define TESSARY_TESTS_UI_SHEET_FIXTURE_H

#include "tests/printschema/documents.h"
#include "tests/remote/allocation_faults.h"
#include "tests/remote/fake_spooler.h"
#include "tests/ui/page_fixture.h"
#include "ui/document_property_header.h"
#include "ui/document_property_sheets.h"

namespace tsypr::test
{

class FakeSheet
{
public:
    explicit FakeSheet(DOCUMENTPROPERTYHEADER& header)
    {
        s_sheet = this;
        info.cbSize = sizeof(info);
        info.Version = 0x100;
        info.Flags = PSUIINFO_UNICODE;
        info.hComPropSheet = reinterpret_cast<HANDLE>(0xC0);
        info.pfnComPropSheet = ComPropSheet;
        info.lParamInit = reinterpret_cast<LPARAM>(&header);
        info.Result = 0x5A;
        m_owner = CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 600, 600, nullptr, nullptr, nullptr, nullptr);
    }
    ~FakeSheet()
    {
        DestroyWindow(m_owner);
        Call(PROPSHEETUI_REASON_DESTROY);
        EXPECT_EQ(0U, info.UserData);
    }
    FakeSheet(const FakeSheet&) = delete;
    FakeSheet& operator=(const FakeSheet&) = delete;

    LONG Call(WORD reason, LPARAM lParam = 0)
    {
        info.Reason = reason;
        return DrvDocumentPropertySheets(&info, lParam);
    }
    LONG Open()
    {
        return Call(PROPSHEETUI_REASON_INIT);
    }
    LONG TellResult(LRESULT result)
    {
        SETRESULT_INFO told = {sizeof(told), 0, info.hComPropSheet, result};
        return Call(PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&told));
    }

    // Makes the dialogs of the first pages, or of all.
    void Show(size_t count = 5)
    {
        for (size_t i = 0; i < std::min(count, pages.size()); ++i)
        {
            Page& page = pages[i];
            page.dialog = CreateDialogParamW(page.record.hInstance,
                                             page.record.pszTemplate,
                                             m_owner,
                                             page.record.pfnDlgProc,
                                             reinterpret_cast<LPARAM>(&page.record));
            EXPECT_NE(page.dialog, nullptr);
        }
    }
    void PressOk()
    {
        for (const Page& page : pages)
        {
            NMHDR header = {page.dialog, 0, PSN_APPLY};
            EXPECT_TRUE(page.record.pfnDlgProc(page.dialog, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)));
        }
    }
    // The user's choice from a list of one of the pages.
    void Choose(int id, WPARAM position)
    {
        for (const Page& page : pages)
        {
            if (const HWND list = GetDlgItem(page.dialog, id))
            {
                SendMessageW(list, CB_SETCURSEL, position, 0);
                SendMessageW(page.dialog, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
            }
        }
    }
    UIContext& Context() const
    {
        return *reinterpret_cast<UIContext*>(info.UserData);
    }

    struct Page
    {
        PROPSHEETPAGEW record;
        HWND dialog;
    };
    PROPSHEETUI_INFO info = {};
    std::vector<Page> pages;
    std::vector<int> templates; // of the pages
    std::vector<int> refused;   // templates of pages that are not taken

private:
    static LONG_PTR CALLBACK ComPropSheet(HANDLE sheet, UINT function, LPARAM first, LPARAM second)
    {
        const AllocationFaultPause pause;
        EXPECT_EQ(reinterpret_cast<HANDLE>(0xC0), sheet);
        if (function == CPSFUNC_ADD_PROPSHEETPAGEW)
        {
            EXPECT_EQ(0, second);
            return s_sheet->Add(*reinterpret_cast<const PROPSHEETPAGEW*>(first));
        }
        EXPECT_EQ(unsigned{CPSFUNC_SET_RESULT}, function);
        EXPECT_TRUE(first >= 1 && static_cast<size_t>(first) <= s_sheet->pages.size());
        return s_sheet->TellResult(second);
    }

    LONG_PTR Add(const PROPSHEETPAGEW& record)
    {
        PROPSHEETPAGEW expected = {};
        expected.dwSize = 104;
        expected.hInstance = ResourceModule;
        expected.pszTemplate = record.pszTemplate;
        expected.pszTitle = record.pszTitle;
        expected.pfnDlgProc = record.pfnDlgProc;
        expected.lParam = static_cast<LPARAM>(info.UserData);
        EXPECT_EQ(0, std::memcmp(&expected, &record, sizeof(record)));
        EXPECT_STREQ(L"", record.pszTitle);
        const auto id = static_cast<int>(reinterpret_cast<uintptr_t>(record.pszTemplate));
        if (std::count(refused.begin(), refused.end(), id) != 0)
        {
            return 0;
        }
        info.Result = 0x5A; // the driver sets it to 0
        pages.push_back({record, nullptr});
        templates.push_back(id);
        return static_cast<LONG_PTR>(pages.size());
    }

    inline static FakeSheet* s_sheet = nullptr;
    HWND m_owner = nullptr;
};

// A caller of the export and a printer with everything.
class SheetTest : public PageTest
{
protected:
    static constexpr uint32_t kDM2PT = 1, kPT2PC = 2;

    SheetTest()
    {
        g_spooler = {};
        g_spooler.text = kOwnDriverName;
        auto& lists = service.capabilities;
        lists[DC_ORIENTATION] = Answer(90);
        lists[DC_DUPLEX] = Answer(1);
        lists[DC_BINNAMES] = NamesReply(24, {L"Upper", L"Manual"});
        lists[DC_BINS] = ListReply<int16_t>(2, {7, 4});
        lists[DC_PAPERNAMES] = NamesReply(64, {L"A4", L"Letter"});
        lists[DC_PAPERS] = ListReply<int16_t>(2, {9, 1});
        lists[DC_COLORDEVICE] = Answer(1);
        lists[DC_ENUMRESOLUTIONS] = ListReply<int32_t>(2, {300, 300, 600, 600});
        lists[DC_COPIES] = Answer(99);
        service.ptReplies[kDM2PT].data = BytesOf(Ticket(""));
        service.ptReplies[kPT2PC].data =
            BytesOf(Capabilities(Nup("4", "psk:RightBottom") +
                                 Feature("psk:JobStapleAllDocuments", Option("psk:None") + Option("psk:SaddleStitch")) +
                                 Feature("psk:JobHolePunch", Option("psk:None") + Option("psk:LeftEdge"))));
        service.devMode = dm.Whole();
        header.cbSize = sizeof(header);
        header.pszPrinterName = sessionName;
        header.pdmOut = out.Get();
        header.fMode = DM_OUT_BUFFER | DM_IN_PROMPT;
    }

    wchar_t sessionName[32] = L"srv\\Office Laser,4";
    DeviceMode out{220, 1112, 0x5A};
    DOCUMENTPROPERTYHEADER header = {};
};

} // namespace tsypr::test

#endif
