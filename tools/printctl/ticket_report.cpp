#include "tools/printctl/ticket_report.h"

#include "service/ticket/keywords.h"
#include "service/ticket/xml_reader.h"
#include "tools/printctl/errors.h"

#include <map>
#include <span>

namespace tsypr::printctl
{

namespace
{

using service::Psf;
using service::QName;
using service::XmlElement;
using Settings = std::map<std::string, std::string>;

std::string Shown(const QName& name)
{
    if (name.uri == service::kKeywordsUri || name.uri == service::kFrameworkUri)
    {
        return (name.uri == service::kKeywordsUri ? "psk:" : "psf:") + name.local;
    }
    return "{" + name.uri + "}" + name.local;
}

std::string ValueText(const XmlElement& holder)
{
    if (const XmlElement* reference = holder.FindChild(Psf("ParameterRef")))
    {
        return reference->Name() ? Shown(*reference->Name()) : "";
    }
    const XmlElement* value = holder.FindChild(Psf("Value"));
    if (value == nullptr)
    {
        return "";
    }
    return value->qualifiedText ? Shown(*value->qualifiedText) : value->text;
}

// The option's name, or what its scored properties say.
std::string OptionText(const XmlElement& option)
{
    if (option.Name())
    {
        return Shown(*option.Name());
    }
    std::string text;
    for (const XmlElement& scored : option.children)
    {
        if (scored.tag == Psf("ScoredProperty") && scored.Name())
        {
            text += (text.empty() ? "" : ", ") + Shown(*scored.Name()) + " " + ValueText(scored);
        }
    }
    return text;
}

void Collect(const XmlElement& element, const std::string& place, Settings& settings)
{
    for (const XmlElement& child : element.children)
    {
        const std::string name = place + (child.Name() ? Shown(*child.Name()) : "?");
        if (child.tag == Psf("Feature"))
        {
            const XmlElement* option = child.FindChild(Psf("Option"));
            settings.emplace(name, option == nullptr ? "" : OptionText(*option));
            Collect(child, name + "/", settings);
        }
        else if (child.tag == Psf("ParameterInit") || child.tag == Psf("Property"))
        {
            settings.emplace(name, ValueText(child));
        }
    }
}

Settings ReadSettings(const std::string& ticket)
{
    const std::optional<XmlElement> root = service::ReadXml(std::as_bytes(std::span(ticket)));
    if (!root)
    {
        throw Failure(ExitCode::BadFile, "the print ticket is no XML document that can be read");
    }
    Settings settings;
    Collect(*root, "", settings);
    return settings;
}

std::optional<std::string> Find(const Settings& settings, const std::string& name)
{
    const auto found = settings.find(name);
    return found == settings.end() ? std::nullopt : std::optional(found->second);
}

Json OrNull(const std::optional<std::string>& text)
{
    return text ? Json(*text) : Json(nullptr);
}

} // namespace

std::vector<TicketChange> CompareTickets(const std::string& before, const std::string& after)
{
    const Settings first = ReadSettings(before);
    const Settings second = ReadSettings(after);
    Settings all = first;
    all.insert(second.begin(), second.end());
    std::vector<TicketChange> changes;
    for (const auto& [name, unused] : all)
    {
        TicketChange change{name, Find(first, name), Find(second, name)};
        if (change.before != change.after)
        {
            changes.push_back(std::move(change));
        }
    }
    return changes;
}

Json TicketChangesJson(const std::vector<TicketChange>& changes)
{
    Json list = Json::array();
    for (const TicketChange& change : changes)
    {
        list.push_back({{"setting", change.name}, {"before", OrNull(change.before)}, {"after", OrNull(change.after)}});
    }
    return list;
}

std::string TicketChangesText(const std::vector<TicketChange>& changes)
{
    std::string text;
    for (const TicketChange& change : changes)
    {
        text += change.name + ": ";
        if (!change.before)
        {
            text += "added, " + change.after.value_or("");
        }
        else if (!change.after)
        {
            text += "removed, was " + *change.before;
        }
        else
        {
            text += "changed from " + *change.before + " to " + *change.after;
        }
        text += "\n";
    }
    return text;
}

std::string IndentedXml(const std::string& xml)
{
    std::string text;
    size_t depth = 0;
    bool isInside = false; // the last tag opened an element
    for (size_t at = 0; xml.find('<', at) != std::string::npos;)
    {
        const size_t open = xml.find('<', at);
        const size_t close = std::min(xml.find('>', open), xml.size() - 1);
        const std::string content = xml.substr(at, open - at);
        const std::string tag = xml.substr(open, close - open + 1);
        const bool isEnd = tag.starts_with("</");
        const bool hasText = content.find_first_not_of(" \t\r\n") != std::string::npos;
        depth -= isEnd && depth > 0 ? 1 : 0;
        if (hasText)
        {
            text += content;
        }
        else if (!text.empty() && !(isEnd && isInside))
        {
            text += "\n" + std::string(2 * depth, ' ');
        }
        text += tag;
        isInside = !isEnd && !tag.ends_with("/>") && !tag.starts_with("<?") && !tag.starts_with("<!");
        depth += isInside ? 1 : 0;
        at = close + 1;
    }
    return text + "\n";
}

} // namespace tsypr::printctl
