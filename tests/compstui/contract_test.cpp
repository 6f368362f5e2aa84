// What callers do against the contract is noticed, written down, and answered with the documented failure.
#include "tests/compstui/sheet_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tsypr::compstui_tests
{
namespace
{

using testing::HasSubstr;

// A call in the middle of a sheet's description.
struct FaultyCall
{
    const char* line;
    LONG_PTR answer;
    std::function<LONG_PTR(Page& page)> call;
};

LONG_PTR AddChanged(Page& page, const std::function<void(PROPSHEETPAGEW&)>& change)
{
    PROPSHEETPAGEW record = page.record;
    change(record);
    return page.Ask(CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&record));
}

const FaultyCall kFaultyCalls[] = {
    {"ComPropSheet: there is no such function code", 0, [](Page& page) { return page.Ask(MAX_CPSFUNC_INDEX + 1); }},
    {"CPSFUNC_SET_RESULT: a handle is not one of an open property sheet",
     -1,
     [](Page& page) { return page.Ask(CPSFUNC_SET_RESULT, 0x1234, CPSUI_OK); }},
    {"CPSFUNC_SET_RESULT: a handle is not one of an open property sheet",
     -1,
     [](Page& page) { return page.describer.comPropSheet(nullptr, CPSFUNC_SET_RESULT, 0, CPSUI_OK); }},
    {"CPSFUNC_GET_PAGECOUNT: hComPropSheet is a page and not a group",
     0,
     [](Page& page) { return page.describer.comPropSheet(page.handle, CPSFUNC_GET_PAGECOUNT, 0, 0); }},
    {"CPSFUNC_GET_PAGECOUNT: a parameter that is not used is not zero",
     0,
     [](Page& page) { return page.Ask(CPSFUNC_GET_PAGECOUNT, 0, 1); }},
    {"CPSFUNC_GET_PAGECOUNT: called on another thread than the property sheet's",
     0,
     [](Page& page)
     {
         LONG_PTR answer = -1;
         std::thread([&] { answer = page.Ask(CPSFUNC_GET_PAGECOUNT); }).join();
         return answer;
     }},
    {"CPSFUNC_GET_HPSUIPAGES: there is no array", 0, [](Page& page) { return page.Ask(CPSFUNC_GET_HPSUIPAGES, 0, 1); }},
    {"CPSFUNC_ADD_PROPSHEETPAGEW: there is no PROPSHEETPAGE",
     0,
     [](Page& page) { return page.Ask(CPSFUNC_ADD_PROPSHEETPAGEW); }},
    {"CPSFUNC_ADD_PROPSHEETPAGEW: dwSize of PROPSHEETPAGE is too small",
     0,
     [](Page& page) { return AddChanged(page, [](auto& record) { record.dwSize = 40; }); }},
    {"CPSFUNC_ADD_PROPSHEETPAGEW: the page has no dialog procedure",
     0,
     [](Page& page) { return AddChanged(page, [](auto& record) { record.pfnDlgProc = nullptr; }); }},
    {"CPSFUNC_ADD_PROPSHEETPAGEW: the page's dialog template does not exist",
     0,
     [](Page& page) { return AddChanged(page, [](auto& record) { record.pszTemplate = MAKEINTRESOURCEW(999); }); }},
    {"CPSFUNC_ADD_HPROPSHEETPAGE: there is no page",
     0,
     [](Page& page) { return page.Ask(CPSFUNC_ADD_HPROPSHEETPAGE); }},
    {"CPSFUNC_ADD_PFNPROPSHEETUIW: there is no function",
     0,
     [](Page& page) { return page.Ask(CPSFUNC_ADD_PFNPROPSHEETUIW); }},
    {"PROPSHEETUI_REASON_INIT: the function succeeded and added no page",
     0,
     [](Page& page)
     {
         static Events events;
         static const Describer empty(events);
         return page.Ask(CPSFUNC_ADD_PFNPROPSHEETUIW, reinterpret_cast<LPARAM>(Describer::Call), empty.AsParam());
     }},
    {"CPSFUNC_DELETE_HCOMPROPSHEET: a group cannot be deleted while its function runs",
     0,
     [](Page& page) { return page.Ask(CPSFUNC_DELETE_HCOMPROPSHEET, reinterpret_cast<LPARAM>(page.describer.group)); }},
    {"CPSFUNC_LOAD_CPSUI_STRINGW: there is no buffer",
     -1,
     [](Page& page) { return page.Ask(CPSFUNC_LOAD_CPSUI_STRINGW, 0, MAKELONG(10, IDS_CPSUI_YES)); }},
    {"CPSFUNC_SET_FUSION_CONTEXT: there is no activation context",
     0,
     [](Page& page) { return page.Ask(CPSFUNC_SET_FUSION_CONTEXT); }},
};

TEST(Contract, FaultyCallsAreAnsweredWithTheDocumentedFailure)
{
    Events events;
    Describer describer(events);
    Page page(describer, kFirstPage);
    describer.on[PROPSHEETUI_REASON_INIT] = [&](PROPSHEETUI_INFO&, LPARAM)
    {
        EXPECT_NE(page.Add(), nullptr);
        for (const FaultyCall& faulty : kFaultyCalls)
        {
            const DWORD before = Faults();
            EXPECT_EQ(faulty.call(page), faulty.answer) << faulty.line;
            EXPECT_EQ(Faults(), before + 1) << faulty.line;
            EXPECT_EQ(LastFault(), std::string("compstui: contract fault: ") + faulty.line + ".");
        }
        return -1;
    };
    EXPECT_EQ(ShowSheet(describer).answer, CPSUI_CANCEL);
    // The sheet is over and with it its handles.
    const DWORD before = Faults();
    EXPECT_EQ(page.SetResult(CPSUI_OK), -1);
    EXPECT_EQ(Faults(), before + 1);
}

TEST(Contract, ItemPagesAreRefusedWithoutBlame)
{
    Events events;
    Describer describer(events);
    describer.on[PROPSHEETUI_REASON_INIT] = [](PROPSHEETUI_INFO& info, LPARAM)
    {
        COMPROPSHEETUI items = {};
        LONG error = 0;
        EXPECT_EQ(info.pfnComPropSheet(info.hComPropSheet,
                                       CPSFUNC_ADD_PCOMPROPSHEETUIW,
                                       reinterpret_cast<LPARAM>(&items),
                                       reinterpret_cast<LPARAM>(&error)),
                  0);
        EXPECT_EQ(error, ERR_CPSUI_FUNCTION_NOT_IMPLEMENTED);
        return -1;
    };
    const DWORD before = Faults();
    ShowSheet(describer);
    EXPECT_EQ(Faults(), before);
}

TEST(Contract, FunctionsMayChangeTheirOwnMembersOnly)
{
    Events events;
    Describer describer(events);
    describer.on[PROPSHEETUI_REASON_INIT] = [](PROPSHEETUI_INFO& info, LPARAM)
    {
        info.UserData = 5;
        info.Result = 6;
        info.hComPropSheet = nullptr;
        info.cbSize = 1;
        return -1;
    };
    const DWORD before = Faults();
    EXPECT_EQ(ShowSheet(describer).result, 6U);
    EXPECT_EQ(Faults(), before + 1);
    EXPECT_THAT(LastFault(), HasSubstr("PROPSHEETUI_REASON_INIT: the function changed a member"));
}

TEST(Contract, SheetsThatCannotBeAreErrors)
{
    Events events;
    Describer empty(events);
    DWORD before = Faults();
    EXPECT_EQ(ShowSheet(empty).answer, ERR_CPSUI_NO_PROPSHEETPAGE);
    EXPECT_EQ(Faults(), before + 1);
    EXPECT_EQ(ShowSheet(empty, reinterpret_cast<HWND>(0x7777)).answer, ERR_CPSUI_GETLASTERROR);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
    DWORD result = 1;
    const auto show = Export<decltype(&CommonPropertySheetUIW)>("CommonPropertySheetUIW");
    EXPECT_EQ(show(nullptr, nullptr, 0, &result), ERR_CPSUI_INVALID_PDATA);
    EXPECT_EQ(result, 0U);
    EXPECT_EQ(Faults(), before + 3);
}

} // namespace
} // namespace tsypr::compstui_tests
