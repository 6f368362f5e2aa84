// The diagnostic log: levels, start and stop, and one appended line per message.
//
// A line is written as "2024-03-05 14:15:02.007Z error 4312:5120 message": UTC time with milliseconds, level, process
// and thread, then the message. The text is UTF-8. Every line is handed to the system in one append before the call
// returns, so lines of several threads never mix and nothing is lost when the process is killed.
#ifndef TESSARY_LIB_LOG_LOG_H
#define TESSARY_LIB_LOG_LOG_H

#include "lib/string/dictionary.h"
#include "lib/string/format.h"

#include <atomic>
#include <cstdarg>

namespace tsypr
{

enum LogLevel : int
{
    kLogAudit = 0,
    kLogPanic = 1,
    kLogErrorLevel = 2,
    kLogWarning = 3,
    kLogNotice = 4,
    kLogInfo = 5,
    kLogVerboseLevel = 6,
    kLogTrivia = 7,
    kLogDebug = 8,
    kLogDebug1 = 9
};

// Keys of the settings that LogStart reads.
inline constexpr char kLogFileLevelKey[] = "log.fileLevel"; // name of the minimum level
inline constexpr char kLogFileNameKey[] = "log.fileName";   // path of the log file, UTF-8

// The number of a level's name in any letter case; -1 for an unknown name or null.
int LogLevelFromName(const char* name) noexcept;

// Starts the log of the module that `tag` names. An unknown or missing level name counts as "info". Without a file
// name, or when the file cannot be opened, the log runs without output. Returns false when `tag` is null or empty, or
// when the log is already running; then nothing is changed.
bool LogStart(const char* tag, const Dictionary& settings) noexcept;

// Stops the log; lines written later go nowhere. Harmless when the log is not running.
void LogStop() noexcept;

// To be called when only one thread of the process is left: from then on no call touches a lock that a thread which is
// gone may hold or wait for.
void LogPrepareForProcessEnd() noexcept;

namespace detail
{
// The highest level that is written; -1 while the log is stopped.
extern std::atomic<int> logLevel;
} // namespace detail

// Whether a message of the level would be written.
inline bool LogEnabled(int level) noexcept
{
    return level <= detail::logLevel.load(std::memory_order_relaxed);
}

// Writes one line at the level, if the level is enabled. A message without a line end gets one.
void LogWriteV(int level, const char* format, va_list arguments) noexcept;
void LogWrite(int level, const char* format, ...) noexcept TESSARY_PRINTF(2, 3);

} // namespace tsypr

#endif
