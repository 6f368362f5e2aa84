#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/devmode_report.h"
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
    std::string in;
    std::string out;
    std::vector<std::string> set;
    bool userDefault = false;
    bool raw = false;
    bool json = false;
};

// The settings stored with the printer for the current user (level 9) or for everybody (level 8), as they are.
DevModeBuffer StoredDevMode(const PrinterHandle& printer, const std::wstring& name, DWORD level)
{
    const auto info = PrinterInfo(printer, level);
    const DEVMODEW* stored = reinterpret_cast<const PRINTER_INFO_9W*>(info.data())->pDevMode;
    if (stored == nullptr)
    {
        throw Failure(ExitCode::NotFound,
                      "no " + std::string(level == 9 ? "user's" : "printer's") + " settings are stored for " +
                          Quoted(name));
    }
    DevModeBuffer copy = DevModeBuffer::CopyOf(stored);
    copy.CheckFilled("the spooler's store for " + Quoted(name));
    return copy;
}

DevModeBuffer BaseDevMode(const Options& options, const PrinterHandle& printer, const std::wstring& name)
{
    if (!options.in.empty())
    {
        return DevModeBuffer::FromFile(Wide(options.in));
    }
    if (options.userDefault || options.raw)
    {
        return StoredDevMode(printer, name, options.userDefault ? 9 : 8);
    }
    return DefaultDevMode(printer, name);
}

void ApplySettings(DevModeBuffer& dm, const std::vector<std::string>& settings, const PrinterChoices& choices)
{
    for (const auto& setting : settings)
    {
        const std::wstring text = Wide(setting);
        const size_t equals = text.find(L'=');
        if (equals == std::wstring::npos)
        {
            throw Failure(ExitCode::Usage, "--set wants FIELD=VALUE, not " + Quoted(text));
        }
        SetField(dm, FindField(text.substr(0, equals)), text.substr(equals + 1), choices);
    }
}

void Show(const Options& options,
          const DevModeBuffer& dm,
          const std::vector<FieldChange>* changes,
          const PrinterChoices& choices)
{
    if (options.json)
    {
        Json document = {{"printer", options.printer}, {"deviceMode", DevModeJson(dm, choices)}};
        document["changes"] = changes == nullptr ? Json(nullptr) : ChangesJson(*changes, choices);
        WriteJson(document);
        return;
    }
    WriteOut(DevModeText(dm, choices));
    if (changes != nullptr)
    {
        WriteOut(changes->empty() ? "\nno field was asked to change, none changed\n"
                                  : "\nChanges\n" + ChangesText(*changes, choices));
    }
}

void Run(const Options& options)
{
    const std::wstring name = Wide(options.printer);
    const PrinterHandle printer = OpenPrinterByName(name);
    const auto info = PrinterInfo(printer, 2);
    const wchar_t* port = reinterpret_cast<const PRINTER_INFO_2W*>(info.data())->pPortName;
    const PrinterChoices choices = ReadChoices(Capabilities(name, port == nullptr ? L"" : port, nullptr));
    DevModeBuffer dm = BaseDevMode(options, printer, name);
    std::optional<std::vector<FieldChange>> changes;
    if (!options.in.empty() || !options.set.empty())
    {
        const DevModeBuffer before = DefaultDevMode(printer, name);
        ApplySettings(dm, options.set, choices);
        // A driver may write to the settings it is given; the comparison wants those that were asked for.
        const DevModeBuffer requested = dm;
        DevModeBuffer scratch = dm;
        dm = MergeDevMode(printer, name, scratch);
        changes = CompareMerge(before, requested, dm);
    }
    if (!options.out.empty())
    {
        dm.ToFile(Wide(options.out));
    }
    Show(options, dm, changes ? &*changes : nullptr, choices);
}

} // namespace

void AddDevModeCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command =
        program.SubCommand("devmode", "Shows a printer's settings, or merges settings into them without a dialog.");
    command.Value("PRINTER", options->printer, "printer name").Required();
    const Argument in = command.Value("--in", options->in, "file with the settings to merge in");
    command.Value("--out", options->out, "file for the resulting settings");
    command.Values("--set",
                   options->set,
                   "FIELD=VALUE, any number of times: changes a field before the merge. VALUE is a number, a name or "
                   "one of the printer's own names; an unknown FIELD lists them all. Lengths are in tenths of a "
                   "millimetre.");
    const Argument userDefault =
        command.Flag("--user-default", options->userDefault, "start from the settings stored for the user");
    const Argument raw =
        command.Flag("--raw", options->raw, "start from the settings stored with the printer, as they are");
    userDefault.Excludes(in).Excludes(raw);
    raw.Excludes(in);
    command.Flag("--json", options->json, "JSON output");
    command.OnRun([options] { Run(*options); });
}

} // namespace tsypr::printctl
