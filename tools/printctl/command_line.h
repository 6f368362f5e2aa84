// What commands say of their arguments. Behind it stands CLI11, whose header takes longer to compile than any command:
// only command_line.cpp includes it.
#ifndef TESSARY_PRINTCTL_COMMAND_LINE_H
#define TESSARY_PRINTCTL_COMMAND_LINE_H

#include <functional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace tsypr::printctl
{

// An argument that a command takes. A handle: copies mean the same argument, which lives as long as the command line.
class Argument
{
public:
    explicit Argument(CLI::Option* option) : m_option(option) {}
    const Argument& Required(bool isRequired = true) const;
    const Argument& Excludes(const Argument& other) const;

private:
    CLI::Option* m_option;
};

// The program, or one of its commands. A handle, too. What arguments are stored in must outlive the command line.
class Command
{
public:
    explicit Command(CLI::App* app) : m_app(app) {}
    Command SubCommand(const char* name, const char* description) const;
    void RequireSubCommand() const;
    // A text: an option where the name begins with dashes, else an argument told by its place. What `value` holds now
    // is shown as the default.
    Argument Value(const char* name, std::string& value, const char* description) const;
    // An option that may be given any number of times.
    Argument Values(const char* name, std::vector<std::string>& values, const char* description) const;
    Argument Flag(const char* name, bool& flag, const char* description) const;
    // Called while the command line is being parsed; what it throws ends the parsing.
    void OnRun(std::function<void()> run) const;

private:
    CLI::App* m_app;
};

// Declares the commands by `declare`, parses the arguments (UTF-8, without the program's name) and so runs the command
// that they name. Help and complaints are written out. Returns the exit code; throws what the command throws.
int RunCommandLine(const char* description,
                   const char* footer,
                   const std::function<void(const Command& program)>& declare,
                   std::vector<std::string> arguments);

} // namespace tsypr::printctl

#endif
