// What an installation will place, checked before anything is changed.
#ifndef TESSARY_PRINTCTL_INSTALL_PLAN_H
#define TESSARY_PRINTCTL_INSTALL_PLAN_H

#include <filesystem>
#include <string>
#include <vector>

namespace tsypr::printctl
{

// As on the command line; empty where not given.
struct InstallOptions
{
    std::filesystem::path driverFolder;
    std::filesystem::path languageFolder;
    std::filesystem::path profilesFolder;
    std::filesystem::path graphicsDriver;
    std::filesystem::path dataFile;
    std::vector<std::wstring> printers;
    std::wstring port;
};

struct InstallPlan
{
    std::filesystem::path module;
    std::filesystem::path service;
    std::vector<std::filesystem::path> languages;
    std::vector<std::filesystem::path> profiles;
    std::filesystem::path graphicsDriver;
    std::filesystem::path dataFile; // empty: our own printer description
    std::vector<std::wstring> printers;
    std::wstring port;
};

// Fills in the defaults and checks every input. A Failure that names the first faulty file, folder or printer:
// ExitCode::BadFile for files, NotFound for a printer without a profile, Usage for an impossible printer name.
InstallPlan MakeInstallPlan(const InstallOptions& options);

} // namespace tsypr::printctl

#endif
