// The client printer's own device mode.
#ifndef TESSARY_REMOTE_DEVMODE_FETCH_H
#define TESSARY_REMOTE_DEVMODE_FETCH_H

#include "remote/shared_devmode.h"

namespace tsypr
{

// Fetches the device mode of the client printer with this name, which is used as it is and must be normalised already.
// Empty on failure, which is logged.
SharedDevMode GetDevModeByVPrinterName(const wchar_t* printerName) noexcept;

} // namespace tsypr

#endif
