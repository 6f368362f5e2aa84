// This test program run once more, to be killed or waited for, and other things that happen at the same time.
#ifndef TESSARY_TESTS_LIB_CHILD_PROCESS_H
#define TESSARY_TESTS_LIB_CHILD_PROCESS_H

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
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

// What a child process does that is started with these arguments, its part being the first; its exit code.
int RunChild(const std::vector<std::string>& arguments);

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

inline ChildProcess::ChildProcess(const std::vector<std::string>& arguments)
{
#ifdef _WIN32
    std::wstring line(32768, L'\0');
    line.resize(GetModuleFileNameW(nullptr, line.data(), static_cast<DWORD>(line.size())));
    line = L'"' + line + L"\" --child";
    for (const std::string& argument : arguments)
    {
        line += L' ' + std::wstring(argument.begin(), argument.end());
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    const bool started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) != FALSE;
    CloseHandle(process.hThread);
    m_process = process.hProcess;
#else
    std::vector<std::string> texts{"/proc/self/exe", "--child"};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    const bool started = posix_spawn(&m_process, pointers[0], nullptr, nullptr, pointers.data(), environ) == 0;
#endif
    if (!started)
    {
        throw std::runtime_error("cannot start this program again");
    }
}

inline void ChildProcess::Kill()
{
    if (m_process != decltype(m_process){})
    {
#ifdef _WIN32
        TerminateProcess(m_process, 99);
#else
        kill(m_process, SIGKILL);
#endif
        Wait();
    }
}

inline int ChildProcess::Wait()
{
#ifdef _WIN32
    DWORD code = 0;
    WaitForSingleObject(m_process, INFINITE);
    GetExitCodeProcess(m_process, &code);
    CloseHandle(std::exchange(m_process, nullptr));
    return static_cast<int>(code);
#else
    int status = 0;
    waitpid(std::exchange(m_process, 0), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

// The program's main.
inline int RunTestsOrChild(int argc, char** argv)
{
    if (argc > 2 && std::string(argv[1]) == "--child")
    {
        return RunChild({argv + 2, argv + argc});
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

// Waits until another process has written something into the file.
inline void WaitForContents(const std::filesystem::path& file)
{
    std::error_code missing;
    for (int i = 0; i < 20'000; ++i)
    {
        const uintmax_t size = std::filesystem::file_size(file, missing);
        if (!missing && size != 0)
        {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    FAIL() << "the other process does not get on";
}

// Kills a process in the middle of its work, that long after it has acknowledged something in a file.
inline void KillAtWork(const std::vector<std::string>& arguments, const std::filesystem::path& acknowledged, int us)
{
    ChildProcess child(arguments);
    WaitForContents(acknowledged);
    std::this_thread::sleep_for(std::chrono::microseconds(us));
    child.Kill();
}

// Runs the body in so many threads, each with its number, and waits for them.
template <class Body>
void InThreads(int count, const Body& body)
{
    std::vector<std::jthread> threads;
    for (int number = 0; number < count; ++number)
    {
        threads.emplace_back([&body, number] { body(number); });
    }
}

} // namespace tsypr::test

#endif
