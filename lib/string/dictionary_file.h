// Dictionaries in files, as key_value_text.h describes them.
#ifndef TESSARY_LIB_STRING_DICTIONARY_FILE_H
#define TESSARY_LIB_STRING_DICTIONARY_FILE_H

#include "lib/file/file_result.h"
#include "lib/file/retry_policy.h"
#include "lib/string/dictionary.h"

namespace tsypr
{

// Larger files are not read, nor written.
inline constexpr size_t kMaxKeyValueFileBytes = 1024 * 1024;

// Adds the settings of the file at the UTF-8 path. Damaged lines are skipped; `damagedLines` and `damagedCount`, if
// given, tell which and how many (see Dictionary::Load). When the file cannot be read nothing is added.
FileResult LoadDictionary(const char* path,
                          Dictionary& out,
                          std::vector<size_t>* damagedLines = nullptr,
                          size_t* damagedCount = nullptr,
                          const RetryPolicy& retry = {}) noexcept;

// Makes the dictionary what the file holds, in one step: a reader sees the old or the new file whole. Its folder must
// be there. FileError::InvalidArgument also for a key that cannot be written.
FileResult SaveDictionary(const char* path, const Dictionary& dictionary) noexcept;

} // namespace tsypr

#endif
