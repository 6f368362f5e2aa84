#include "remote/name_buffers.h"

#include <windows.h>

#include <atomic>
#include <cstdlib>

namespace tsypr
{
namespace
{

// The system's local storage frees the buffers with the thread, and with the slot when the module is unloaded, which
// the compiler's thread-local variables do not.
constinit std::atomic<DWORD> g_slot{FLS_OUT_OF_INDEXES};

void WINAPI FreeBuffers(void* buffers) noexcept
{
    std::free(buffers);
}

DWORD Slot() noexcept
{
    DWORD slot = g_slot.load(std::memory_order_acquire);
    if (slot != FLS_OUT_OF_INDEXES)
    {
        return slot;
    }
    const DWORD made = FlsAlloc(FreeBuffers);
    if (g_slot.compare_exchange_strong(slot, made, std::memory_order_acq_rel))
    {
        return made;
    }
    if (made != FLS_OUT_OF_INDEXES)
    {
        FlsFree(made); // another thread was first
    }
    return slot;
}

} // namespace

NameBuffers* ThreadNameBuffers() noexcept
{
    const DWORD slot = Slot();
    if (slot == FLS_OUT_OF_INDEXES)
    {
        return nullptr;
    }
    auto* buffers = static_cast<NameBuffers*>(FlsGetValue(slot));
    if (buffers == nullptr)
    {
        buffers = static_cast<NameBuffers*>(std::calloc(1, sizeof(NameBuffers)));
        if (buffers != nullptr && FlsSetValue(slot, buffers) == FALSE)
        {
            std::free(buffers);
            buffers = nullptr;
        }
    }
    return buffers;
}

void ReleaseThreadNameBuffers() noexcept
{
    const DWORD slot = g_slot.exchange(FLS_OUT_OF_INDEXES, std::memory_order_acq_rel);
    if (slot != FLS_OUT_OF_INDEXES)
    {
        FlsFree(slot);
    }
}

} // namespace tsypr
