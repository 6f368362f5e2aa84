// What stands in front of every log message.
#ifndef TESSARY_LIB_LOG_LOG_LINE_H
#define TESSARY_LIB_LOG_LOG_LINE_H

#include "lib/string/format.h"

#include <cstdint>
#include <string_view>

namespace tsypr
{

// The name of a level between kLogAudit and kLogDebug1.
std::string_view LogLevelName(int level) noexcept;

// Appends "2024-03-05 14:15:02.007Z error 4312:5120 " with the given time, in milliseconds since 1970, the level, the
// process and the thread.
void AppendLinePrefix(TextBuffer& line, int level, int64_t now) noexcept;

// Appends a formatted text.
void AppendFormat(TextBuffer& line, const char* format, ...) noexcept TESSARY_PRINTF(2, 3);

} // namespace tsypr

#endif
