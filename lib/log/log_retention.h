// The log files that earlier starts left behind.
#ifndef TESSARY_LIB_LOG_LOG_RETENTION_H
#define TESSARY_LIB_LOG_LOG_RETENTION_H

#include <cstdint>
#include <string>

namespace tsypr
{

// Deletes the oldest log files of the tag beside the one at `path` until `keep` are left, that one and its predecessors
// included, which are never deleted. Of the tag are the files whose names begin as that file's name up to the tag and
// the "_" behind it, and end in ".log" or ".log.NUMBER"; without the tag in its name nothing is deleted. Files that any
// process writes to are left alone. At most 100 files are tried at once. Throws std::bad_alloc.
void RemoveOldLogs(const std::string& path, const std::string& tag, uint32_t keep);

} // namespace tsypr

#endif
