#ifndef TESSARY_SERVICE_PROFILE_PARSER_H
#define TESSARY_SERVICE_PROFILE_PARSER_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "service/profile.h"

namespace tsypr::service
{

// Reads one printer profile. `json` is the file's content, `file` its name for the messages. A profile with any
// problem is refused as a whole: nothing is returned and every problem found is appended to `problems`.
// The returned profile is checked and its defaults are complete. Throws std::bad_alloc only.
std::optional<Profile> ParseProfile(std::string_view json,
                                    const std::string& file,
                                    std::vector<ProfileProblem>& problems);

} // namespace tsypr::service

#endif
