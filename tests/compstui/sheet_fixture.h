// Property sheets for tests: what a describing function and a page were told, and a user who presses buttons.
#ifndef TESSARY_TESTS_COMPSTUI_SHEET_FIXTURE_H
#define TESSARY_TESTS_COMPSTUI_SHEET_FIXTURE_H

#include <windows.h>

#include <prsht.h>

#include <compstui.h>

#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace tsypr::compstui_tests
{

constexpr WORD kReasonBeforeInit = 5;
constexpr int kApplyButton = 12321;
constexpr int kCloseBox = -1;
constexpr WORD kFirstPage = 101;
constexpr WORD kSecondPage = 102;

using Events = std::vector<std::string>;

// A PFNPROPSHEETUI that writes down its calls and checks at each what the interface promises of every call. What it
// does beyond that is set by reason; without that it succeeds.
struct Describer
{
    using Action = std::function<LONG(PROPSHEETUI_INFO& info, LPARAM lParam)>;

    explicit Describer(Events& allEvents, std::string itsName = "") : events(allEvents), name(std::move(itsName)) {}

    static LONG CALLBACK Call(PROPSHEETUI_INFO* info, LPARAM lParam);
    LONG Answer(PROPSHEETUI_INFO& info, LPARAM lParam);
    LPARAM AsParam() const
    {
        return reinterpret_cast<LPARAM>(this);
    }

    Events& events;
    std::string name;
    std::map<WORD, Action> on;
    WORD flags = PSUIINFO_UNICODE;
    HANDLE group = nullptr;
    PFNCOMPROPSHEET comPropSheet = nullptr;
    ULONG_PTR userData = 0; // as left at the last call
    ULONG_PTR result = 0;
};

// A page that writes down its notifications. What it answers beyond that is set by notification; without that it
// accepts.
struct Page
{
    using Action = std::function<LONG_PTR(HWND dialog, const PSHNOTIFY& notice)>;

    Page(Describer& itsDescriber, WORD itsTemplate) : describer(itsDescriber)
    {
        record.dwSize = sizeof(record);
        record.hInstance = GetModuleHandleW(nullptr);
        record.pszTemplate = MAKEINTRESOURCEW(itsTemplate);
        record.pfnDlgProc = Proc;
        record.lParam = reinterpret_cast<LPARAM>(this);
    }

    static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

    // Adds the page to its describer's group.
    HANDLE Add();
    // Calls the interface from the page.
    LONG_PTR Ask(UINT function, LPARAM first = 0, LPARAM second = 0) const;
    LONG_PTR SetResult(LPARAM value) const
    {
        return Ask(CPSFUNC_SET_RESULT, reinterpret_cast<LPARAM>(handle), value);
    }

    Describer& describer;
    PROPSHEETPAGEW record = {};
    HANDLE handle = nullptr;
    std::function<void(HWND dialog)> onInit;
    std::map<int, Action> on;
};

// Waits for the property sheet of a thread and does something with it, mostly pressing buttons one after the other.
class User
{
public:
    using Deed = std::function<void(HWND sheet)>;
    explicit User(Deed deed, DWORD sheetThread = GetCurrentThreadId());
    explicit User(std::vector<int> buttons, DWORD sheetThread = GetCurrentThreadId());
    ~User();
    User(const User&) = delete;
    User& operator=(const User&) = delete;

private:
    std::thread m_thread;
};

// Presses a button of the sheet, or its close box. Does not wait for what comes of it.
void Press(HWND sheet, int button);

// The property sheet that a thread shows, or null, and the texts of its tabs.
HWND FindSheet(DWORD thread);
std::vector<std::wstring> GetTabs(HWND sheet);

// Our compstui.dll, loaded from where the build has put it.
HMODULE Library();
template <typename Function>
Function Export(const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(Library(), name)));
}

struct Outcome
{
    LONG answer;
    DWORD result;
};
Outcome ShowSheet(Describer& describer, HWND owner = nullptr);

// Faults since the test began, and the line of the latest.
DWORD Faults();
std::string LastFault();

} // namespace tsypr::compstui_tests

#endif
