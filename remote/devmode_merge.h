// Merging what an application asked for into the client printer's device mode.
#ifndef TESSARY_REMOTE_DEVMODE_MERGE_H
#define TESSARY_REMOTE_DEVMODE_MERGE_H

#include <windows.h>

namespace tsypr
{

// `fMode` holds DocumentProperties flags. With DM_OUT_BUFFER `dmOut` becomes a copy of `dmCurrent`; with DM_IN_BUFFER
// the fields set in `dmIn` (which may be null, or the same memory as `dmOut`) are merged into `dmOut`. A paper size or
// media type that the client printer does not offer, and a setting that the administrator locked, are left as they are;
// that is not a failure. Returns false when `dmOut` or `dmCurrent` is null or memory runs out.
bool MergeAndCopyDM(DEVMODEW* dmOut, const DEVMODEW* dmIn, const DEVMODEW* dmCurrent, DWORD fMode) noexcept;

} // namespace tsypr

#endif
