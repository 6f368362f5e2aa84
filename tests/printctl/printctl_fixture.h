// Runs printctl in the prefix and looks at what it left behind.
#ifndef TESSARY_TESTS_PRINTCTL_FIXTURE_H
#define TESSARY_TESTS_PRINTCTL_FIXTURE_H

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tsypr::printctl_tests
{

namespace fs = std::filesystem;
using Json = nlohmann::json;

struct Outcome
{
    int code;
    std::string out;
    std::string error;
};

// The folder of the test program.
fs::path ProgramFolder();

// Runs printctl.exe from there.
Outcome RunPrintctl(const std::vector<std::wstring>& arguments);

// The parsed output of a command that must succeed.
Json QueryJson(std::vector<std::wstring> arguments);

// Installs the built product over whatever an earlier run has left, with XML documents that are good enough for it.
void InstallProduct(const std::vector<std::wstring>& options = {});

// Printers, drivers, our registry keys and every file that an installation may touch, as path or name to content.
using SystemState = std::map<std::string, std::string>;
SystemState ReadSystemState();

// A printer profile in the service's format.
std::string ProfileText(const std::string& name);

std::string ReadText(const fs::path& file);
void WriteText(const fs::path& file, const std::string& text);
void AppendText(const fs::path& file, const std::string& text);

// A folder to install from: the test driver under the product's file names, and the profiles Alpha and Büro.
class DriverFolder
{
public:
    DriverFolder();
    ~DriverFolder();
    DriverFolder(const DriverFolder&) = delete;
    DriverFolder& operator=(const DriverFolder&) = delete;

    const fs::path& Path() const
    {
        return m_path;
    }

    // A copy of a library that lies beside the test program.
    void PlaceLibrary(const wchar_t* library, const std::wstring& name) const;
    void PlaceProfile(const std::wstring& file, const std::string& name) const;

    Outcome Install(const std::vector<std::wstring>& more = {}) const;

private:
    fs::path m_path;
};

} // namespace tsypr::printctl_tests

#endif
