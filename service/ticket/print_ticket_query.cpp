#include "service/ticket/print_ticket_query.h"

#include <optional>
#include <string>

#include "service/device_mode.h"
#include "service/ticket/document_writer.h"
#include "service/ticket/mode_parts.h"
#include "service/ticket/ticket_reader.h"
#include "service/ticket/ticket_state.h"
#include "service/ticket/xml_reader.h"
#include "service/ticket/xml_writer.h"
#include "service/untrusted_devmode.h"

namespace tsypr::service
{

namespace
{

using Bytes = std::span<const std::byte>;

std::vector<std::byte> Write(const TicketModel& model, const XmlElement& document)
{
    const std::string text = WriteXml(document, model.vendorUri);
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::optional<TicketState> ReadInput(const TicketModel& model, Bytes input)
{
    const std::optional<XmlElement> root = ReadXml(input);
    return root ? ReadTicket(model, *root) : std::nullopt;
}

HRESULT ResultOf(const TicketState& state)
{
    return state.isConflictResolved ? kConflictResolved : kNoConflict;
}

std::vector<std::byte> MakeDevMode(const TicketModel& model, const TicketState& state)
{
    ModeParts mode(BuildDevMode(model.profile));
    PutState(model, state, mode);
    return ValidateDevMode(model.profile, mode.Join());
}

TicketAnswer FromDevMode(const TicketModel& model, Bytes input)
{
    if (!input.empty() && !UntrustedDevMode(input).HasFields())
    {
        return {E_INVALIDARG, {}};
    }
    const ModeParts mode(ValidateDevMode(model.profile, input));
    return {S_OK, Write(model, BuildTicket(model, StateOfMode(model, mode)))};
}

} // namespace

TicketAnswer AnswerTicketQuery(const Profile& profile, TicketQuery query, Bytes input)
{
    const TicketModel model(profile);
    if (query == TicketQuery::DevModeToTicket)
    {
        return FromDevMode(model, input);
    }
    const bool isDefault = input.empty() && query != TicketQuery::ValidateTicket;
    const std::optional<TicketState> state = isDefault ? DefaultState(model) : ReadInput(model, input);
    if (!state)
    {
        return {kBadTicket, {}};
    }
    switch (query)
    {
    case TicketQuery::TicketToDevMode:
        return {ResultOf(*state), MakeDevMode(model, *state)};
    case TicketQuery::TicketToCapabilities:
        return {S_OK, Write(model, BuildCapabilities(model, *state))};
    case TicketQuery::ValidateTicket:
        return {ResultOf(*state), Write(model, BuildTicket(model, *state))};
    default:
        return {E_INVALIDARG, {}};
    }
}

} // namespace tsypr::service
