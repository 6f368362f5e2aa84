// This test program run once more, to be killed or waited for.
#ifndef TESSARY_TESTS_LIB_CHILD_PROCESS_H
#define TESSARY_TESTS_LIB_CHILD_PROCESS_H

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace tsypr::test
{

// The arguments must contain neither spaces nor quotes; what is wrong with starting it is an exception.
class ChildProcess
{
public:
    explicit ChildProcess(const std::vector<std::string>& arguments);
    ~ChildProcess()
    {
        Kill();
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Ends it at once, in the middle of whatever it does, and waits for its end. Harmless when it has ended.
    void Kill();

    // Waits for it to end by itself; its exit code.
    int Wait();

private:
#ifdef _WIN32
    HANDLE m_process = nullptr;
#else
    pid_t m_process = 0;
#endif
};

#ifdef _WIN32

inline ChildProcess::ChildProcess(const std::vector<std::string>& arguments)
{
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    std::wstring line = L'"' + program + L'"';
    for (const std::string& argument : arguments)
    {
        line += L' ' + std::wstring(argument.begin(), argument.end());
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(
            program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) == FALSE)
    {
        throw std::runtime_error("cannot start this program again");
    }
    CloseHandle(process.hThread);
    m_process = process.hProcess;
}

inline void ChildProcess::Kill()
{
    if (m_process != nullptr)
    {
        TerminateProcess(m_process, 99);
        Wait();
    }
}

inline int ChildProcess::Wait()
{
    DWORD code = 0;
    WaitForSingleObject(m_process, INFINITE);
    GetExitCodeProcess(m_process, &code);
    CloseHandle(std::exchange(m_process, nullptr));
    return static_cast<int>(code);
}

#else

inline ChildProcess::ChildProcess(const std::vector<std::string>& arguments)
{
    std::vector<std::string> texts{"/proc/self/exe"};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    if (posix_spawn(&m_process, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0)
    {
        throw std::runtime_error("cannot start this program again");
    }
}

inline void ChildProcess::Kill()
{
    if (m_process != 0)
    {
        kill(m_process, SIGKILL);
        Wait();
    }
}

inline int ChildProcess::Wait()
{
    int status = 0;
    waitpid(std::exchange(m_process, 0), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#endif

} // namespace tsypr::test

#endif
