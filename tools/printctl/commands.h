// The commands of the program, one file each.
#ifndef TESSARY_PRINTCTL_COMMANDS_H
#define TESSARY_PRINTCTL_COMMANDS_H

namespace CLI
{
class App;
}

namespace tsypr::printctl
{

// Each adds its command to the command line; the command runs while the command line is being parsed and ends early by
// throwing Failure.
void AddInstallCommand(CLI::App& app);
void AddRemoveCommand(CLI::App& app);
void AddPrintersCommand(CLI::App& app);
void AddCapabilitiesCommand(CLI::App& app);
void AddDevModeCommand(CLI::App& app);
void AddConvertCommand(CLI::App& app);
void AddProfilesCommand(CLI::App& app);
void AddTicketCommand(CLI::App& app);
void AddPreferencesCommand(CLI::App& app);

} // namespace tsypr::printctl

#endif
