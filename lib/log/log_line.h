// What stands in front of every log message.
#ifndef TESSARY_LIB_LOG_LOG_LINE_H
#define TESSARY_LIB_LOG_LOG_LINE_H

#include "lib/string/text_buffer.h"

#include <string_view>

namespace tsypr
{

// Appends "2024-03-05 14:15:02.007Z error 4312:5120 " with the present time, the level, the process and the thread.
void AppendLinePrefix(TextBuffer& line, std::string_view levelName) noexcept;

} // namespace tsypr

#endif
