#include "service/ticket/option_matching.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <system_error>

#include "service/ticket/keywords.h"
#include "service/ticket/setting_table.h"

namespace tsypr::service
{

namespace
{

// The value of the ticket's scored property, also when it is in a parameter.
const XmlElement* FindScoredValue(const XmlElement& option, std::string_view name, const XmlElement& ticket)
{
    const XmlElement* scored = option.FindChild(Psf("ScoredProperty"), Psk(name));
    if (scored == nullptr)
    {
        return nullptr;
    }
    const XmlElement* holder = scored;
    if (const XmlElement* reference = scored->FindChild(Psf("ParameterRef")))
    {
        const std::optional<QName> parameter = reference->Name();
        holder = parameter ? ticket.FindChild(Psf("ParameterInit"), *parameter) : nullptr;
    }
    return holder == nullptr ? nullptr : holder->FindChild(Psf("Value"));
}

bool HasSameMeaning(const ScoredProperty& scored,
                    const XmlElement& option,
                    const XmlElement& ticket,
                    std::int64_t tolerance)
{
    const XmlElement* value = FindScoredValue(option, scored.name, ticket);
    if (value == nullptr || !scored.IsNumber())
    {
        return false;
    }
    const std::int64_t number = ParseInteger(value->text).value_or(std::numeric_limits<std::int64_t>::min());
    return number >= scored.number - tolerance && number <= scored.number + tolerance;
}

bool IsSame(const ScoredProperty& scored, const XmlElement& option, const XmlElement& ticket)
{
    if (!scored.parameter.empty())
    {
        const XmlElement* property = option.FindChild(Psf("ScoredProperty"), Psk(scored.name));
        return property != nullptr && property->FindChild(Psf("ParameterRef"), Psk(scored.parameter)) != nullptr;
    }
    const XmlElement* value = FindScoredValue(option, scored.name, ticket);
    return value != nullptr &&
           (scored.text.empty() ? ParseInteger(value->text) == scored.number : value->text == scored.text);
}

bool IsPerfect(const TicketOption& candidate, const XmlElement& option, const XmlElement& ticket)
{
    const auto count = std::ranges::count(option.children, Psf("ScoredProperty"), &XmlElement::tag);
    return option.Name() == candidate.name && static_cast<std::size_t>(count) == candidate.scored.size() &&
           std::ranges::all_of(candidate.scored,
                               [&](const ScoredProperty& scored) { return IsSame(scored, option, ticket); });
}

std::optional<std::size_t> FindByName(const TicketFeature& feature, const QName& name)
{
    const auto found = std::ranges::find(feature.options, name, &TicketOption::name);
    return found == feature.options.end() ? std::nullopt
                                          : std::optional(static_cast<std::size_t>(found - feature.options.begin()));
}

std::optional<std::size_t> FindByMeaning(const TicketFeature& feature,
                                         const XmlElement& option,
                                         const XmlElement& ticket)
{
    const auto found = std::ranges::find_if(
        feature.options,
        [&](const TicketOption& candidate)
        {
            return !candidate.scored.empty() &&
                   std::ranges::all_of(candidate.scored,
                                       [&](const ScoredProperty& scored)
                                       { return HasSameMeaning(scored, option, ticket, feature.tolerance); });
        });
    return found == feature.options.end() ? std::nullopt
                                          : std::optional(static_cast<std::size_t>(found - feature.options.begin()));
}

} // namespace

std::optional<Match> MatchOption(const TicketFeature& feature, const XmlElement& option, const XmlElement& ticket)
{
    const std::optional<QName>& name = option.Name();
    if (name)
    {
        if (const auto found = FindByName(feature, *name))
        {
            return Match{*found, true, IsPerfect(feature.options[*found], option, ticket)};
        }
    }
    if (const auto found = FindByMeaning(feature, option, ticket))
    {
        const TicketOption& candidate = feature.options[*found];
        return Match{*found, !name || !candidate.name, IsPerfect(candidate, option, ticket)};
    }
    if (name && name->uri == kKeywordsUri)
    {
        if (const auto found = FindByName(feature, Psk(ClosestOption(name->local))))
        {
            return Match{*found, false, false};
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> ParseInteger(std::string_view text)
{
    if (text.starts_with('+') && text.size() > 1 && text[1] != '-')
    {
        text.remove_prefix(1);
    }
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || end != text.data() + text.size())
    {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range)
    {
        using Limits = std::numeric_limits<std::int64_t>;
        return text.front() == '-' ? Limits::min() : Limits::max();
    }
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

} // namespace tsypr::service
