#ifndef TESSARY_SERVICE_TICKET_DOCUMENT_WRITER_H
#define TESSARY_SERVICE_TICKET_DOCUMENT_WRITER_H

#include "service/ticket/ticket_state.h"

namespace tsypr::service
{

// A ticket that says what the state says: one feature with one option for every setting.
XmlElement BuildTicket(const TicketModel& model, const TicketState& state);

// Everything the printer offers. Which features, options and parameters there are does not depend on the state; it
// decides which options are marked as constrained.
XmlElement BuildCapabilities(const TicketModel& model, const TicketState& state);

} // namespace tsypr::service

#endif
