// Who is running: the numbers by which the system knows this process and thread.
#ifndef TESSARY_LIB_MISC_PROCESS_H
#define TESSARY_LIB_MISC_PROCESS_H

#include <cstdint>

namespace tsypr
{

uint32_t CurrentProcessId() noexcept;
uint32_t CurrentThreadId() noexcept;

// A number other than 0 that no other thread of this process has while this one lives; cheaper than the thread's id.
uintptr_t CurrentThreadToken() noexcept;

} // namespace tsypr

#endif
