// Filling the lists of the Paper/Quality page from what the client printer offers.
#ifndef TESSARY_UI_PAPER_LISTS_H
#define TESSARY_UI_PAPER_LISTS_H

#include "ui/ui_context.h"

#include <cstddef>

namespace tsypr
{

// Entry sizes of the printer's lists, in bytes.
inline constexpr size_t kBinNameChars = 24;
inline constexpr size_t kPaperNameChars = 64;

// A resolution in dots per inch, as DC_ENUMRESOLUTIONS lists them.
struct Resolution
{
    int32_t x;
    int32_t y;
};

// Whether the device mode holds a quality level (DMRES_DRAFT to DMRES_HIGH) instead of a resolution.
bool HoldsQualityLevel(const DEVMODEW* dm) noexcept;

// Each fills one list and selects what the context holds. A list that the printer does not give is disabled and the
// failure logged.

// Also marks the paper source of the device mode as set, on purpose.
void PopulatePaperSource(HWND dialog, DEVMODEW* dm, UIContext& context) noexcept;
void PopulatePapers(HWND dialog, const DEVMODEW* dm, UIContext& context) noexcept;
// Hides list and label unless an administrator offers them.
void PopulateMediaTypes(HWND dialog, const DEVMODEW* dm, UIContext& context) noexcept;
void PopulateColors(HWND dialog, DEVMODEW* dm, UIContext& context) noexcept;
// Quality levels or resolutions, as the device mode has them; the context gets the resolution that is selected.
void PopulateDPIs(HWND dialog, const DEVMODEW* dm, UIContext& context) noexcept;

} // namespace tsypr

#endif
