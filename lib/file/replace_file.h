// A file's whole contents, exchanged in one step.
#ifndef TESSARY_LIB_FILE_REPLACE_FILE_H
#define TESSARY_LIB_FILE_REPLACE_FILE_H

#include "lib/file/file_result.h"
#include "lib/file/retry_policy.h"

#include <string_view>

namespace tsypr
{

// Makes `contents` what the file at the UTF-8 path holds, and creates the file when it is missing. A reader sees the
// old or the new contents whole, never a mixture, also when this process or the machine dies at any point; after
// success the new contents outlast a power cut. Afterwards a file of the kind "NAME.PID-N.tmp" may be left over beside
// it when the process died, which the next replacement by anybody removes; never that of a living process.
//
// The new file has the old one's permissions and owner (Windows: attributes and access list), as far as this process
// may set them. A symbolic link stays, the file it leads to is replaced. Readers need not be gone where the system can
// rename over an open file; elsewhere the retries wait for them.
//
// On failure the old file is as it was, or still missing: InvalidArgument for a null, empty or ill-formed path, for
// null contents of some length, and for a device; NameTooLong; NotFound for a missing folder; IsADirectory;
// AccessDenied for a read-only file (on every system) and for a folder that we may not write to; DiskFull; InUse or
// AccessDenied once the retries are used up; OutOfMemory. With one exception: when only the last step, flushing the
// folder, fails, the result is that failure, although the new contents are in place.
FileResult ReplaceFileContents(const char* path, std::string_view contents, const RetryPolicy& retry = {}) noexcept;

} // namespace tsypr

#endif
