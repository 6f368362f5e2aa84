// A full log file makes room: NAME becomes NAME.1, that NAME.2, and so on.
#ifndef TESSARY_LIB_LOG_LOG_ROTATION_H
#define TESSARY_LIB_LOG_LOG_ROTATION_H

#include "lib/file/file_result.h"

#include <cstdint>
#include <string>

namespace tsypr
{

// Renames the file and its predecessors, of which `keep` stay; with 0 nothing is kept. A single attempt for each. When
// one of the files cannot be renamed nothing is lost: the others keep their order with a gap, where the next attempt
// goes on, and the result tells why. Throws std::bad_alloc.
FileResult ShiftLogFiles(const std::string& path, uint32_t keep);

} // namespace tsypr

#endif
