#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/json.h"
#include "tools/printctl/spooler.h"

#include <map>
#include <memory>

namespace tsypr::printctl
{

namespace
{

struct Options
{
    bool all = false;
    bool json = false;
};

void Run(const Options& options)
{
    std::map<std::wstring, DriverEntry> drivers;
    for (const auto& driver : ListDrivers())
    {
        drivers[driver.name] = driver;
    }
    Json list = Json::array();
    TextTable table({"printer", "driver", "port", "driver's UI file", "version"});
    const auto filter = options.all ? std::nullopt : std::optional<std::wstring>(kDriverName);
    for (const auto& printer : ListPrinters(filter))
    {
        const std::filesystem::path file = drivers[printer.driver].configFile;
        const std::string version = Utf8(FileVersion(file));
        list.push_back({{"name", Utf8(printer.name)},
                        {"driver", Utf8(printer.driver)},
                        {"port", Utf8(printer.port)},
                        {"configFile", Utf8(file.wstring())},
                        {"configVersion", version}});
        table.AddRow({Utf8(printer.name),
                      Utf8(printer.driver),
                      Utf8(printer.port),
                      Utf8(file.filename().wstring()),
                      version.empty() ? "-" : version});
    }
    if (options.json)
    {
        WriteJson(list);
    }
    else
    {
        WriteOut(table.HasRows() ? table.Format() : "no printers\n");
    }
}

} // namespace

void AddPrintersCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command = program.SubCommand("printers", "Lists the printers that use our driver.");
    command.Flag("--all", options->all, "every local printer, whatever its driver");
    command.Flag("--json", options->json, "JSON output");
    command.OnRun([options] { Run(*options); });
}

} // namespace tsypr::printctl
