// The three logging calls of the driver.
//
// Every message is a narrow format that begins with "%s, ", filled with the name of the reporting function, and ends
// with a line break; wide texts are passed as %S. Failures go to LogError, success reports to LogAt(5, ...), detail to
// LogVerbose.
#ifndef TESSARY_MODULE_LOG_H
#define TESSARY_MODULE_LOG_H

#include "lib/log/log.h"

namespace tsypr
{

// Writes at level 2, "error".
void LogError(const char* format, ...) noexcept TESSARY_PRINTF(1, 2);

// Writes at level 6, "verbose".
void LogVerbose(const char* format, ...) noexcept TESSARY_PRINTF(1, 2);

// Writes at the given level; 5, "info", for success reports.
void LogAt(int level, const char* format, ...) noexcept TESSARY_PRINTF(2, 3);

} // namespace tsypr

#endif
