#ifndef TESSARY_SERVICE_PROFILE_LOADER_H
#define TESSARY_SERVICE_PROFILE_LOADER_H

#include <filesystem>
#include <string_view>
#include <vector>

#include "service/profile.h"

namespace tsypr::service
{

// The printers of one directory.
struct ProfileSet
{
    std::vector<Profile> printers;
    std::vector<ProfileProblem> problems;

    // The printer with exactly this name (UTF-16), or null.
    const Profile* Find(std::u16string_view name) const;
};

// Reads every *.json file of a directory in the order of the file names. A file with a problem is left out and the
// others still count; of two profiles with one name the first stays. A directory that cannot be read is a problem
// too, with the directory as its file. Throws std::bad_alloc only.
ProfileSet LoadProfiles(const std::filesystem::path& directory);

} // namespace tsypr::service

#endif
