// The preferences store: settings in files, for what the registry does not say.
//
// A file holds lines of the form  key = "value"  in UTF-8; lines that begin with "#" and empty lines are comments. In
// the value \" and \\ stand for a quote and a backslash, so that other backslashes need no doubling. The machine-wide
// file "preferences.conf" in the application data directory is read first, then the user's, whose values win.
#ifndef TESSARY_LIB_USER_PREFERENCES_H
#define TESSARY_LIB_USER_PREFERENCES_H

#include "lib/string/dictionary.h"

#include <string>
#include <string_view>

namespace tsypr
{

// Makes preferences readable; the files are read at the first question. Harmless when repeated.
void PreferencesStart() noexcept;

// Forgets everything that was read. Harmless when the store is not started.
void PreferencesStop() noexcept;

// Reads one preference into `value`. Returns false, with `value` empty, when the store is not started, no file has the
// key, or memory runs out.
bool ReadPreference(std::string_view key, std::string& value) noexcept;

// Reads the lines of a preference file into `out`; a later line wins. A line that is not understood is skipped; returns
// the number of such lines.
size_t ParsePreferences(std::string_view text, Dictionary& out) noexcept;

} // namespace tsypr

#endif
