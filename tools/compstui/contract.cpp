#include "tools/compstui/contract.h"

#include <windows.h>

#include <memory>
#include <mutex>
#include <vector>

namespace tsypr::compstui
{
namespace
{

constexpr std::size_t kKeptLines = 256;
constexpr wchar_t kLogVariable[] = L"TESSARY_COMPSTUI_LOG";

struct CloseFile
{
    using pointer = HANDLE;
    void operator()(HANDLE file) const noexcept
    {
        CloseHandle(file);
    }
};

struct Faults
{
    std::mutex mutex;
    std::size_t count = 0;
    std::vector<std::string> lines;
};

Faults& AllFaults()
{
    static Faults faults;
    return faults;
}

// Appending in one piece keeps the lines of several processes whole.
void AppendToLog(const std::string& line)
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetEnvironmentVariableW(kLogVariable, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
    {
        return;
    }
    const HANDLE opened = CreateFileW(path,
                                      FILE_APPEND_DATA,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr,
                                      OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL,
                                      nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        return;
    }
    const std::unique_ptr<HANDLE, CloseFile> file(opened);
    DWORD written = 0;
    WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

void WriteLine(const std::string& line)
{
    OutputDebugStringA(line.c_str());
    AppendToLog(line + "\r\n");
}

} // namespace

void ReportFault(const char* function, const char* what) noexcept
{
    try
    {
        const std::string line = std::string("compstui: contract fault: ") + function + ": " + what + ".";
        Faults& faults = AllFaults();
        {
            const std::lock_guard lock(faults.mutex);
            ++faults.count;
            if (faults.lines.size() < kKeptLines)
            {
                faults.lines.push_back(line);
            }
        }
        WriteLine(line);
    }
    catch (const std::exception&)
    {
        OutputDebugStringA("compstui: contract fault, and no memory to describe it.");
    }
}

void ReportUnsupported(const char* function) noexcept
{
    try
    {
        WriteLine(std::string("compstui: not supported here: ") + function + ".");
    }
    catch (const std::exception&)
    {
        OutputDebugStringA("compstui: not supported here.");
    }
}

std::size_t FaultCount() noexcept
{
    Faults& faults = AllFaults();
    const std::lock_guard lock(faults.mutex);
    return faults.count;
}

std::string FaultText(std::size_t index)
{
    Faults& faults = AllFaults();
    const std::lock_guard lock(faults.mutex);
    return index < faults.lines.size() ? faults.lines[index] : std::string();
}

} // namespace tsypr::compstui
