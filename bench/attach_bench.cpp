#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/library.h"

#include <stdexcept>

namespace tsypr::bench
{
namespace
{

// The module's host has these in use long before; loading them is not the module's doing.
constexpr const wchar_t* kSystemLibraries[] = {
    L"user32.dll", L"gdi32.dll", L"advapi32.dll", L"winspool.drv", L"ole32.dll", L"oleaut32.dll", L"shlwapi.dll"};

void LoadAndFree(const wchar_t* name)
{
    const Library library(name);
}

} // namespace

void MeasureAttach(const Surroundings& surroundings, Report& report)
{
    std::vector<Library> system;
    for (const wchar_t* name : kSystemLibraries)
    {
        system.emplace_back(name);
    }
    if (GetModuleHandleW(L"tsyprserverapi.dll") != nullptr)
    {
        throw std::runtime_error("the service library is loaded already");
    }
    Plan plan;
    plan.rounds = 301;
    plan.mostCalls = 1;
    // Every attach leaves a log file, and a folder full of them would make the next one slow.
    plan.betweenRounds = [&] { EmptyFolder(surroundings.LogFolder()); };
    const Comparison times =
        Compare([] { LoadAndFree(L"tsyprui.dll"); }, [] { LoadAndFree(L"bench_empty.dll"); }, plan);
    AddRatio(report, "attach and detach / empty library", times, 1.5, "module", "empty library");
}

} // namespace tsypr::bench
