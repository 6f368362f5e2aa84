#include "tools/printctl/commands.h"
#include "tools/printctl/config_library.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/json.h"

#include "remote/private_devmode.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tsypr::printctl
{

namespace
{

struct Options
{
    std::string printer;
    bool driverDefault = false;
    std::string in;
    std::string out;
    bool json = false;
};

void Run(const Options& options)
{
    const std::wstring name = Wide(options.printer);
    const PrinterHandle printer = OpenPrinterByName(name);
    const fs::path configFile = DriverOf(printer, name).configFile;
    const ConfigLibrary library(configFile);
    DevModeBuffer result = library.DriverDefault(name);
    if (!options.in.empty())
    {
        DevModeBuffer input = DevModeBuffer::FromFile(Wide(options.in));
        library.Convert(name, input, result);
    }
    const fs::path out = Wide(options.out);
    result.ToFile(out);
    if (options.json)
    {
        WriteJson({{"printer", options.printer},
                   {"configFile", Utf8(configFile.wstring())},
                   {"mode", options.in.empty() ? "default" : "convert"},
                   {"publicSize", result.Get()->dmSize},
                   {"driverExtra", result.Get()->dmDriverExtra},
                   {"hasPrivateBlock", GetPrivateDevMode(result.Get()) != nullptr},
                   {"file", Utf8(out.wstring())}});
        return;
    }
    WriteOut("wrote " + std::to_string(DevModeTotalSize(result.Get())) + " bytes (" +
             std::to_string(result.Get()->dmSize) + " public, " + std::to_string(result.Get()->dmDriverExtra) +
             " of the driver) to " + Shown(out) + "\n");
}

} // namespace

void AddConvertCommand(CLI::App& app)
{
    const auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "convert", "Calls the driver's device-mode conversion as the spooler does and stores the result.");
    command->add_option("PRINTER", options->printer, "printer name")->required();
    CLI::Option* driverDefault = command->add_flag(
        "--default", options->driverDefault, "the driver's default device mode (without --in always)");
    command->add_option("--in", options->in, "file with a device mode to convert into the driver's default")
        ->excludes(driverDefault);
    command->add_option("--out", options->out, "file for the resulting device mode")->required();
    command->add_flag("--json", options->json, "JSON output");
    command->callback([options] { Run(*options); });
}

} // namespace tsypr::printctl
