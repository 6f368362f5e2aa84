// Folders of the machine and of the user that belong to a test.
#ifndef TESSARY_TESTS_LIB_USER_USER_TEST_H
#define TESSARY_TESTS_LIB_USER_USER_TEST_H

#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tsypr::test
{

#ifdef _WIN32
inline constexpr char kUserVariable[] = "APPDATA";
inline constexpr char kUserFolder[] = "Zelmora/Tessary";
#else
inline constexpr char kUserVariable[] = "HOME";
inline constexpr char kUserFolder[] = ".config/zelmora/tessary";
#endif

inline void SetVariable(const char* name, const std::string& value)
{
#ifdef _WIN32
    const std::u8string utf8(value.begin(), value.end());
    const std::string narrow = name;
    const std::wstring wideName(narrow.begin(), narrow.end());
    SetEnvironmentVariableW(wideName.c_str(), std::filesystem::path(utf8).c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

// While it lives, the product's key says that the machine's application data directory is this one, as it is written.
class MachineSetting
{
public:
#ifdef _WIN32
    static constexpr wchar_t kFakeMachine[] = L"Software\\Tessary user tests";

    explicit MachineSetting(const std::wstring& value, DWORD type = REG_SZ)
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, kFakeMachine);
        HKEY machine = nullptr;
        if (RegCreateKeyW(HKEY_CURRENT_USER, kFakeMachine, &machine) != ERROR_SUCCESS ||
            RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) != ERROR_SUCCESS ||
            RegSetKeyValueW(machine,
                            L"Software\\Zelmora\\Tessary",
                            L"AppDataPath",
                            type,
                            value.c_str(),
                            static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) != ERROR_SUCCESS)
        {
            throw std::runtime_error("no key for the tests");
        }
        RegCloseKey(machine);
    }
    explicit MachineSetting(const std::filesystem::path& path) : MachineSetting(path.wstring()) {}
    ~MachineSetting()
    {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegDeleteTreeW(HKEY_CURRENT_USER, kFakeMachine);
    }
#else
    explicit MachineSetting(const std::string& value)
    {
        SetVariable("AppDataPath", value);
    }
    explicit MachineSetting(const std::filesystem::path& path) : MachineSetting(path.string()) {}
    ~MachineSetting()
    {
        unsetenv("AppDataPath");
    }
#endif
    MachineSetting(const MachineSetting&) = delete;
    MachineSetting& operator=(const MachineSetting&) = delete;
};

} // namespace tsypr::test

#endif
