#include "module/log.h"

namespace tsypr
{

void LogError(const char* format, ...) noexcept
{
    if (LogEnabled(kLogErrorLevel))
    {
        va_list arguments;
        va_start(arguments, format);
        LogWriteV(kLogErrorLevel, format, arguments);
        va_end(arguments);
    }
}

void LogVerbose(const char* format, ...) noexcept
{
    if (LogEnabled(kLogVerboseLevel))
    {
        va_list arguments;
        va_start(arguments, format);
        LogWriteV(kLogVerboseLevel, format, arguments);
        va_end(arguments);
    }
}

void LogAt(int level, const char* format, ...) noexcept
{
    if (LogEnabled(level))
    {
        va_list arguments;
        va_start(arguments, format);
        LogWriteV(level, format, arguments);
        va_end(arguments);
    }
}

} // namespace tsypr
