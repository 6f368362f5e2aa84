// A file's whole contents, exchanged in one step.
#ifndef TESSARY_LIB_FILE_REPLACE_FILE_H
#define TESSARY_LIB_FILE_REPLACE_FILE_H

#include "lib/file/file_result.h"
#include "lib/file/retry_policy.h"

#include <string_view>

namespace tsypr
{

// Makes `contents` what the file at the UTF-8 path holds. A reader sees the old or the new contents whole, never a
// mixture, also when this process or the machine dies at any point; afterwards a file of the kind "NAME.PID-N.tmp" may
// be left over beside it, which the next replacement by anybody removes once its process is gone. On failure the old
// file is as it was.
FileResult ReplaceFileContents(const char* path, std::string_view contents, const RetryPolicy& retry = {}) noexcept;

} // namespace tsypr

#endif
