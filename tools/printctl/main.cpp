#include "tools/printctl/commands.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <sstream>

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

// Prints help texts and complaints about the command line.
int Answer(const CLI::App& app, const CLI::ParseError& error)
{
    std::ostringstream out;
    std::ostringstream complaint;
    const int code = app.exit(error, out, complaint);
    WriteOut(out.str());
    WriteError(complaint.str());
    return static_cast<int>(code == 0 ? ExitCode::Ok : ExitCode::Usage);
}

int Run(std::vector<std::string> arguments)
{
    CLI::App app("Installs the Tessary Universal EMF Driver and asks Windows about its printers.", "printctl");
    app.require_subcommand(1);
    app.footer(kFooter);
    AddInstallCommand(app);
    AddRemoveCommand(app);
    AddPrintersCommand(app);
    AddCapabilitiesCommand(app);
    AddDevModeCommand(app);
    AddConvertCommand(app);
    AddProfilesCommand(app);
    AddTicketCommand(app);
    AddPreferencesCommand(app);
    for (CLI::App* command : app.get_subcommands({}))
    {
        command->footer(kFooter);
    }
    try
    {
        // CLI11 takes the arguments last one first.
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
        return static_cast<int>(ExitCode::Ok);
    }
    catch (const CLI::ParseError& error)
    {
        return Answer(app, error);
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
