#include "tests/apps/application.h"

#include "tools/preferences_user/sheet_user.h"

namespace tsypr::application_tests
{
namespace
{

using WindowVisitor = std::function<bool(HWND)>; // false ends the visit

BOOL CALLBACK Visit(HWND window, LPARAM visitor)
{
    return (*reinterpret_cast<const WindowVisitor*>(visitor))(window) ? TRUE : FALSE;
}

std::wstring ClassOf(HWND window)
{
    wchar_t name[64] = L"";
    return {name, static_cast<size_t>(GetClassNameW(window, name, 64))};
}

std::string TextOf(HWND window)
{
    wchar_t text[256] = L"";
    DWORD_PTR length = 0;
    SendMessageTimeoutW(
        window, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text), SMTO_ABORTIFHUNG | SMTO_BLOCK, 1000, &length);
    const std::u8string utf8 = std::filesystem::path(text).u8string();
    return {utf8.begin(), utf8.end()};
}

} // namespace

Application::Application(const std::wstring& program, const std::filesystem::path& document)
{
    std::wstring line = L"\"" + program + L"\" \"" + document.wstring() + L"\"";
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process);
}

Application::~Application()
{
    if (m_process.hProcess != nullptr)
    {
        TerminateProcess(m_process.hProcess, 0);
        WaitForSingleObject(m_process.hProcess, INFINITE);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
}

DWORD Application::ProcessId() const
{
    return m_process.dwProcessId;
}

bool Application::IsRunning() const
{
    return m_process.hProcess != nullptr && WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT;
}

HWND Application::WaitForWindow(const std::function<bool(HWND)>& isWanted) const
{
    HWND found = nullptr;
    const WindowVisitor visitor = [&](HWND window)
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        found = process == m_process.dwProcessId && IsWindowVisible(window) != FALSE &&
                        IsWindowEnabled(window) != FALSE && isWanted(window)
                    ? window
                    : nullptr;
        return found == nullptr;
    };
    preferences_user::WaitUntil(
        [&]
        {
            EnumWindows(Visit, reinterpret_cast<LPARAM>(&visitor));
            return found != nullptr || !IsRunning();
        });
    return found;
}

HWND Application::MainWindow() const
{
    return WaitForWindow([](HWND window) { return GetMenu(window) != nullptr; });
}

HWND Application::DialogWith(int control) const
{
    return WaitForWindow([control](HWND window)
                         { return ClassOf(window) == L"#32770" && GetDlgItem(window, control) != nullptr; });
}

bool Application::Command(WORD command) const
{
    const HWND window = MainWindow();
    return window != nullptr && PostMessageW(window, WM_COMMAND, command, 0) != FALSE;
}

std::string DescribeScreen()
{
    std::string screen;
    std::string indent;
    WindowVisitor describe;
    describe = [&](HWND window)
    {
        const std::string text = TextOf(window);
        if (IsWindowVisible(window) != FALSE && (indent.empty() || !text.empty()))
        {
            screen += indent + std::filesystem::path(ClassOf(window)).string() + " " +
                      std::to_string(GetDlgCtrlID(window)) + " \"" + text + "\"" +
                      (IsWindowEnabled(window) != FALSE ? "\n" : " disabled\n");
        }
        if (indent.empty() && IsWindowVisible(window) != FALSE)
        {
            indent = "  ";
            EnumChildWindows(window, Visit, reinterpret_cast<LPARAM>(&describe));
            indent.clear();
        }
        return true;
    };
    EnumWindows(Visit, reinterpret_cast<LPARAM>(&describe));
    return screen;
}

} // namespace tsypr::application_tests
