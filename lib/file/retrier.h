// The attempts of one operation, which may have several steps. For the files of this folder only.
#ifndef TESSARY_LIB_FILE_RETRIER_H
#define TESSARY_LIB_FILE_RETRIER_H

#include "lib/file/retry_policy.h"
#include "lib/file/system_file.h"

#include <chrono>

namespace tsypr
{

class Retrier
{
public:
    explicit Retrier(const RetryPolicy& policy) noexcept;

    // Makes attempts (each returns a SystemError) until one succeeds, fails for good, or the operation's time is used
    // up. `path` is what another process may have in use.
    template <class Attempt>
    SystemError Run(const NativePath& path, Attempt attempt)
    {
        uint32_t pause = m_policy.firstPauseMs;
        SystemError error = attempt();
        while (error != 0 && sys::PassesByItself(error, path) && Pause(error, pause))
        {
            error = attempt();
        }
        return error;
    }

    // Waits before another attempt, and doubles the next pause; false when the time is used up.
    bool Pause(SystemError error, uint32_t& pauseMs) noexcept;

    // What to tell the caller when the last step ended like this.
    FileResult Result(SystemError error) const noexcept;

private:
    uint32_t ElapsedMs() const noexcept;

    const RetryPolicy m_policy;
    const std::chrono::steady_clock::time_point m_start;
    uint32_t m_retries = 0;
    SystemError m_lastRetriedError = 0;
};

// The body of a public function: nothing leaves it but a result.
template <class Body>
FileResult Guarded(Body body) noexcept
{
    try
    {
        return body();
    }
    catch (...)
    {
        FileResult result;
        result.error = FileError::OutOfMemory;
        result.systemError = ToSystemError(FileError::OutOfMemory);
        return result;
    }
}

inline FileResult ToResult(SystemError error) noexcept
{
    FileResult result;
    result.error = ToFileError(error);
    result.systemError = error;
    return result;
}

// A public function's work on one path: `body` gets the path in the system's form and returns a SystemError.
template <class Body>
FileResult OnPath(const char* path, Body body) noexcept
{
    return Guarded(
        [&]
        {
            NativePath native;
            const SystemError error = ToNativePath(path, native);
            return ToResult(error == 0 ? body(native) : error);
        });
}

// The same with what may be tried again: `body` gets the retrier, too.
template <class Body>
FileResult OnPath(const char* path, const RetryPolicy& retry, Body body) noexcept
{
    return Guarded(
        [&]
        {
            Retrier retrier(retry);
            NativePath native;
            const SystemError error = ToNativePath(path, native);
            return retrier.Result(error == 0 ? body(native, retrier) : error);
        });
}

} // namespace tsypr

#endif
