// The per-thread buffers behind the device-mode dump's names.
#ifndef TESSARY_REMOTE_NAME_BUFFERS_H
#define TESSARY_REMOTE_NAME_BUFFERS_H

#include <cstddef>

namespace tsypr
{

// One buffer per naming function, so that several names can stand in one log call.
enum class ValueBuffer
{
    Orientation,
    PaperSize,
    Source,
    PrintQuality,
    Color,
    Duplex,
    TTOption,
    Collate,
    Nup,
    ICMMethod,
    ICMIntent,
    MediaType,
    DitherType,
    DisplayFixedOutput,
    DisplayOrientation,
    Count
};

inline constexpr size_t kValueBufferChars = 16;

struct NameBuffers
{
    char values[static_cast<size_t>(ValueBuffer::Count)][kValueBufferChars];
    char fields[512];
    char displayFlags[256];
    char features[512];
    char locks[256];
};

// The calling thread's buffers; null when memory or the system's slots run out. They last as long as the thread, or
// until ReleaseThreadNameBuffers.
NameBuffers* ThreadNameBuffers() noexcept;

// Frees the buffers of all threads; to be called before the module's code goes away. Harmless when repeated.
void ReleaseThreadNameBuffers() noexcept;

} // namespace tsypr

#endif
