// The preferences store: settings in files, for what the registry does not say.
//
// A file holds lines of the form  key = "value"  in UTF-8; lib/string/key_value_text.h describes them. The machine-wide
// file "preferences.conf" in the application data directory is read first, then the user's, whose values win. Files
// larger than 1 MiB are not read. Every function may be called by any thread at any time, and none throws.
#ifndef TESSARY_LIB_USER_PREFERENCES_H
#define TESSARY_LIB_USER_PREFERENCES_H

#include "lib/file/file_result.h"
#include "lib/string/dictionary.h"
#include "lib/user/preference_file.h"

#include <string>
#include <string_view>
#include <vector>

namespace tsypr
{

enum class PreferenceScope
{
    Machine,
    User
};

struct DamagedPreference
{
    PreferenceScope scope;
    size_t line; // the first one is 1
};

// What reading the files came to. A file that is not there is a success without values.
struct PreferenceReport
{
    FileResult machine;
    FileResult user;
    size_t damagedCount = 0;                // lines that were skipped, in both files
    std::vector<DamagedPreference> damaged; // the first Dictionary::kMostListed of each file
};

// Makes preferences readable; the files are read at the first question. Harmless when repeated.
void PreferencesStart() noexcept;

// Forgets everything that was read. Harmless when the store is not started.
void PreferencesStop() noexcept;

// Reads one preference into `value`. Returns false, with `value` empty, when the store is not started, no file has the
// key, or memory runs out. A file that cannot be read counts as empty; PreferencesReload tells why.
bool ReadPreference(std::string_view key, std::string& value) noexcept;

// Reads the files again. When one is there but cannot be read, or when memory runs out, the values of before stay and
// the failure is returned; FileError::InvalidArgument when the store is not started. `report` may be null.
FileResult PreferencesReload(PreferenceReport* report = nullptr) noexcept;

// The path of a preference file, UTF-8, whether it exists or not; false, with `path` empty, when the machine's
// application data directory does not exist, the user has none, or memory runs out.
bool GetPreferenceFilePath(PreferenceScope scope, std::string& path) noexcept;

// Changes a preference for all users or for this one, as preference_file.h says; ReadPreference sees it from then on.
// The user's folder is made when it is missing. FileError::NotFound when there is no path for the scope.
FileResult WritePreference(PreferenceScope scope,
                           std::string_view key,
                           std::string_view value,
                           uint32_t lockMs = kPreferenceLockMs) noexcept;
FileResult RemovePreference(PreferenceScope scope, std::string_view key, uint32_t lockMs = kPreferenceLockMs) noexcept;

} // namespace tsypr

#endif
