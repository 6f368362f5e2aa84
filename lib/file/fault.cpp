#include "lib/file/fault.h"

namespace tsypr
{

namespace detail
{

constinit std::atomic<FileFaultHook*> fileFaultHook{nullptr};

uint32_t AskFileFaultHook(FileOperation operation, size_t* length) noexcept
{
    // Read once more, in order: what the hook points to was written by the thread that set it.
    FileFaultHook* const hook = fileFaultHook.load(std::memory_order_acquire);
    return hook == nullptr ? 0 : hook->ask(*hook, operation, length);
}

} // namespace detail

void SetFileFaultHook(FileFaultHook* hook) noexcept
{
    detail::fileFaultHook.store(hook, std::memory_order_release);
}

} // namespace tsypr
