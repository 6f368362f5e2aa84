#ifndef TESSARY_SERVICE_TICKET_PRINT_TICKET_QUERY_H
#define TESSARY_SERVICE_TICKET_PRINT_TICKET_QUERY_H

#include <cstddef>
#include <span>
#include <vector>

#include <windows.h>

#include "service/profile.h"
#include "service/ticket/result_codes.h"

namespace tsypr::service
{

enum class TicketQuery : DWORD
{
    TicketToDevMode = 0,
    DevModeToTicket = 1,
    TicketToCapabilities = 2,
    ValidateTicket = 3
};

// A failure has no data.
struct TicketAnswer
{
    HRESULT result = S_OK;
    std::vector<std::byte> data;
};

// Answers one query for a printer. Input of any size and content is allowed; an empty one stands for no wishes, except
// in a validation, which needs a ticket. Tickets and capabilities come as UTF-8.
//   TicketToDevMode, ValidateTicket: kNoConflict or kConflictResolved; a ticket that cannot be read gives kBadTicket.
//   TicketToCapabilities: S_OK, or kBadTicket.
//   DevModeToTicket: S_OK. Settings that the printer lacks get its defaults. E_INVALIDARG for input without even the
//   head of a device mode.
// Throws std::bad_alloc.
TicketAnswer AnswerTicketQuery(const Profile& profile, TicketQuery query, std::span<const std::byte> input);

} // namespace tsypr::service

#endif
