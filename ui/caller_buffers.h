// The device modes that an application hands in, as far as they can be believed.
#ifndef TESSARY_UI_CALLER_BUFFERS_H
#define TESSARY_UI_CALLER_BUFFERS_H

#include "ui/document_property_header.h"

namespace tsypr
{

// The header's pdmIn and pdmOut, null if there is none. An application may leave out the flag of a buffer, DM_IN_BUFFER
// or DM_OUT_BUFFER, and then need not have filled it: memory that holds no device mode like the printer's, `fetched`,
// is as good as none.
DEVMODEW* InputOf(const DOCUMENTPROPERTYHEADER& header, const DEVMODEW* fetched) noexcept;
DEVMODEW* OutputOf(const DOCUMENTPROPERTYHEADER& header, const DEVMODEW* fetched) noexcept;

} // namespace tsypr

#endif
