// One preference file, rewritten without losing what else is in it or what others write at the same time.
#ifndef TESSARY_LIB_USER_PREFERENCE_FILE_H
#define TESSARY_LIB_USER_PREFERENCE_FILE_H

#include "lib/file/file_result.h"

#include <cstdint>
#include <string_view>

namespace tsypr
{

// How long others may keep a preference file locked.
inline constexpr uint32_t kPreferenceLockMs = 10'000;

// Sets a key in the file at the UTF-8 path, or removes it; key_value_text.h says what stays as it is. A missing file is
// made when there is something to write, its folder must be there. The whole is done under a FileLock on "PATH.lock",
// by reading the file and replacing it in one step, so nobody's change is lost and readers never see half a file. A
// file that would not change is not written, and a key that is not there is removed with success.
//
// FileError::InvalidArgument for a null or empty path or a key that cannot be written, TimedOut when the lock was not
// free within `lockMs`, TooLarge when the file is or would be larger than kMaxKeyValueFileBytes, Other when it is in
// UTF-16; for all else see the file operations. On failure the file is as it was.
FileResult SetPreferenceInFile(const char* path,
                               std::string_view key,
                               std::string_view value,
                               uint32_t lockMs = kPreferenceLockMs) noexcept;
FileResult RemovePreferenceFromFile(const char* path,
                                    std::string_view key,
                                    uint32_t lockMs = kPreferenceLockMs) noexcept;

} // namespace tsypr

#endif
