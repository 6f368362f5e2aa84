#ifndef TESSARY_TESTS_SERVICE_BUILD_PRINTERS_H
#define TESSARY_TESTS_SERVICE_BUILD_PRINTERS_H

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "service/profile_loader.h"

namespace tsypr::service::test
{

// The printers beside the test program: the two examples, and those that have been imported from PPD files.
// TESSARY_IMPORTED_PRINTERS states the number of these where it is known.
inline const std::vector<Profile>& BuildPrinters()
{
    static const std::vector<Profile> kPrinters = []
    {
        WCHAR path[MAX_PATH];
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        const char* imported = std::getenv("TESSARY_IMPORTED_PRINTERS");
        ProfileSet set = LoadProfiles(std::filesystem::path(path).parent_path() / L"printers");
        EXPECT_GE(set.printers.size(), 2u + (imported != nullptr ? std::strtoul(imported, nullptr, 10) : 0));
        return std::move(set.printers);
    }();
    return kPrinters;
}

} // namespace tsypr::service::test

#endif
