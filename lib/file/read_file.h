// A small file, read in one go.
#ifndef TESSARY_LIB_FILE_READ_FILE_H
#define TESSARY_LIB_FILE_READ_FILE_H

#include <cstddef>
#include <string>

namespace tsypr
{

// Reads the file at the UTF-8 path into `out`. Returns false, with `out` empty, when it cannot be opened or read, when
// it is larger than `maxBytes`, or when memory runs out.
bool ReadWholeFile(const char* path, size_t maxBytes, std::string& out) noexcept;

} // namespace tsypr

#endif
