#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/devmode_report.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/ticket_provider.h"
#include "tools/printctl/ticket_report.h"

#include <memory>
#include <optional>

namespace tsypr::printctl
{

namespace
{

struct Options
{
    std::string printer;
    std::string in; // the input file; in from-devmode it may be empty
    std::string out;
    bool json = false;
};

// A printer that has been opened, with its provider.
struct Subject
{
    explicit Subject(const Options& options)
        : name(Wide(options.printer)), printer(OpenPrinterByName(name)), provider(printer, name)
    {
    }

    // The names of its papers and so on, for the report.
    PrinterChoices Choices() const
    {
        const auto info = PrinterInfo(printer, 2);
        const wchar_t* port = reinterpret_cast<const PRINTER_INFO_2W*>(info.data())->pPortName;
        return ReadChoices(printctl::Capabilities(name, port == nullptr ? L"" : port, nullptr));
    }

    std::wstring name;
    PrinterHandle printer;
    TicketProvider provider;
};

std::string ReadTicket(const Options& options)
{
    const std::vector<uint8_t> bytes = ReadWholeFile(Wide(options.in));
    return {bytes.begin(), bytes.end()};
}

// Documents that go to a file are not shown as well.
void ShowDocument(const Options& options, const std::string& document)
{
    if (!options.out.empty())
    {
        WriteWholeFile(Wide(options.out), document.data(), document.size());
    }
    else if (!options.json)
    {
        WriteOut(IndentedXml(document));
    }
}

void ShowTicketChanges(bool isConflictResolved, const std::vector<TicketChange>& changes)
{
    WriteOut(isConflictResolved ? "\nConflicts were resolved.\n" : "\nNo conflict.\n");
    WriteOut(changes.empty() ? "The printer takes the ticket as it is.\n" : TicketChangesText(changes));
}

// What the ticket cannot carry shows when it becomes a device mode again.
void RunFromDevMode(const Options& options)
{
    const Subject subject(options);
    const DevModeBuffer input =
        options.in.empty() ? DefaultDevMode(subject.printer, subject.name) : DevModeBuffer::FromFile(Wide(options.in));
    const std::string ticket = subject.provider.FromDevMode(input);
    bool isConflictResolved = false;
    const DevModeBuffer back = subject.provider.ToDevMode(ticket, isConflictResolved);
    const std::vector<FieldChange> changes = CompareMerge(input, input, back);
    const PrinterChoices choices = subject.Choices();
    ShowDocument(options, ticket);
    if (options.json)
    {
        WriteJson({{"printer", options.printer}, {"ticket", ticket}, {"changes", ChangesJson(changes, choices)}});
        return;
    }
    WriteOut(changes.empty()
                 ? "\nThe ticket carries every setting.\n"
                 : "\nChanged when the ticket becomes a device mode again:\n" + ChangesText(changes, choices));
}

// What the printer made of the ticket shows when the device mode becomes a ticket again.
void RunToDevMode(const Options& options)
{
    const std::string ticket = ReadTicket(options);
    const Subject subject(options);
    bool isConflictResolved = false;
    const DevModeBuffer output = subject.provider.ToDevMode(ticket, isConflictResolved);
    const std::vector<TicketChange> changes = CompareTickets(ticket, subject.provider.FromDevMode(output));
    const PrinterChoices choices = subject.Choices();
    if (!options.out.empty())
    {
        output.ToFile(Wide(options.out));
    }
    if (options.json)
    {
        WriteJson({{"printer", options.printer},
                   {"conflictResolved", isConflictResolved},
                   {"deviceMode", DevModeJson(output, choices)},
                   {"changes", TicketChangesJson(changes)}});
        return;
    }
    WriteOut(DevModeText(output, choices));
    ShowTicketChanges(isConflictResolved, changes);
}

void RunValidate(const Options& options)
{
    const std::string ticket = ReadTicket(options);
    const Subject subject(options);
    const TicketProvider::Answer answer = subject.provider.Validate(ticket);
    const std::vector<TicketChange> changes = CompareTickets(ticket, answer.document);
    ShowDocument(options, answer.document);
    if (options.json)
    {
        WriteJson({{"printer", options.printer},
                   {"conflictResolved", answer.isConflictResolved},
                   {"ticket", answer.document},
                   {"changes", TicketChangesJson(changes)}});
        return;
    }
    ShowTicketChanges(answer.isConflictResolved, changes);
}

// `input` is the help text of the input file, which is an option where `isOptional`.
void AddConversion(const Command& parent,
                   const char* name,
                   const char* description,
                   const char* input,
                   bool isOptional,
                   void (*run)(const Options& options))
{
    const auto options = std::make_shared<Options>();
    const Command command = parent.SubCommand(name, description);
    command.Value("PRINTER", options->printer, "printer name").Required();
    command.Value(isOptional ? "--in" : "FILE", options->in, input).Required(!isOptional);
    command.Value("--out", options->out, "file for the result");
    command.Flag("--json", options->json, "JSON output");
    command.OnRun([options, run] { run(*options); });
}

} // namespace

void AddTicketCommand(const Command& program)
{
    const Command command = program.SubCommand(
        "ticket", "Has the driver convert and check print tickets as Windows' print ticket services do.");
    command.RequireSubCommand();
    AddConversion(command,
                  "from-devmode",
                  "Makes a print ticket of a device mode, and shows what a ticket cannot carry.",
                  "file with the device mode (otherwise the printer's default)",
                  true,
                  RunFromDevMode);
    AddConversion(command,
                  "to-devmode",
                  "Makes a device mode of a print ticket, and shows what the printer made of the ticket.",
                  "file with the print ticket",
                  false,
                  RunToDevMode);
    AddConversion(command,
                  "validate",
                  "Has the printer correct a print ticket, and shows what it changed.",
                  "file with the print ticket",
                  false,
                  RunValidate);
}

} // namespace tsypr::printctl
