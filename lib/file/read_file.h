// A file, read in one go.
#ifndef TESSARY_LIB_FILE_READ_FILE_H
#define TESSARY_LIB_FILE_READ_FILE_H

#include "lib/file/file_result.h"
#include "lib/file/retry_policy.h"

#include <cstddef>
#include <string>

namespace tsypr
{

// Reads the file at the UTF-8 path into `contents`, which is empty when that fails: TooLarge when there is more than
// `maxBytes`, NotFound, AccessDenied, IsADirectory, InUse once the retries of opening it are used up, OutOfMemory.
FileResult ReadFileContents(const char* path,
                            size_t maxBytes,
                            std::string& contents,
                            const RetryPolicy& retry = {}) noexcept;

// The same in a single attempt, for those who need not know why it failed.
bool ReadWholeFile(const char* path, size_t maxBytes, std::string& out) noexcept;

} // namespace tsypr

#endif
