#include "tools/printctl/command_line.h"

#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <utility>

namespace tsypr::printctl
{

namespace
{

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

} // namespace

const Argument& Argument::Required(bool isRequired) const
{
    m_option->required(isRequired);
    return *this;
}

const Argument& Argument::Excludes(const Argument& other) const
{
    m_option->excludes(other.m_option);
    return *this;
}

Command Command::SubCommand(const char* name, const char* description) const
{
    return Command(m_app->add_subcommand(name, description));
}

void Command::RequireSubCommand() const
{
    m_app->require_subcommand(1);
}

Argument Command::Value(const char* name, std::string& value, const char* description) const
{
    CLI::Option* option = m_app->add_option(name, value, description);
    return Argument(value.empty() ? option : option->capture_default_str());
}

Argument Command::Values(const char* name, std::vector<std::string>& values, const char* description) const
{
    return Argument(m_app->add_option(name, values, description)->allow_extra_args(false));
}

Argument Command::Flag(const char* name, bool& flag, const char* description) const
{
    return Argument(m_app->add_flag(name, flag, description));
}

void Command::OnRun(std::function<void()> run) const
{
    m_app->callback(std::move(run));
}

int RunCommandLine(const char* description,
                   const char* footer,
                   const std::function<void(const Command& program)>& declare,
                   std::vector<std::string> arguments)
{
    CLI::App app(description, "printctl");
    app.require_subcommand(1);
    app.footer(footer);
    declare(Command(&app));
    for (CLI::App* command : app.get_subcommands({}))
    {
        command->footer(footer);
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
}

} // namespace tsypr::printctl
