// The diagnostic log: levels, start and stop, and one appended line per message.
//
// A line is written as "2024-03-05 14:15:02.007Z error 4312:5120 message": UTC time with milliseconds, level, process
// and thread, then the message. The text is UTF-8. Every line is handed to the system in one append before the call
// returns, so lines of several threads never mix and nothing is lost when the process is killed. A full file is renamed
// and a new one begun, old files are removed at the start, and lines that come over and over again are folded into one;
// docs/logging.md has the details.
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

// Keys of the settings that LogStart reads. A number that is missing, not one or out of range has the default in
// brackets; with 0 nothing is done.
inline constexpr char kLogFileLevelKey[] = "log.fileLevel";         // name of the minimum level
inline constexpr char kLogFileNameKey[] = "log.fileName";           // path of the log file, UTF-8
inline constexpr char kLogOwnFileKey[] = "log.ownFile";             // 1: no other process ever writes to the file [0]
inline constexpr char kLogRotateBytesKey[] = "log.rotateBytes";     // a file grows to at most so many bytes [10485760]
inline constexpr char kLogKeepRotatedKey[] = "log.keepRotated";     // full files NAME.1, NAME.2, ... that are kept [5]
inline constexpr char kLogKeepFilesKey[] = "log.keepFiles";         // files of the tag that a start leaves over [50]
inline constexpr char kLogThrottleLinesKey[] = "log.throttleLines"; // identical lines that are written [500]
inline constexpr char kLogThrottleSecondsKey[] = "log.throttleSeconds"; // within that time [10]

// The number of a level's name in any letter case; -1 for an unknown name or null.
int LogLevelFromName(const char* name) noexcept;

// Starts the log of the module that `tag` names. An unknown or missing level name counts as "info". Without a file name
// the log runs without output; a file that cannot be opened or written to is tried again every second, and one line
// then tells how many were lost. Returns false when `tag` is null or empty, or when the log is already running; then
// nothing is changed.
bool LogStart(const char* tag, const Dictionary& settings) noexcept;

// Changes the minimum level of the running log. Returns false, with nothing changed, for a number that is no level and
// when the log is not running.
bool LogSetLevel(int level) noexcept;

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
