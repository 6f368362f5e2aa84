#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/install_plan.h"
#include "tools/printctl/installation.h"
#include "tools/printctl/text.h"

#include <algorithm>
#include <memory>

namespace tsypr::printctl
{

namespace
{

struct Options
{
    std::string driverFolder;
    std::string languageFolder;
    std::string profilesFolder;
    std::string graphicsDriver;
    std::string dataFile;
    std::string port = "nul:";
    std::vector<std::string> printers;
};

std::vector<std::wstring> WideAll(const std::vector<std::string>& texts)
{
    std::vector<std::wstring> result;
    std::transform(texts.begin(), texts.end(), std::back_inserter(result), Wide);
    return result;
}

void Run(const Options& options)
{
    WriteOut(Install(MakeInstallPlan({Wide(options.driverFolder),
                                      Wide(options.languageFolder),
                                      Wide(options.profilesFolder),
                                      Wide(options.graphicsDriver),
                                      Wide(options.dataFile),
                                      WideAll(options.printers),
                                      Wide(options.port)})));
}

} // namespace

void AddInstallCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command = program.SubCommand(
        "install",
        "Installs or updates the driver and its printers. A failure takes back everything this run changed.");
    command.Value("--driver-dir",
                  options->driverFolder,
                  "folder with tsyprui.dll and tsyprserverapi.dll (otherwise the folder of this program)");
    command.Value("--language-dir", options->languageFolder, "folder with tsyprUI_*.dll (otherwise the driver folder)");
    command.Value("--profiles",
                  options->profilesFolder,
                  "folder with printer profiles (otherwise printers\\ in the driver folder)");
    command.Values("--printer",
                   options->printers,
                   "any number of times: a printer to add, named as a profile, with or without a comma and a session "
                   "suffix behind "
                   "(otherwise one printer for each profile)");
    command.Value("--port", options->port, "port of new printers");
    command.Value("--graphics-driver",
                  options->graphicsDriver,
                  "rendering DLL of the driver (otherwise wineps.drv from the spooler's folder)");
    command.Value("--data-file",
                  options->dataFile,
                  "data file of the driver: for wineps.drv a PPD file (otherwise a plain one of our own)");
    command.OnRun([options] { Run(*options); });
}

} // namespace tsypr::printctl
