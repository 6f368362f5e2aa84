#ifndef TESSARY_SERVICE_TICKET_TICKET_READER_H
#define TESSARY_SERVICE_TICKET_TICKET_READER_H

#include <optional>

#include "service/ticket/ticket_state.h"

namespace tsypr::service
{

// Understands a ticket as far as the printer can do what it asks for; what the ticket leaves open gets the printer's
// default. Nothing when the element is no print ticket. Throws std::bad_alloc.
std::optional<TicketState> ReadTicket(const TicketModel& model, const XmlElement& root);

} // namespace tsypr::service

#endif
