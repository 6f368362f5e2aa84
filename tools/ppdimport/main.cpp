// Makes a printer profile of the PPD file that a printer's maker publishes.

#include "tools/ppdimport/atomic_file.h"
#include "tools/ppdimport/importer.h"
#include "tools/ppdimport/ppd_reader.h"
#include "tools/ppdimport/text.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <exception>
#include <iostream>

namespace
{

using namespace tsypr::ppdimport;

enum ExitCode
{
    kDone = 0,
    kUsage = 1,
    kInput = 2,
    kOutput = 3,
    kInternal = 4,
};

constexpr const char* kFooter = "Exit codes:\n"
                                "  0  the profile was written\n"
                                "  1  wrong command line\n"
                                "  2  the PPD file is missing, malformed or describes no usable printer\n"
                                "  3  the profile or the report cannot be written\n"
                                "  4  internal error\n";

struct Arguments
{
    std::string ppd;
    std::string output;
    std::string report;
    ImportOptions import;
};

void Declare(CLI::App& app, Arguments& arguments)
{
    app.add_option("PPD", arguments.ppd, "PPD file, plain or compressed with gzip")->required();
    app.add_option("OUTPUT", arguments.output, "profile to write, a JSON file")->required();
    app.add_option("--name", arguments.import.name, "printer name; otherwise made of maker and model")
        ->check(
            [](const std::string& name)
            {
                const std::size_t length = TextLength(CleanText(name));
                const bool good = length >= 1 && length <= 255 && name.find(',') == std::string::npos;
                return good ? std::string() : std::string("a name has 1 to 255 characters and no comma");
            });
    app.add_option("--report", arguments.report, "file for the report of what was left out; otherwise standard output");
    app.add_option("--lock", arguments.import.locked, "setting that the user may not change (may be repeated)")
        ->check(CLI::IsMember({"duplex", "color", "compressionLevel"}))
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--with-nup", arguments.import.withNup, "offer the N-up that the redirection client composes");
    app.footer(kFooter);
}

void Run(const Arguments& arguments)
{
    const ImportResult result = ImportPrinter(ReadPpd(arguments.ppd), arguments.import);
    WriteFileAtomically(arguments.output, ToJson(result.profile));
    if (!arguments.report.empty())
    {
        WriteFileAtomically(arguments.report, result.report);
        return;
    }
    std::cout << result.report << std::flush;
    if (!std::cout)
    {
        throw OutputError("the report cannot be written to standard output");
    }
}

ExitCode Complain(const std::exception& error, ExitCode code)
{
    std::cerr << "ppdimport: " << error.what() << "\n";
    return code;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        CLI::App app("Makes a printer profile of a PPD file", "ppdimport");
        Arguments arguments;
        Declare(app, arguments);
        try
        {
            app.parse(argc, argv);
        }
        catch (const CLI::ParseError& error)
        {
            return app.exit(error) == 0 ? kDone : kUsage;
        }
        Run(arguments);
        return kDone;
    }
    catch (const InputError& error)
    {
        return Complain(error, kInput);
    }
    catch (const OutputError& error)
    {
        return Complain(error, kOutput);
    }
    catch (const std::exception& error)
    {
        return Complain(error, kInternal);
    }
}
