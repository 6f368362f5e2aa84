// Results of print ticket conversions, with the numbers that Windows' print ticket functions give them.
#ifndef TESSARY_SERVICE_TICKET_RESULT_CODES_H
#define TESSARY_SERVICE_TICKET_RESULT_CODES_H

#include <windows.h>

namespace tsypr::service
{

inline constexpr HRESULT kNoConflict = 0x00040001;                       // S_PT_NO_CONFLICT
inline constexpr HRESULT kConflictResolved = 0x00040002;                 // S_PT_CONFLICT_RESOLVED
inline constexpr HRESULT kBadTicket = static_cast<HRESULT>(0x80040003U); // E_PRINTTICKET_FORMAT

} // namespace tsypr::service

#endif
