#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace tsypr::printctl;

constexpr char kFooter[] = "Exit codes:\n"
                           "  0   done\n"
                           "  1   wrong command line, field or value\n"
                           "  2   no such printer, driver, profile, language or stored device mode\n"
                           "  3   a Windows function or the driver failed; install has then taken everything back\n"
                           "  4   an input file is missing, unreadable or inconsistent\n"
                           "  5   the user pressed Cancel or closed the dialog\n"
                           "  10  internal error\n"
                           "Results go to standard output, messages about failures to standard error; both are UTF-8.";

int Report(const std::exception& error, ExitCode code)
{
    WriteError(std::string("printctl: ") + error.what() + "\n");
    return static_cast<int>(code);
}

void DeclareCommands(const Command& program)
{
    AddInstallCommand(program);
    AddRemoveCommand(program);
    AddPrintersCommand(program);
    AddCapabilitiesCommand(program);
    AddDevModeCommand(program);
    AddConvertCommand(program);
    AddProfilesCommand(program);
    AddTicketCommand(program);
    AddPreferencesCommand(program);
}

int Run(std::vector<std::string> arguments)
{
    try
    {
        return RunCommandLine("Installs the Tessary Universal EMF Driver and asks Windows about its printers.",
                              kFooter,
                              DeclareCommands,
                              std::move(arguments));
    }
    catch (const Failure& error)
    {
        return Report(error, error.Code());
    }
    catch (const std::exception& error)
    {
        return Report(error, ExitCode::Internal);
    }
}

} // namespace

int wmain(int count, wchar_t** texts)
{
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
    {
        arguments.push_back(Utf8(texts[i]));
    }
    return Run(std::move(arguments));
}
