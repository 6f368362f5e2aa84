// The commands of the program, one file each.
#ifndef TESSARY_PRINTCTL_COMMANDS_H
#define TESSARY_PRINTCTL_COMMANDS_H

namespace tsypr::printctl
{

class Command;

// Each adds its command to the program's; the command runs while the command line is being parsed and ends early by
// throwing Failure.
void AddInstallCommand(const Command& program);
void AddRemoveCommand(const Command& program);
void AddPrintersCommand(const Command& program);
void AddCapabilitiesCommand(const Command& program);
void AddDevModeCommand(const Command& program);
void AddConvertCommand(const Command& program);
void AddProfilesCommand(const Command& program);
void AddTicketCommand(const Command& program);
void AddPreferencesCommand(const Command& program);

} // namespace tsypr::printctl

#endif
