// A program that Wine ships, and what its user sees of it.
#ifndef TESSARY_TESTS_APPS_APPLICATION_H
#define TESSARY_TESTS_APPS_APPLICATION_H

#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>

namespace tsypr::application_tests
{

class Application
{
public:
    // Starts the program with a document. The object ends it, whatever it shows.
    Application(const std::wstring& program, const std::filesystem::path& document);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    DWORD ProcessId() const;
    bool IsRunning() const;

    // Waits for the program's main window; null if it does not come. The same holds for the dialog below.
    HWND MainWindow() const;

    // A dialog that takes input and has this control.
    HWND DialogWith(int control) const;

    // Chooses a command of the main window's menu; returns at once.
    bool Command(WORD command) const;

private:
    HWND WaitForWindow(const std::function<bool(HWND)>& isWanted) const;

    PROCESS_INFORMATION m_process{};
};

// Every window that is to be seen, with the texts in it, a line for each.
std::string DescribeScreen();

} // namespace tsypr::application_tests

#endif
