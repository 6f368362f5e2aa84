// Sleeping until another thread changes a word of memory: what the locks are made of, and nothing else should need.
#ifndef TESSARY_LIB_MISC_FUTEX_H
#define TESSARY_LIB_MISC_FUTEX_H

#include <atomic>
#include <cstdint>

namespace tsypr::detail
{

inline constexpr int64_t kForever = -1;

// Makes the functions below ready. To be called before a word tells others that somebody waits: whoever then wakes them
// need not ask the system's loader for anything.
void FutexPrepare() noexcept;

// Sleeps while `word` holds `expected`, at most for the given time, until a wake. May return early for no reason, so
// callers look at the word again. Returns false when the time is over.
bool FutexWait(const std::atomic<uint32_t>& word, uint32_t expected, int64_t microseconds = kForever) noexcept;

// Wakes one or all of those that sleep on the word. Only the address is used: the memory may be gone already.
void FutexWakeOne(const std::atomic<uint32_t>& word) noexcept;
void FutexWakeAll(const std::atomic<uint32_t>& word) noexcept;

// Tells the processor that a loop is only waiting.
inline void CpuRelax() noexcept
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
}

} // namespace tsypr::detail

#endif
