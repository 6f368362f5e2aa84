#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/config_library.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/json.h"

#include "remote/private_devmode.h"

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

void AddConvertCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command = program.SubCommand(
        "convert", "Calls the driver's device-mode conversion as the spooler does and stores the result.");
    command.Value("PRINTER", options->printer, "printer name").Required();
    const Argument driverDefault =
        command.Flag("--default", options->driverDefault, "the driver's default device mode (without --in always)");
    command.Value("--in", options->in, "file with a device mode to convert into the driver's default")
        .Excludes(driverDefault);
    command.Value("--out", options->out, "file for the resulting device mode").Required();
    command.Flag("--json", options->json, "JSON output");
    command.OnRun([options] { Run(*options); });
}

} // namespace tsypr::printctl
