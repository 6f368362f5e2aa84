// Shared ownership of one complete device mode, public and private parts.
#ifndef TESSARY_REMOTE_SHARED_DEVMODE_H
#define TESSARY_REMOTE_SHARED_DEVMODE_H

#include <windows.h>

#include <memory>

namespace tsypr
{

// Empty means that there is no device mode. Copies of a holder may be released on different threads; the last release
// frees the device mode with the allocator that made it.
using SharedDevMode = std::shared_ptr<DEVMODEW>;

// A heap copy of the whole device mode (its dmSize + dmDriverExtra bytes); empty when memory runs out.
SharedDevMode CopyToSharedDevMode(const DEVMODEW* dm) noexcept;

} // namespace tsypr

#endif
