// Print tickets in words, and what differs between two of them.
#ifndef TESSARY_PRINTCTL_TICKET_REPORT_H
#define TESSARY_PRINTCTL_TICKET_REPORT_H

#include "tools/printctl/json.h"

#include <optional>
#include <string>
#include <vector>

namespace tsypr::printctl
{

// One setting that two tickets do not say alike; nothing where a ticket does not mention it.
struct TicketChange
{
    std::string name; // "psk:PageMediaSize", "psk:DocumentNUp/psk:PresentationDirection"
    std::optional<std::string> before;
    std::optional<std::string> after;
};

// Compares what the tickets choose: options, parameters and properties, whatever their prefixes and order. A Failure
// with ExitCode::BadFile when one of them cannot be read.
std::vector<TicketChange> CompareTickets(const std::string& before, const std::string& after);

Json TicketChangesJson(const std::vector<TicketChange>& changes);
std::string TicketChangesText(const std::vector<TicketChange>& changes);

// The document with every element on a line of its own, for reading.
std::string IndentedXml(const std::string& xml);

} // namespace tsypr::printctl

#endif
