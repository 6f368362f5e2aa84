// Asks the client printer for its N-up and finishing options before a property sheet is shown.
#ifndef TESSARY_UI_PRINT_CAPS_THREAD_H
#define TESSARY_UI_PRINT_CAPS_THREAD_H

#include <windows.h>

namespace tsypr
{

// The procedure of a thread of its own, which needs a COM apartment. `parameter` is the sheet's DEVMODEW. What the
// printer offers goes to the capability maps; what cannot be read leaves them as they were. Returns 1 when COM could
// not be initialised, else 0.
DWORD WINAPI InitPrintCapsThreadProc(void* parameter) noexcept;

} // namespace tsypr

#endif
