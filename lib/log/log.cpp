#include "lib/log/log.h"

#include "lib/log/line_throttle.h"
#include "lib/log/log_line.h"
#include "lib/log/log_output.h"
#include "lib/misc/clock.h"
#include "lib/misc/exclusive_lock.h"
#include "lib/string/ascii.h"
#include "lib/string/format_conversion.h"

#include <memory>
#include <utility>

namespace tsypr
{

namespace detail
{
constinit std::atomic<int> logLevel{-1};
} // namespace detail

namespace
{

constexpr int kLogRank = 1000; // a message may be written whatever else is held

struct LogState
{
    ExclusiveLock lock{"log", kLogRank};
    LineThrottle throttle;
    LogOutput* output = nullptr; // null without a file
    std::atomic<bool> lastThread{false};
};

constinit LogState g_log;

// Holds the log's lock, unless this is the last thread: one that no longer exists may have taken the lock along, or may
// have been ended while it waited, and then even a release that wakes the next one can hang.
class LogGuard
{
public:
    LogGuard() noexcept : m_held(!g_log.lastThread.load(std::memory_order_relaxed))
    {
        if (m_held)
        {
            g_log.lock.Acquire();
        }
    }
    ~LogGuard()
    {
        if (m_held)
        {
            g_log.lock.Release();
        }
    }
    LogGuard(const LogGuard&) = delete;
    LogGuard& operator=(const LogGuard&) = delete;

    // False for the last thread: memory, files and locks other than the open file are taboo.
    bool IsHeld() const noexcept
    {
        return m_held;
    }

    // Whether no thread has been stopped in the midst of a change.
    bool StateIsWhole() const noexcept
    {
        return m_held || !g_log.lock.IsHeld();
    }

private:
    const bool m_held;
};

void Output(const LogGuard& guard, std::string_view line, int64_t now) noexcept
{
    if (g_log.output == nullptr)
    {
        return;
    }
    if (guard.IsHeld())
    {
        g_log.output->Write(line, now);
    }
    else
    {
        g_log.output->WriteBare(line);
    }
}

// In place of the lines that were held back.
void OutputRepeated(const LogGuard& guard, const RepeatedLine& repeated, int64_t now) noexcept
{
    TextBuffer line;
    AppendLinePrefix(line, repeated.level, now);
    AppendFormat(line, "message repeated %u times in %u s: ", repeated.times, g_log.throttle.Seconds());
    line.Append(repeated.text);
    line.Append("\n");
    Output(guard, line.View(), now);
}

void OutputAllRepeated(const LogGuard& guard) noexcept
{
    const int64_t now = UtcNowMilliseconds();
    RepeatedLine repeated;
    while (g_log.throttle.TakeAny(repeated))
    {
        OutputRepeated(guard, repeated, now);
    }
}

// Whether the line is to be written. Writes what the others have left to tell.
bool Admit(const LogGuard& guard, const LineKey& key, std::string_view message, int64_t now) noexcept
{
    if (!guard.StateIsWhole())
    {
        return true;
    }
    RepeatedLine repeated;
    while (g_log.throttle.TakeDue(now, repeated))
    {
        OutputRepeated(guard, repeated, now);
    }
    RepeatedLine displaced;
    const bool admitted = g_log.throttle.Admit(key, message, now, displaced);
    if (displaced.times != 0)
    {
        OutputRepeated(guard, displaced, now);
    }
    return admitted;
}

// Every line ends with a line break, also one that memory did not suffice for.
void EndLine(TextBuffer& line) noexcept
{
    if (line.Cut())
    {
        line.Truncate(WholeCharacters(line.View().data(), line.View().size() - 1));
    }
    if (line.View().back() != '\n')
    {
        line.Append("\n");
    }
}

LogOutput* MakeOutput(const char* tag, const LogSettings& settings) noexcept
{
    if (settings.file == nullptr || *settings.file == '\0')
    {
        return nullptr;
    }
    try
    {
        return std::make_unique<LogOutput>(tag, settings).release();
    }
    catch (...)
    {
        return nullptr;
    }
}

} // namespace

int LogLevelFromName(const char* name) noexcept
{
    for (int level = kLogAudit; name != nullptr && level <= kLogDebug1; ++level)
    {
        if (EqualsIgnoringCase(LogLevelName(level), name))
        {
            return level;
        }
    }
    return -1;
}

bool LogStart(const char* tag, const Dictionary& settings) noexcept
{
    if (tag == nullptr || *tag == '\0')
    {
        return false;
    }
    const LogGuard guard;
    if (detail::logLevel.load(std::memory_order_relaxed) >= 0 || !guard.IsHeld())
    {
        return false;
    }
    const LogSettings chosen = ReadLogSettings(settings);
    g_log.throttle.Start(chosen.throttleLines, chosen.throttleSeconds);
    g_log.output = MakeOutput(tag, chosen);
    detail::logLevel.store(chosen.level, std::memory_order_relaxed);
    return true;
}

void LogStop() noexcept
{
    const LogGuard guard;
    detail::logLevel.store(-1, std::memory_order_relaxed);
    if (g_log.output == nullptr || !guard.StateIsWhole())
    {
        return;
    }
    OutputAllRepeated(guard);
    if (guard.IsHeld()) // else the system closes the file
    {
        const std::unique_ptr<LogOutput> output(std::exchange(g_log.output, nullptr));
        output->Close(UtcNowMilliseconds());
    }
}

bool LogSetLevel(int level) noexcept
{
    const LogGuard guard;
    if (level < kLogAudit || level > kLogDebug1 || detail::logLevel.load(std::memory_order_relaxed) < 0)
    {
        return false;
    }
    if (guard.StateIsWhole())
    {
        OutputAllRepeated(guard);
    }
    detail::logLevel.store(level, std::memory_order_relaxed);
    return true;
}

void LogPrepareForProcessEnd() noexcept
{
    g_log.lastThread.store(true, std::memory_order_relaxed);
}

void LogWriteV(int level, const char* format, va_list arguments) noexcept
{
    if (!LogEnabled(level) || level < 0)
    {
        return;
    }
    const int64_t now = UtcNowMilliseconds();
    TextBuffer line;
    AppendLinePrefix(line, level, now);
    const size_t prefix = line.View().size();
    FormatTo(line, format, arguments);
    EndLine(line);
    const std::string_view message = line.View().substr(prefix);
    const LineKey key = {format, level, message.size(), HashText(message)};
    const LogGuard guard;
    if (Admit(guard, key, message, now))
    {
        Output(guard, line.View(), now);
    }
}

void LogWrite(int level, const char* format, ...) noexcept
{
    if (!LogEnabled(level))
    {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    LogWriteV(level, format, arguments);
    va_end(arguments);
}

} // namespace tsypr
