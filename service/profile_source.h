#ifndef TESSARY_SERVICE_PROFILE_SOURCE_H
#define TESSARY_SERVICE_PROFILE_SOURCE_H

#include <filesystem>
#include <string>
#include <vector>

#include "service/profile.h"

namespace tsypr::service
{

// Where the printer profiles lie: the registry value "PrinterProfiles", else printers\ beside this library.
std::filesystem::path ProfileDirectory();

// The problems as lines "file: field: reason", each ending in a line feed.
std::wstring DescribeProblems(const std::vector<ProfileProblem>& problems);

} // namespace tsypr::service

#endif
