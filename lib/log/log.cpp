#include "lib/log/log.h"

#include "lib/file/append_file.h"
#include "lib/log/log_line.h"
#include "lib/misc/exclusive_lock.h"

#include <cctype>
#include <iterator>
#include <string_view>

namespace tsypr
{

namespace detail
{
constinit std::atomic<int> logLevel{-1};
} // namespace detail

namespace
{

constexpr std::string_view kLevelNames[] = {
    "audit", "panic", "error", "warning", "notice", "info", "verbose", "trivia", "debug", "debug1"};

struct LogState
{
    ExclusiveLock lock;
    AppendFile file;
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

private:
    const bool m_held;
};

bool EqualsIgnoringCase(std::string_view name, const char* text) noexcept
{
    for (const char c : name)
    {
        if (std::tolower(static_cast<unsigned char>(*text)) != c)
        {
            return false;
        }
        ++text;
    }
    return *text == '\0';
}

} // namespace

int LogLevelFromName(const char* name) noexcept
{
    for (size_t level = 0; name != nullptr && level < std::size(kLevelNames); ++level)
    {
        if (EqualsIgnoringCase(kLevelNames[level], name))
        {
            return static_cast<int>(level);
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
    if (detail::logLevel.load(std::memory_order_relaxed) >= 0)
    {
        return false;
    }
    const int level = LogLevelFromName(settings.Get(kLogFileLevelKey));
    g_log.file.Open(settings.Get(kLogFileNameKey));
    detail::logLevel.store(level < 0 ? kLogInfo : level, std::memory_order_relaxed);
    return true;
}

void LogStop() noexcept
{
    const LogGuard guard;
    detail::logLevel.store(-1, std::memory_order_relaxed);
    g_log.file.Close();
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
    TextBuffer line;
    AppendLinePrefix(line, kLevelNames[level]);
    FormatTo(line, format, arguments);
    if (line.View().back() != '\n')
    {
        line.Append("\n");
    }
    const LogGuard guard;
    g_log.file.Append(line.View().data(), line.View().size());
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
