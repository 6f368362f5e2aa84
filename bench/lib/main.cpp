// bench_lib.exe: how fast the base library is beside what it could be replaced with.
//
// Exit code: 0 when everything was measured (with --strict also when every goal was met), 1 when a goal was missed, 2
// when something could not be measured.
#include "bench/lib/benches.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace
{

using namespace tsypr::bench;

struct Bench
{
    const char* name;
    void (*measure)(Report& report);
};

constexpr Bench kBenches[] = {
    {"format", MeasureFormatter},
    {"lock", MeasureLocks},
    {"log", MeasureLogLines},
    {"codeset", MeasureCodeSets},
};

struct Options
{
    std::string only; // empty: all
    std::string jsonFile;
    bool strict = false;
};

bool ParseArguments(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i)
    {
        const bool more = i + 1 < argc;
        if (std::strcmp(argv[i], "--strict") == 0)
        {
            options.strict = true;
        }
        else if (std::strcmp(argv[i], "--only") == 0 && more)
        {
            options.only = argv[++i];
        }
        else if (std::strcmp(argv[i], "--json") == 0 && more)
        {
            options.jsonFile = argv[++i];
        }
        else
        {
            return false;
        }
    }
    return true;
}

Report Measure(const std::string& only)
{
    Report report;
    for (const Bench& bench : kBenches)
    {
        if (only.empty() || only == bench.name)
        {
            bench.measure(report);
        }
    }
    return report;
}

int Run(const Options& options)
{
    const Report report = Measure(options.only);
    PrintReport(report);
    if (report.measurements.empty() || (!options.jsonFile.empty() && !WriteJson(report, options.jsonFile)))
    {
        std::fprintf(stderr, "bench_lib: nothing measured, or the result cannot be written\n");
        return 2;
    }
    return options.strict && !report.GoalsMet() ? 1 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!ParseArguments(argc, argv, options))
    {
        std::fprintf(stderr,
                     "bench_lib.exe [--only NAME] [--strict] [--json FILE]\n"
                     "Measures the speed of the base library.\n"
                     "  --only NAME  only this measurement\n"
                     "  --strict     fail when a speed goal is missed\n"
                     "  --json FILE  write the numbers to this file\n");
        return 2;
    }
    try
    {
        return Run(options);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "bench_lib: %s\n", error.what());
        return 2;
    }
}
