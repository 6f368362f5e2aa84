#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/devmode_report.h"
#include "tools/printctl/dialog_language.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"

#include <memory>
#include <optional>

namespace tsypr::printctl
{

namespace
{

struct Options
{
    std::string printer;
    std::string language;
    std::string out;
    bool json = false;
};

PrinterChoices ChoicesOf(const PrinterHandle& printer, const std::wstring& name)
{
    const auto info = PrinterInfo(printer, 2);
    const wchar_t* port = reinterpret_cast<const PRINTER_INFO_2W*>(info.data())->pPortName;
    return ReadChoices(Capabilities(name, port == nullptr ? L"" : port, nullptr));
}

void Show(const Options& options,
          const DevModeBuffer& dm,
          const std::vector<FieldChange>& changes,
          const PrinterChoices& choices)
{
    if (options.json)
    {
        WriteJson({{"printer", options.printer},
                   {"deviceMode", DevModeJson(dm, choices)},
                   {"changes", ChangesJson(changes, choices)}});
        return;
    }
    WriteOut(changes.empty() ? "OK was pressed, and no setting has changed.\n"
                             : "OK was pressed. Changed:\n" + DifferencesText(changes, choices));
}

void Run(const Options& options)
{
    const std::wstring name = Wide(options.printer);
    const PrinterHandle printer = OpenPrinterByName(name);
    std::optional<DialogLanguage> language; // before anything loads the driver
    if (!options.language.empty())
    {
        language.emplace(DriverOf(printer, name).configFile, options.language);
    }
    // Without it Windows would enlarge the dialog's pixels where the screen has more than 96 in an inch.
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_SYSTEM_AWARE);
    const DevModeBuffer before = DefaultDevMode(printer, name);
    // A driver may write to the settings that it is given.
    DevModeBuffer input = before;
    const std::optional<DevModeBuffer> result = PromptDevMode(printer, name, input);
    if (!result)
    {
        throw Failure(ExitCode::Cancelled, "the dialog was cancelled, nothing has changed");
    }
    if (!options.out.empty())
    {
        result->ToFile(Wide(options.out));
    }
    Show(options, *result, CompareSettings(before, *result), ChoicesOf(printer, name));
}

} // namespace

void AddPreferencesCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command = program.SubCommand(
        "preferences", "Opens a printer's printing preferences as applications do, and shows what the user changed.");
    command.Value("PRINTER", options->printer, "printer name").Required();
    command.Value("--language",
                  options->language,
                  "language of the driver's pages, such as de-de, instead of the user's display language; an "
                  "unknown one lists those installed");
    command.Value("--out", options->out, "file for the resulting settings; not written after Cancel");
    command.Flag("--json", options->json, "JSON output");
    command.OnRun([options] { Run(*options); });
}

} // namespace tsypr::printctl
