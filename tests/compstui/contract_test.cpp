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
    UINT function;
    LPARAM first;
    LPARAM second;
};

constexpr LPARAM kNoHandle = 0x1234;

const FaultyCall kFaultyCalls[] = {
    {"ComPropSheet: there is no such function code", 0, MAX_CPSFUNC_INDEX + 1, 0, 0},
    {"CPSFUNC_SET_RESULT: a handle is not one of an open property sheet", -1, CPSFUNC_SET_RESULT, kNoHandle, 1},
    {"CPSFUNC_GET_PAGECOUNT: a parameter that is not used is not zero", 0, CPSFUNC_GET_PAGECOUNT, 0, 1},
    {"CPSFUNC_GET_HPSUIPAGES: there is no array", 0, CPSFUNC_GET_HPSUIPAGES, 0, 1},
    {"CPSFUNC_ADD_PROPSHEETPAGEW: there is no PROPSHEETPAGE", 0, CPSFUNC_ADD_PROPSHEETPAGEW, 0, 0},
    {"CPSFUNC_ADD_HPROPSHEETPAGE: there is no page", 0, CPSFUNC_ADD_HPROPSHEETPAGE, 0, 0},
    {"CPSFUNC_ADD_PFNPROPSHEETUIW: there is no function", 0, CPSFUNC_ADD_PFNPROPSHEETUIW, 0, 0},
    {"CPSFUNC_INSERT_PSUIPAGEW: there is no INSERTPSUIPAGE_INFO, or its cbSize is wrong",
     0,
     CPSFUNC_INSERT_PSUIPAGEW,
     0,
     0},
    {"CPSFUNC_LOAD_CPSUI_STRINGW: there is no buffer", -1, CPSFUNC_LOAD_CPSUI_STRINGW, 0, 10},
    {"CPSFUNC_SET_FUSION_CONTEXT: there is no activation context", 0, CPSFUNC_SET_FUSION_CONTEXT, 0, 0},
};

void ExpectFault(const char* line, LONG_PTR expected, const std::function<LONG_PTR()>& call)
{
    const DWORD before = Faults();
    EXPECT_EQ(call(), expected) << line;
    EXPECT_EQ(Faults(), before + 1) << line;
    EXPECT_EQ(LastFault(), std::string("compstui: contract fault: ") + line + ".");
}

// A page that is the given one but for a change.
void ExpectPageFault(const char* what, const Page& page, const std::function<void(PROPSHEETPAGEW&)>& change)
{
    PROPSHEETPAGEW record = page.record;
    change(record);
    ExpectFault((std::string("CPSFUNC_ADD_PROPSHEETPAGEW: ") + what).c_str(),
                0,
                [&] { return page.Ask(CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&record)); });
}

void MakeFaults(Page& page)
{
    for (const auto& [line, answer, function, first, second] : kFaultyCalls)
    {
        ExpectFault(line, answer, [&] { return page.Ask(function, first, second); });
    }
    ExpectPageFault("dwSize of PROPSHEETPAGE is too small", page, [](auto& record) { record.dwSize = 40; });
    ExpectPageFault("the page has no dialog procedure", page, [](auto& record) { record.pfnDlgProc = nullptr; });
    ExpectPageFault("the page's dialog template does not exist",
                    page,
                    [](auto& record) { record.pszTemplate = MAKEINTRESOURCEW(999); });
    ExpectFault("CPSFUNC_GET_PAGECOUNT: hComPropSheet is a page and not a group",
                0,
                [&] { return page.describer.comPropSheet(page.handle, CPSFUNC_GET_PAGECOUNT, 0, 0); });
    ExpectFault("CPSFUNC_GET_PAGECOUNT: called on another thread than the property sheet's",
                0,
                [&]
                {
                    LONG_PTR answer = -1;
                    std::thread([&] { answer = page.Ask(CPSFUNC_GET_PAGECOUNT); }).join();
                    return answer;
                });
    const auto group = reinterpret_cast<LPARAM>(page.describer.group);
    ExpectFault("CPSFUNC_DELETE_HCOMPROPSHEET: a group cannot be deleted while its function runs",
                0,
                [&] { return page.Ask(CPSFUNC_DELETE_HCOMPROPSHEET, group); });
    Events events;
    const Describer empty(events);
    const auto function = reinterpret_cast<LPARAM>(Describer::Call);
    ExpectFault("PROPSHEETUI_REASON_INIT: the function succeeded and added no page",
                0,
                [&] { return page.Ask(CPSFUNC_ADD_PFNPROPSHEETUIW, function, empty.AsParam()); });
}

TEST(Contract, FaultyCallsAreAnsweredWithTheDocumentedFailure)
{
    Events events;
    Describer describer(events);
    Page page(describer, kFirstPage);
    describer.on[PROPSHEETUI_REASON_INIT] = [&](PROPSHEETUI_INFO&, LPARAM)
    {
        EXPECT_NE(page.Add(), nullptr);
        MakeFaults(page);
        return -1;
    };
    EXPECT_EQ(ShowSheet(describer).answer, CPSUI_CANCEL);
    ExpectFault("CPSFUNC_SET_RESULT: a handle is not one of an open property sheet",
                -1,
                [&] { return page.SetResult(CPSUI_OK); });
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
