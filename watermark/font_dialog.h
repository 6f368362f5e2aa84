// The system's font dialog.
#ifndef TESSARY_WATERMARK_FONT_DIALOG_H
#define TESSARY_WATERMARK_FONT_DIALOG_H

#include <windows.h>

#include <commdlg.h>

namespace tsypr
{

// As ChooseFontW. Its library is loaded while the dialog is open only: applications that never open it shall not have
// it loaded with the driver. FALSE also when the library or the function is missing.
BOOL ShowFontDialog(CHOOSEFONTW& options) noexcept;

} // namespace tsypr

#endif
