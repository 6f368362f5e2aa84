// Something that is done once, by whoever comes first.
#ifndef TESSARY_LIB_MISC_ONCE_H
#define TESSARY_LIB_MISC_ONCE_H

#include <atomic>
#include <concepts>
#include <cstdint>

namespace tsypr
{

// Constant-initialised, nothing to clean up: fit for static state.
class OnceFlag
{
public:
    constexpr OnceFlag() noexcept = default;
    OnceFlag(const OnceFlag&) = delete;
    OnceFlag& operator=(const OnceFlag&) = delete;

    bool IsDone() const noexcept
    {
        return m_state.load(std::memory_order_acquire) == kDone;
    }

    // The two halves of CallOnce. Begin waits while another thread is at it; true: do it, then call End; false: it is
    // done. With End(false) the next one may try.
    bool Begin() noexcept;
    void End(bool done) noexcept;

private:
    static constexpr uint32_t kUntouched = 0;
    static constexpr uint32_t kRunning = 1;
    static constexpr uint32_t kAwaited = 2; // running, and others sleep until it is over
    static constexpr uint32_t kDone = 3;

    std::atomic<uint32_t> m_state{kUntouched};
};

// Runs the initialiser unless it has succeeded before, and returns whether it has succeeded now. An initialiser that
// returns false or throws has failed: the caller gets that, and the next caller, one that waits included, tries again.
// What it wrote is visible to everybody who gets true. It must not come back here with the same flag.
template <class Initialiser>
bool CallOnce(OnceFlag& flag, Initialiser&& initialiser)
{
    if (flag.IsDone() || !flag.Begin())
    {
        return true;
    }
    struct Ending
    {
        ~Ending()
        {
            flag.End(done);
        }
        OnceFlag& flag;
        bool done = false;
    } ending{flag};
    if constexpr (std::same_as<decltype(initialiser()), bool>)
    {
        ending.done = initialiser();
    }
    else
    {
        initialiser();
        ending.done = true;
    }
    return ending.done;
}

} // namespace tsypr

#endif
