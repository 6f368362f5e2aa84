// Heap copies of device modes.
#ifndef TESSARY_REMOTE_DEVMODE_COPY_H
#define TESSARY_REMOTE_DEVMODE_COPY_H

#include "module/malloc_ptr.h"

#include <windows.h>

namespace tsypr
{

using DevModeCopy = MallocPtr<DEVMODEW>;

// Copies the dmSize + dmDriverExtra bytes that the device mode states. Null when memory runs out.
DevModeCopy CopyDevMode(const DEVMODEW* dm) noexcept;

} // namespace tsypr

#endif
