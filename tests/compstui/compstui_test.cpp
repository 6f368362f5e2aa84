// Our own property sheet interface with describing functions and pages that are not ours.
#include "tests/compstui/sheet_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tsypr::compstui_tests
{
namespace
{

using testing::ElementsAre;

LONG KeepResult(PROPSHEETUI_INFO& info, LPARAM lParam)
{
    info.Result = static_cast<ULONG_PTR>(reinterpret_cast<const SETRESULT_INFO*>(lParam)->Result);
    return 1;
}

// One function with one page that reports success when it is applied.
class OneSheet : public testing::Test
{
protected:
    OneSheet()
    {
        describer.on[PROPSHEETUI_REASON_INIT] = [this](PROPSHEETUI_INFO& info, LPARAM)
        {
            info.UserData = 77;
            return page.Add() != nullptr ? 1 : 0;
        };
        describer.on[PROPSHEETUI_REASON_SET_RESULT] = KeepResult;
        describer.on[PROPSHEETUI_REASON_DESTROY] = [this](PROPSHEETUI_INFO&, LPARAM lParam)
        {
            closedByUser = lParam != 0;
            return 1;
        };
        page.on[static_cast<int>(PSN_APPLY)] = [this](HWND, const PSHNOTIFY&)
        {
            EXPECT_EQ(page.SetResult(CPSUI_OK), 1);
            return PSNRET_NOERROR;
        };
    }

    void TearDown() override
    {
        EXPECT_EQ(Faults(), faultsBefore) << LastFault();
    }

    DWORD faultsBefore = Faults();
    Events events;
    Describer describer{events};
    Page page{describer, kFirstPage};
    bool closedByUser = false;
};

TEST_F(OneSheet, EndsAsTheButtonSays)
{
    page.onInit = [](HWND dialog)
    { SendMessageW(GetParent(dialog), PSM_CHANGED, reinterpret_cast<WPARAM>(dialog), 0); };
    struct Case
    {
        std::vector<int> buttons;
        Events between; // after HEADER and before DESTROY
        DWORD result;
    };
    const Case cases[] = {
        {{IDOK}, {"apply", "RESULT"}, CPSUI_OK},
        {{IDCANCEL}, {"reset"}, CPSUI_CANCEL},
        {{kCloseBox}, {"reset"}, CPSUI_CANCEL},
        {{kApplyButton, IDCANCEL}, {"apply", "RESULT", "reset"}, CPSUI_OK},
    };
    for (const Case& one : cases)
    {
        SCOPED_TRACE(one.buttons.front());
        events.clear();
        const User user(one.buttons);
        const Outcome outcome = ShowSheet(describer);
        EXPECT_EQ(outcome.answer, CPSUI_OK);
        EXPECT_EQ(outcome.result, one.result);
        EXPECT_TRUE(closedByUser);
        Events expected = {"BEFORE_INIT", "INIT", "HEADER"};
        expected.insert(expected.end(), one.between.begin(), one.between.end());
        expected.emplace_back("DESTROY");
        EXPECT_EQ(events, expected);
    }
    page.onInit = [](HWND dialog) { SendMessageW(GetParent(dialog), PSM_REBOOTSYSTEM, 0, 0); };
    const User user({IDOK});
    EXPECT_EQ(ShowSheet(describer).answer, CPSUI_REBOOTSYSTEM);
}

TEST_F(OneSheet, StaysOpenWhileAPageRefuses)
{
    unsigned refusals = 0;
    page.on[static_cast<int>(PSN_APPLY)] = [&](HWND, const PSHNOTIFY&) -> LONG_PTR
    { return ++refusals <= 2 ? PSNRET_INVALID_NOCHANGEPAGE : page.SetResult(CPSUI_OK) - 1; };
    const User user({IDOK, IDOK, IDOK});
    EXPECT_EQ(ShowSheet(describer).result, static_cast<DWORD>(CPSUI_OK));
    EXPECT_THAT(events, ElementsAre("BEFORE_INIT", "INIT", "HEADER", "apply", "apply", "apply", "RESULT", "DESTROY"));
}

TEST_F(OneSheet, HeaderGivesTitleAndButtons)
{
    wchar_t title[64] = {};
    bool hasApply = true;
    WORD flags = 0;
    page.on[static_cast<int>(PSN_APPLY)] = [&](HWND dialog, const PSHNOTIFY&)
    {
        const HWND sheet = GetParent(dialog);
        GetWindowTextW(sheet, title, 64);
        const HWND apply = GetDlgItem(sheet, kApplyButton);
        hasApply = apply != nullptr && (GetWindowLongPtrW(apply, GWL_STYLE) & WS_VISIBLE) != 0;
        return PSNRET_NOERROR;
    };
    describer.on[PROPSHEETUI_REASON_GET_INFO_HEADER] = [&](PROPSHEETUI_INFO&, LPARAM lParam)
    {
        auto& header = *reinterpret_cast<PROPSHEETUI_INFO_HEADER*>(lParam);
        EXPECT_EQ(header.cbSize, sizeof(header));
        EXPECT_EQ(header.Flags, PSUIHDRF_PROPTITLE);
        static wchar_t name[] = L"Office";
        header.pTitle = name;
        header.Flags |= flags;
        return 1;
    };
    const std::pair<WORD, std::wstring> cases[] = {{0, L"Office Properties"},
                                                   {PSUIHDRF_DEFTITLE, L"Office Default Properties"},
                                                   {PSUIHDRF_EXACT_PTITLE | PSUIHDRF_NOAPPLYNOW, L"Office"}};
    for (const auto& [given, expected] : cases)
    {
        flags = given;
        const User user({IDOK});
        // Nobody reported a result: the function's own is what it was.
        EXPECT_EQ(ShowSheet(describer).result, static_cast<DWORD>(CPSUI_CANCEL));
        EXPECT_EQ(title, expected);
        EXPECT_EQ(hasApply, (given & PSUIHDRF_NOAPPLYNOW) == 0);
    }
}

TEST_F(OneSheet, KeepsTheUserDataOfADialogBox)
{
    const auto set = Export<decltype(&SetCPSUIUserData)>("SetCPSUIUserData");
    const auto get = Export<decltype(&GetCPSUIUserData)>("GetCPSUIUserData");
    page.onInit = [&](HWND dialog)
    {
        EXPECT_EQ(get(dialog), 0U);
        EXPECT_TRUE(set(dialog, 0x123456789abcU));
    };
    page.on[static_cast<int>(PSN_RESET)] = [&](HWND dialog, const PSHNOTIFY&)
    {
        EXPECT_EQ(get(dialog), 0x123456789abcU);
        return 0;
    };
    const User user({IDCANCEL});
    ShowSheet(describer);
}

TEST_F(OneSheet, IsNotShownWhenDescribingFails)
{
    for (const WORD reason : {WORD{PROPSHEETUI_REASON_INIT}, WORD{PROPSHEETUI_REASON_GET_INFO_HEADER}})
    {
        events.clear();
        closedByUser = true;
        describer.on[reason] = [this](PROPSHEETUI_INFO&, LPARAM)
        {
            page.Add();
            return 0;
        };
        const Outcome outcome = ShowSheet(describer);
        EXPECT_EQ(outcome.answer, CPSUI_CANCEL);
        EXPECT_EQ(outcome.result, static_cast<DWORD>(CPSUI_CANCEL));
        EXPECT_FALSE(closedByUser);
        EXPECT_EQ(events.back(), "DESTROY");

        describer.on[PROPSHEETUI_REASON_INIT] = [this](PROPSHEETUI_INFO&, LPARAM) { return page.Add() != nullptr; };
    }
}

// A function that adds another, which adds two pages: as the spooler and a driver do.
class NestedSheet : public testing::Test
{
protected:
    NestedSheet()
    {
        outer.on[PROPSHEETUI_REASON_INIT] = [this](PROPSHEETUI_INFO& info, LPARAM)
        {
            innerGroup = info.pfnComPropSheet(info.hComPropSheet,
                                              CPSFUNC_ADD_PFNPROPSHEETUIW,
                                              reinterpret_cast<LPARAM>(Describer::Call),
                                              inner.AsParam());
            return innerGroup != 0 ? 1 : 0;
        };
        inner.on[PROPSHEETUI_REASON_INIT] = [this](PROPSHEETUI_INFO&, LPARAM)
        { return first.Add() != nullptr && second.Add() != nullptr ? 1 : 0; };
    }

    LONG_PTR AskOuter(UINT function, LPARAM lParam1 = 0, LPARAM lParam2 = 0)
    {
        return outer.comPropSheet(outer.group, function, lParam1, lParam2);
    }

    // Shows the sheet, does something in its window's thread, and closes it.
    void WhileOpen(const std::function<void(HWND sheet)>& action)
    {
        first.on[static_cast<int>(PSN_RESET)] = [&](HWND dialog, const PSHNOTIFY&)
        {
            action(GetParent(dialog));
            return 0;
        };
        const User user({IDCANCEL});
        EXPECT_EQ(ShowSheet(outer).answer, CPSUI_OK);
    }

    Events events;
    Describer outer{events, "outer "};
    Describer inner{events, "inner "};
    Page first{inner, kFirstPage};
    Page second{inner, kSecondPage};
    LONG_PTR innerGroup = 0;
};

TEST_F(NestedSheet, ResultGoesFromThePageToTheOutermostFunction)
{
    inner.on[PROPSHEETUI_REASON_SET_RESULT] = [this](PROPSHEETUI_INFO& info, LPARAM lParam)
    {
        auto& set = *reinterpret_cast<SETRESULT_INFO*>(lParam);
        EXPECT_EQ(set.cbSize, sizeof(set));
        EXPECT_EQ(set.hSetResult, first.handle);
        info.Result = static_cast<ULONG_PTR>(set.Result);
        set.Result += 100;
        return set.Result == 113 ? 0 : 1;
    };
    outer.on[PROPSHEETUI_REASON_SET_RESULT] = KeepResult;
    first.on[static_cast<int>(PSN_APPLY)] = [this](HWND, const PSHNOTIFY&)
    {
        EXPECT_EQ(first.SetResult(12), 2);
        EXPECT_EQ(first.SetResult(13), 1); // the inner function keeps it to itself
        EXPECT_EQ(inner.result, 13U);
        return PSNRET_NOERROR;
    };
    const User user({IDOK});
    EXPECT_EQ(ShowSheet(outer).result, 112U);
    EXPECT_THAT(events,
                ElementsAre("outer BEFORE_INIT",
                            "outer INIT",
                            "inner INIT",
                            "outer HEADER",
                            "apply",
                            "inner RESULT",
                            "outer RESULT",
                            "inner RESULT",
                            "inner DESTROY",
                            "outer DESTROY"));
}

TEST_F(NestedSheet, PagesAreCountedListedAndChosen)
{
    outer.on[PROPSHEETUI_REASON_GET_INFO_HEADER] = [this](PROPSHEETUI_INFO&, LPARAM)
    {
        EXPECT_EQ(AskOuter(CPSFUNC_GET_PAGECOUNT), 2);
        HANDLE handles[3] = {};
        EXPECT_EQ(AskOuter(CPSFUNC_GET_HPSUIPAGES, reinterpret_cast<LPARAM>(handles), 3), 2);
        EXPECT_THAT(handles, ElementsAre(first.handle, second.handle, nullptr));
        // The second page of the inner group is on top.
        EXPECT_EQ(AskOuter(CPSFUNC_SET_HSTARTPAGE, innerGroup, 1), innerGroup);
        return 1;
    };
    second.on[static_cast<int>(PSN_RESET)] = [](HWND dialog, const PSHNOTIFY&)
    {
        EXPECT_EQ(SendMessageW(GetParent(dialog), PSM_GETCURRENTPAGEHWND, 0, 0), reinterpret_cast<LRESULT>(dialog));
        return 0;
    };
    const User user({IDCANCEL});
    ShowSheet(outer);
    EXPECT_EQ(std::ranges::count(events, "reset"), 1) << "only the page on top was ever made";
}

TEST_F(NestedSheet, PagesComeAndGoWhileTheSheetIsOpen)
{
    Page extra(inner, kSecondPage);
    WhileOpen(
        [&](HWND sheet)
        {
            INSERTPSUIPAGE_INFO insert = {
                sizeof(insert), PSUIPAGEINSERT_PROPSHEETPAGE, INSPSUIPAGE_MODE_AFTER, 0, 0, 0};
            insert.dwData1 = reinterpret_cast<ULONG_PTR>(&extra.record);
            const LONG_PTR added = inner.comPropSheet(inner.group,
                                                      CPSFUNC_INSERT_PSUIPAGEW,
                                                      reinterpret_cast<LPARAM>(first.handle),
                                                      reinterpret_cast<LPARAM>(&insert));
            EXPECT_NE(added, 0);
            EXPECT_EQ(AskOuter(CPSFUNC_SET_PSUIPAGE_TITLEW, added, reinterpret_cast<LPARAM>(L"Extra")), 1);
            EXPECT_THAT(GetTabs(sheet), ElementsAre(L"First", L"Extra", L"Second"));
            EXPECT_EQ(AskOuter(CPSFUNC_DELETE_HCOMPROPSHEET, reinterpret_cast<LPARAM>(second.handle)), 1);
            EXPECT_THAT(GetTabs(sheet), ElementsAre(L"First", L"Extra"));
            EXPECT_EQ(AskOuter(CPSFUNC_GET_PAGECOUNT), 2);
        });
}

TEST_F(NestedSheet, GroupThatFailsOrIsDeletedLeavesNoPages)
{
    const Describer::Action describe = inner.on[PROPSHEETUI_REASON_INIT];
    inner.on[PROPSHEETUI_REASON_INIT] = [&](PROPSHEETUI_INFO& info, LPARAM lParam)
    { return describe(info, lParam) - 2; };
    EXPECT_EQ(ShowSheet(outer).answer, CPSUI_CANCEL);
    EXPECT_EQ(innerGroup, 0);
    EXPECT_THAT(events, ElementsAre("outer BEFORE_INIT", "outer INIT", "inner INIT", "inner DESTROY", "outer DESTROY"));
    events.clear();
    inner.group = nullptr;
    inner.on[PROPSHEETUI_REASON_INIT] = describe;
    outer.on[PROPSHEETUI_REASON_GET_INFO_HEADER] = [this](PROPSHEETUI_INFO&, LPARAM)
    {
        Page rest(outer, kFirstPage);
        EXPECT_NE(rest.Add(), nullptr);
        inner.on[PROPSHEETUI_REASON_DESTROY] = [](PROPSHEETUI_INFO&, LPARAM lParam)
        {
            EXPECT_EQ(lParam, 0) << "the user has closed nothing";
            return 1;
        };
        EXPECT_EQ(AskOuter(CPSFUNC_DELETE_HCOMPROPSHEET, innerGroup), 2);
        return 0;
    };
    ShowSheet(outer);
    EXPECT_THAT(
        events,
        ElementsAre("outer BEFORE_INIT", "outer INIT", "inner INIT", "outer HEADER", "inner DESTROY", "outer DESTROY"));
}

TEST_F(NestedSheet, TextsAreCutAndFunctionsGiveIcons)
{
    inner.on[PROPSHEETUI_REASON_GET_ICON] = [](PROPSHEETUI_INFO&, LPARAM lParam)
    {
        auto& icon = *reinterpret_cast<PROPSHEETUI_GETICON_INFO*>(lParam);
        icon.hIcon = reinterpret_cast<HICON>(icon.cxIcon == 16 && icon.cyIcon == 24 ? 0x4711 : 0);
        return 1;
    };
    outer.on[PROPSHEETUI_REASON_GET_INFO_HEADER] = [this](PROPSHEETUI_INFO&, LPARAM)
    {
        EXPECT_EQ(AskOuter(CPSFUNC_GET_PFNPROPSHEETUI_ICON, innerGroup, MAKELONG(16, 24)), 0x4711);
        wchar_t text[4] = {};
        const auto buffer = reinterpret_cast<LPARAM>(text);
        EXPECT_EQ(AskOuter(CPSFUNC_LOAD_CPSUI_STRINGW, buffer, MAKELONG(sizeof(text), IDS_CPSUI_PRINTER)), 3);
        EXPECT_STREQ(text, L"Pri");
        EXPECT_EQ(AskOuter(CPSFUNC_LOAD_CPSUI_STRINGW, buffer, MAKELONG(sizeof(text), 1)), 0);
        return 0;
    };
    ShowSheet(outer);
}

} // namespace
} // namespace tsypr::compstui_tests
