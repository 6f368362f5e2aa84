#ifndef TESSARY_SERVICE_TICKET_OPTION_MATCHING_H
#define TESSARY_SERVICE_TICKET_OPTION_MATCHING_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "service/ticket/ticket_model.h"

namespace tsypr::service
{

struct Match
{
    std::size_t option = 0;
    bool isAsked = false;   // the printer's option means what the ticket's option means
    bool isPerfect = false; // and has the same name and the same scored properties
};

// The printer's option for an `Option` element of `ticket`: by name, else by what the scored properties say, else the
// public option that comes closest. Nothing when none of them is there.
std::optional<Match> MatchOption(const TicketFeature& feature, const XmlElement& option, const XmlElement& ticket);

// An integer as XML Schema writes it; one that is too large for the result becomes the largest, or smallest.
std::optional<std::int64_t> ParseInteger(std::string_view text);

} // namespace tsypr::service

#endif
