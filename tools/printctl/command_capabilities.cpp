#include "tools/printctl/capabilities.h"
#include "tools/printctl/command_line.h"
#include "tools/printctl/commands.h"
#include "tools/printctl/devmode_buffer.h"
#include "tools/printctl/devmode_fields.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/json.h"
#include "tools/printctl/ticket_provider.h"
#include "tools/printctl/ticket_report.h"

#include <algorithm>
#include <map>
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
    bool json = false;
    bool xml = false;
};

using Answers = std::map<WORD, CapabilityAnswer>;

// Lists whose entries belong together, one by one.
struct ListGroup
{
    WORD first;
    WORD second;
};
constexpr ListGroup kGroups[] = {
    {DC_PAPERS, DC_PAPERNAMES}, {DC_PAPERS, DC_PAPERSIZE}, {DC_BINS, DC_BINNAMES}, {DC_MEDIATYPES, DC_MEDIATYPENAMES}};

std::vector<std::string> FindFaults(const Answers& answers)
{
    std::vector<std::string> faults;
    for (const auto& [index, answer] : answers)
    {
        if (answer.tooMuchData)
        {
            faults.push_back(std::string(answer.index->name) + " delivers more data than it announces");
        }
    }
    for (const ListGroup& group : kGroups)
    {
        const CapabilityAnswer& first = answers.at(group.first);
        const CapabilityAnswer& second = answers.at(group.second);
        if (std::max(first.result, 0) != std::max(second.result, 0))
        {
            faults.push_back(std::string(first.index->name) + " has " + std::to_string(first.result) + " entries, " +
                             second.index->name + " has " + std::to_string(second.result));
        }
    }
    return faults;
}

std::string Millimetres(int64_t tenths)
{
    const std::string whole = std::to_string(tenths / 10);
    return tenths % 10 == 0 ? whole : whole + "." + std::to_string(tenths % 10);
}

// Two 16-bit lengths in tenths of a millimetre packed into one number.
std::pair<int64_t, int64_t> Extent(int packed)
{
    const auto bits = static_cast<DWORD>(packed);
    return {LOWORD(bits), HIWORD(bits)};
}

std::string TrueTypeNames(int bits)
{
    constexpr std::pair<int, const char*> names[] = {
        {DCTT_BITMAP, "bitmap"}, {DCTT_DOWNLOAD, "download"}, {DCTT_SUBDEV, "subdev"}};
    std::string text;
    for (const auto& [bit, name] : names)
    {
        text += (bits & bit) == 0 ? "" : std::string(text.empty() ? "" : ", ") + name;
    }
    return text;
}

std::string PrintRateUnit(int unit)
{
    switch (unit)
    {
    case PRINTRATEUNIT_PPM:
        return "pages per minute";
    case PRINTRATEUNIT_CPS:
        return "characters per second";
    case PRINTRATEUNIT_LPM:
        return "lines per minute";
    case PRINTRATEUNIT_IPM:
        return "inches per minute";
    default:
        return {};
    }
}

// What a number means, in words; empty when the number says it all.
std::string Meaning(const CapabilityAnswer& answer)
{
    if (answer.result == -1)
    {
        return "not supported";
    }
    char text[16];
    switch (answer.index->index)
    {
    case DC_FIELDS:
        return FieldBitNames(static_cast<DWORD>(answer.result));
    case DC_MINEXTENT:
    case DC_MAXEXTENT:
        return Millimetres(Extent(answer.result).first) + " x " + Millimetres(Extent(answer.result).second) + " mm";
    case DC_DUPLEX:
    case DC_COLLATE:
    case DC_STAPLE:
    case DC_COLORDEVICE:
        return answer.result == 0 ? "no" : "yes";
    case DC_VERSION:
    case DC_DRIVER:
        snprintf(text, sizeof(text), "0x%x", static_cast<unsigned>(answer.result));
        return text;
    case DC_TRUETYPE:
        return TrueTypeNames(answer.result);
    case DC_ORIENTATION:
        return answer.result == 0 ? "no landscape" : "degrees from portrait to landscape";
    case DC_PRINTRATEUNIT:
        return PrintRateUnit(answer.result);
    default:
        return {};
    }
}

// The lists as {"id", "name"} with the sizes of papers.
Json ChoiceList(const Answers& answers, WORD ids, WORD names, std::optional<WORD> sizes)
{
    const auto& numbers = answers.at(ids).numbers;
    const auto& texts = answers.at(names).texts;
    Json list = Json::array();
    for (size_t i = 0; i < numbers.size(); ++i)
    {
        Json entry = {{"id", numbers[i].first}, {"name", i < texts.size() ? Utf8(texts[i]) : std::string()}};
        if (sizes && i < answers.at(*sizes).numbers.size())
        {
            entry["widthMm"] = static_cast<double>(answers.at(*sizes).numbers[i].first) / 10;
            entry["heightMm"] = static_cast<double>(answers.at(*sizes).numbers[i].second) / 10;
        }
        list.push_back(std::move(entry));
    }
    return list;
}

Json TextList(const Answers& answers, WORD index)
{
    Json list = Json::array();
    for (const auto& text : answers.at(index).texts)
    {
        list.push_back(Utf8(text));
    }
    return list;
}

Json Lists(const Answers& answers)
{
    Json resolutions = Json::array();
    for (const auto& [x, y] : answers.at(DC_ENUMRESOLUTIONS).numbers)
    {
        resolutions.push_back({{"x", x}, {"y", y}});
    }
    Json nup = Json::array();
    for (const auto& [pages, unused] : answers.at(DC_NUP).numbers)
    {
        nup.push_back(pages);
    }
    return {{"papers", ChoiceList(answers, DC_PAPERS, DC_PAPERNAMES, DC_PAPERSIZE)},
            {"bins", ChoiceList(answers, DC_BINS, DC_BINNAMES, std::nullopt)},
            {"mediaTypes", ChoiceList(answers, DC_MEDIATYPES, DC_MEDIATYPENAMES, std::nullopt)},
            {"resolutions", resolutions},
            {"pagesPerSheet", nup},
            {"mediaReady", TextList(answers, DC_MEDIAREADY)},
            {"personalities", TextList(answers, DC_PERSONALITY)},
            {"dataTypes", TextList(answers, DC_DATATYPE_PRODUCED)},
            {"fileDependencies", TextList(answers, DC_FILEDEPENDENCIES)},
            {"manufacturer", TextList(answers, DC_MANUFACTURER)},
            {"model", TextList(answers, DC_MODEL)}};
}

Json ToJson(const Options& options, const Answers& answers)
{
    Json results = Json::array();
    for (const auto& [index, answer] : answers)
    {
        results.push_back(
            {{"index", index}, {"name", answer.index->name}, {"result", answer.result}, {"meaning", Meaning(answer)}});
    }
    Json document = {{"printer", options.printer}, {"answers", results}};
    document.update(Lists(answers));
    document["faults"] = FindFaults(answers);
    return document;
}

void PrintLists(const Answers& answers)
{
    TextTable papers({"id", "paper", "width", "height (mm)"});
    const auto& sizes = answers.at(DC_PAPERSIZE).numbers;
    const auto& names = answers.at(DC_PAPERNAMES).texts;
    for (size_t i = 0; i < answers.at(DC_PAPERS).numbers.size(); ++i)
    {
        papers.AddRow({std::to_string(answers.at(DC_PAPERS).numbers[i].first),
                       i < names.size() ? Utf8(names[i]) : "-",
                       i < sizes.size() ? Millimetres(sizes[i].first) : "-",
                       i < sizes.size() ? Millimetres(sizes[i].second) : "-"});
    }
    WriteOut(papers.HasRows() ? "\nPapers\n" + papers.Format() : "");
    const Json lists = Lists(answers);
    for (const char* list : {"bins", "mediaTypes"})
    {
        TextTable table({"id", "name"});
        for (const auto& entry : lists.at(list))
        {
            table.AddRow({entry.at("id").dump(), entry.at("name").get<std::string>()});
        }
        WriteOut(table.HasRows()
                     ? std::string(list == std::string("bins") ? "\nBins\n" : "\nMedia types\n") + table.Format()
                     : "");
    }
    std::string resolutions;
    for (const auto& [x, y] : answers.at(DC_ENUMRESOLUTIONS).numbers)
    {
        resolutions += (resolutions.empty() ? "" : ", ") + std::to_string(x) + " x " + std::to_string(y);
    }
    WriteOut(resolutions.empty() ? "" : "\nResolutions (dpi)\n  " + resolutions + "\n");
    WriteOut(lists.at("pagesPerSheet").empty() ? ""
                                               : "\nPages per sheet\n  " + lists.at("pagesPerSheet").dump() + "\n");
    for (const char* list : {"mediaReady", "personalities", "dataTypes", "fileDependencies", "manufacturer", "model"})
    {
        WriteOut(lists.at(list).empty() ? "" : std::string("\n") + list + "\n  " + lists.at(list).dump() + "\n");
    }
}

void PrintText(const Options& options, const Answers& answers)
{
    TextTable table({"index", "capability", "answer", "meaning"});
    for (const auto& [index, answer] : answers)
    {
        table.AddRow({std::to_string(index), answer.index->name, std::to_string(answer.result), Meaning(answer)});
    }
    WriteOut("Capabilities of \"" + options.printer + "\"\n" + table.Format());
    PrintLists(answers);
    for (const auto& fault : FindFaults(answers))
    {
        WriteOut("\nfault: " + fault + "\n");
    }
}

// The print capabilities document instead, for the ticket that the device mode becomes.
void RunXml(const Options& options)
{
    const std::wstring name = Wide(options.printer);
    const PrinterHandle printer = OpenPrinterByName(name);
    const TicketProvider provider(printer, name);
    std::optional<std::string> ticket;
    if (!options.in.empty())
    {
        ticket = provider.FromDevMode(DevModeBuffer::FromFile(Wide(options.in)));
    }
    WriteOut(IndentedXml(provider.Capabilities(ticket)));
}

void Run(const Options& options)
{
    const std::wstring name = Wide(options.printer);
    const PrinterHandle printer = OpenPrinterByName(name);
    const auto info = PrinterInfo(printer, 2);
    const wchar_t* port = reinterpret_cast<const PRINTER_INFO_2W*>(info.data())->pPortName;
    std::optional<DevModeBuffer> deviceMode;
    if (!options.in.empty())
    {
        deviceMode = DevModeBuffer::FromFile(Wide(options.in));
    }
    const Capabilities capabilities(name, port == nullptr ? L"" : port, deviceMode ? deviceMode->Get() : nullptr);
    Answers answers;
    for (const CapabilityIndex& index : CapabilityIndexes())
    {
        answers.emplace(index.index, capabilities.Ask(index.index));
    }
    if (std::all_of(answers.begin(), answers.end(), [](const auto& entry) { return entry.second.result == -1; }))
    {
        throw Failure(ExitCode::System, "the driver of " + Quoted(name) + " answers no capability at all");
    }
    if (options.json)
    {
        WriteJson(ToJson(options, answers));
    }
    else
    {
        PrintText(options, answers);
    }
}

} // namespace

void AddCapabilitiesCommand(const Command& program)
{
    const auto options = std::make_shared<Options>();
    const Command command =
        program.SubCommand("capabilities", "Shows what Windows' DeviceCapabilities says of a printer.");
    command.Value("PRINTER", options->printer, "printer name").Required();
    command.Value("--in", options->in, "file with the device mode to ask for (otherwise none)");
    const Argument json = command.Flag("--json", options->json, "JSON output");
    command.Flag("--xml", options->xml, "the driver's print capabilities document instead of the capabilities")
        .Excludes(json);
    command.OnRun([options] { options->xml ? RunXml(*options) : Run(*options); });
}

} // namespace tsypr::printctl
