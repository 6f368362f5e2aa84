// The pages of the property sheet as real dialogs, made from the English language library, with a service that answers
// by script.
#ifndef TESSARY_TESTS_UI_PAGE_FIXTURE_H
#define TESSARY_TESTS_UI_PAGE_FIXTURE_H

#include "language/resource_ids.h"
#include "module/interface_dll.h"
#include "tests/module/test_registry.h"
#include "tests/remote/fake_service.h"
#include "ui/capability_maps.h"
#include "ui/driver_name.h"
#include "ui/ui_context.h"

namespace tsypr::test
{

inline constexpr uint32_t kEveryFeature =
    kFeatureNup | kFeaturePrintAsImage | kFeaturePopupPreDlg | kFeatureCompressionZlib | kFeatureFinishing;

// The English language library as the module's resources, loaded once.
inline void UseEnglish()
{
    static const HMODULE s_library = LoadLibraryW(L"tsyprUI_en_us_409.dll");
    static const HBITMAP s_portrait = LoadBitmapW(s_library, MAKEINTRESOURCEW(IDB_PORTRAIT));
    static const HBITMAP s_landscape = LoadBitmapW(s_library, MAKEINTRESOURCEW(IDB_LANDSCAPE));
    static const HBITMAP s_logo = LoadBitmapW(s_library, MAKEINTRESOURCEW(IDB_LOGO));
    EXPECT_NE(s_logo, nullptr);
    ResourceModule = s_library;
    PortraitBitmap = s_portrait;
    LandscapeBitmap = s_landscape;
    LogoBitmap = s_logo;
}

inline CapabilityReply Answer(int32_t result)
{
    return {result, std::nullopt};
}

// As one text, "1 2".
inline std::string Numbers(std::initializer_list<long long> numbers)
{
    std::string text;
    for (const long long number : numbers)
    {
        text += (text.empty() ? "" : " ") + std::to_string(number);
    }
    return text;
}

// Too long, with combining marks, from right to left, beyond the basic plane, and ill-formed.
inline const std::wstring kOddTexts[] = {std::wstring(127, L'x'),
                                         std::wstring(128, L'x'),
                                         L"e\u0301a\u0308\u0323",
                                         L"\u05E9\u05DC\u05D5\u05DD",
                                         L"\U0001F600\U00020BB7",
                                         L"\xD800x"};

class PageTest : public RemoteTest
{
protected:
    PageTest() : dm(ClientDeviceMode())
    {
        UseEnglish();
        SetCurrentDriverName(kOwnDriverName);
        dm.Private().featureBitmap = kEveryFeature;
        dm.Private().printTargetChoice = 0;
        context.comPropSheet = ComPropSheet;
        context.comPropSheetHandle = reinterpret_cast<HANDLE>(0xC0);
        context.devMode = dm.Get();
        wcscpy(context.printerName, L"Office Laser");
        s_results.clear();
    }
    ~PageTest() override
    {
        Close();
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kDriverKeyW, L"DefaultChoice");
    }

    static void SetMachine(const wchar_t* key, const wchar_t* name, DWORD value)
    {
        SetBytes(HKEY_LOCAL_MACHINE, key, name, REG_DWORD, &value, sizeof(value));
    }
    // The log's lines since the last time that hold the text; without the complaints about policies that are not set.
    Messages Lines(const std::string& text)
    {
        Messages lines = log.Take();
        std::erase_if(lines,
                      [&](const std::string& line)
                      { return line.find(text) == std::string::npos || line.starts_with("error RegUtils::"); });
        return lines;
    }

    // Loads the context from the device mode, without asking the printer for its options.
    void LoadContext()
    {
        const uint32_t features = dm.Private().featureBitmap;
        dm.Private().featureBitmap = features & ~(kFeatureNup | kFeatureFinishing);
        InitUIContext(&context, dm.Get());
        dm.Private().featureBitmap = features;
    }

    void Open(int dialogId, DLGPROC procedure)
    {
        Close();
        page.dwSize = sizeof(page);
        page.lParam = reinterpret_cast<LPARAM>(&context);
        owner = CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 600, 600, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(owner, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&SheetProcedure));
        s_changes = 0;
        dialog = CreateDialogParamW(
            ResourceModule, MAKEINTRESOURCEW(dialogId), owner, procedure, reinterpret_cast<LPARAM>(&page));
        ASSERT_NE(dialog, nullptr) << GetLastError();
        EXPECT_EQ(0, s_changes) << "opening a page changes nothing";
    }
    void Close()
    {
        DestroyWindow(owner);
        owner = nullptr;
    }

    HWND Item(int id) const
    {
        return GetDlgItem(dialog, id);
    }
    LRESULT Send(int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(Item(id), message, wParam, lParam);
    }

    // What a screen reader calls a control: the text of its window.
    std::wstring SpokenName(int id) const
    {
        wchar_t name[64] = {};
        GetDlgItemTextW(dialog, id, name, 64);
        return name;
    }

    // A list as "one|>selected|three", with "x " before it when it is disabled, and a complaint when its label is not
    // as the list is.
    std::string List(int id) const
    {
        const HWND label = GetWindow(Item(id), GW_HWNDPREV);
        std::string text = IsWindowEnabled(Item(id)) ? "" : "x ";
        text += IsWindowEnabled(Item(id)) == IsWindowEnabled(label) ? "" : "LABEL ";
        for (int i = 0; i < Send(id, CB_GETCOUNT); ++i)
        {
            wchar_t entry[256] = {};
            Send(id, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(entry));
            text += i == 0 ? "" : "|";
            text += Send(id, CB_GETCURSEL) == i ? ">" : "";
            text += std::string(entry, entry + wcslen(entry));
        }
        return text;
    }

    // A button as "on" or "off", with "x " before it when it is disabled.
    std::string Button(int id) const
    {
        return std::string(IsWindowEnabled(Item(id)) ? "" : "x ") + (IsDlgButtonChecked(dialog, id) ? "on" : "off");
    }

    LRESULT Command(int id, int notification = BN_CLICKED) const
    {
        return CallProcedure(WM_COMMAND, reinterpret_cast<LPARAM>(Item(id)), MAKEWPARAM(id, notification));
    }
    void Choose(int id, int position) const
    {
        Send(id, CB_SETCURSEL, static_cast<WPARAM>(position));
        EXPECT_TRUE(Command(id, CBN_SELCHANGE));
    }
    LRESULT Notify(UINT code) const
    {
        NMHDR header = {dialog, 0, code};
        return CallProcedure(WM_NOTIFY, reinterpret_cast<LPARAM>(&header));
    }
    // What the dialog procedure itself answers: a dialog passes the answer to few messages on.
    LRESULT CallProcedure(UINT message, LPARAM lParam = 0, WPARAM wParam = 0) const
    {
        const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog, DWLP_DLGPROC));
        return procedure(dialog, message, wParam, lParam);
    }

    // What every page does in the same way: telling the sheet that the user changed a setting, and answering its
    // notifications, confirming last.
    void ExpectPageManners(HANDLE UIContext::*handle,
                           const std::vector<int>& lists,
                           const std::vector<int>& buttons = {})
    {
        const auto changes = [this](int id, int notification)
        {
            s_changes = 0;
            Command(id, notification);
            return s_changes;
        };
        for (const int id : lists)
        {
            EXPECT_EQ("0 1", Numbers({changes(id, CBN_DROPDOWN), changes(id, CBN_SELCHANGE)})) << id;
        }
        for (const int id : buttons)
        {
            EXPECT_EQ(1, changes(id, BN_CLICKED)) << id;
        }
        context.*handle = reinterpret_cast<HANDLE>(0xA0);
        s_results.clear();
        EXPECT_EQ(TRUE, Notify(PSN_RESET));
        EXPECT_EQ(TRUE, Notify(PSN_SETACTIVE));
        EXPECT_EQ(FALSE, Notify(PSN_KILLACTIVE));
        EXPECT_EQ(FALSE, CallProcedure(WM_MOUSEMOVE));
        EXPECT_EQ(TRUE, CallProcedure(WM_DESTROY));
        EXPECT_EQ(Messages{}, s_results);
        EXPECT_EQ(TRUE, Notify(PSN_APPLY));
        EXPECT_EQ(Messages{"192 9 160 1"}, s_results);
    }

    static LRESULT CALLBACK SheetProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        s_changes += message == PSM_CHANGED && GetParent(reinterpret_cast<HWND>(wParam)) == window ? 1 : 0;
        return DefWindowProcW(window, message, wParam, lParam);
    }

    static LONG_PTR CALLBACK ComPropSheet(HANDLE sheet, UINT function, LPARAM first, LPARAM second)
    {
        s_results.push_back(Numbers({reinterpret_cast<intptr_t>(sheet), function, first, second}));
        return 1;
    }

    inline static int s_changes = 0;  // that a page told its sheet
    inline static Messages s_results; // calls of the common property sheet interface
    TestRegistry registry;
    DeviceMode dm;
    UIContext context = {};
    PROPSHEETPAGEW page = {};
    HWND owner = nullptr;
    HWND dialog = nullptr;
};

} // namespace tsypr::test

#endif
