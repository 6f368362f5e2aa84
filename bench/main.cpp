// bench.exe: how fast the module is beside what it is built on, and what its functions ask of the service.
//
// Exit code: 0 when the service calls are the prescribed ones, 1 when they are not (with --strict also when a speed
// goal is missed), 2 when something could not be measured.
#include "bench/benches.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

namespace
{

using namespace tsypr::bench;

Report MeasureAll()
{
    Report report;
    const Surroundings surroundings;
    MeasureAttach(surroundings, report); // first: the others leave nothing loaded, but this one depends on it
    MeasureCapabilityQuery(report);
    MeasureConvert(report);
    MeasureMerge(report);
    MeasureQuietLog(report);
    MeasurePrintTickets(report);
    MeasurePrintSchemaQueries(report);
    CheckServiceCalls(report);
    CheckTicketCalls(report);
    return report;
}

struct Options
{
    std::string jsonFile; // empty: none
    bool strict = false;
};

bool ParseArguments(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i)
    {
        if (std::strcmp(argv[i], "--strict") == 0)
        {
            options.strict = true;
        }
        else if (std::strcmp(argv[i], "--json") == 0 && i + 1 < argc)
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

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!ParseArguments(argc, argv, options))
    {
        std::fprintf(stderr,
                     "bench.exe [--strict] [--json FILE]\n"
                     "Measures the speed of the Tessary printing preferences module.\n"
                     "  --strict     fail when a speed goal is missed\n"
                     "  --json FILE  write the numbers to this file\n");
        return 2;
    }
    try
    {
        const Report report = MeasureAll();
        PrintReport(report);
        if (!options.jsonFile.empty() && !WriteJson(report, options.jsonFile))
        {
            std::fprintf(stderr, "bench: cannot write %s\n", options.jsonFile.c_str());
            return 2;
        }
        return report.CallsMatch() && (!options.strict || report.GoalsMet()) ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 2;
    }
}
