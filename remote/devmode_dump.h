// A device mode, field by field, in the verbose log.
#ifndef TESSARY_REMOTE_DEVMODE_DUMP_H
#define TESSARY_REMOTE_DEVMODE_DUMP_H

#include <windows.h>

namespace tsypr::PrintUtils
{

// Writes the device mode to the verbose log under the title (which may be null). Fields beyond its dmSize show as zero.
// Whatever the log level is, it ends the three keyword texts of the private block at their last position, in `dm`
// itself, for every later reader. A null device mode is skipped.
void DumpDevMode(DEVMODEW* dm, const wchar_t* title) noexcept;

} // namespace tsypr::PrintUtils

#endif
