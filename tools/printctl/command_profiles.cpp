#include "service/profile_loader.h"
#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/json.h"

#include <memory>

namespace tsypr::printctl
{

namespace
{

struct Options
{
    std::string folder;
    bool json = false;
};

void PrintJson(const service::ProfileSet& set)
{
    Json printers = Json::array();
    for (const auto& printer : set.printers)
    {
        printers.push_back({{"name", printer.name},
                            {"manufacturer", printer.manufacturer},
                            {"model", printer.model},
                            {"papers", printer.papers.size()}});
    }
    Json problems = Json::array();
    for (const auto& problem : set.problems)
    {
        problems.push_back({{"file", problem.file}, {"field", problem.field}, {"reason", problem.reason}});
    }
    WriteJson({{"printers", printers}, {"problems", problems}});
}

void PrintText(const service::ProfileSet& set)
{
    TextTable table({"printer", "manufacturer", "model", "papers"});
    for (const auto& printer : set.printers)
    {
        table.AddRow({printer.name, printer.manufacturer, printer.model, std::to_string(printer.papers.size())});
    }
    WriteOut(table.HasRows() ? table.Format() : "no usable printer profile\n");
    for (const auto& problem : set.problems)
    {
        WriteOut(problem.file + ": " + problem.field + ": " + problem.reason + "\n");
    }
}

void Run(const Options& options)
{
    const service::ProfileSet set = service::LoadProfiles(Wide(options.folder));
    options.json ? PrintJson(set) : PrintText(set);
    if (!set.problems.empty())
    {
        throw Failure(ExitCode::BadFile,
                      std::to_string(set.problems.size()) + " faults in " + Quoted(Wide(options.folder)));
    }
}

} // namespace

void AddProfilesCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command = program.SubCommand("profiles", "Checks the printer profiles of a folder.");
    command.Value("DIRECTORY", options->folder, "folder with *.json profiles").Required();
    command.Flag("--json", options->json, "JSON output");
    command.OnRun([options] { Run(*options); });
}

} // namespace tsypr::printctl
