// Folders of the machine and of the user that belong to a test.
#ifndef TESSARY_TESTS_LIB_USER_USER_TEST_H
#define TESSARY_TESTS_LIB_USER_USER_TEST_H

#include "tests/lib/scoped_variable.h"
#include "tests/lib/test_files.h"

#include <gtest/gtest.h>

#ifdef _WIN32
#include "tests/module/test_registry.h"
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

// While it lives, the product's key says that the machine's application data directory is this one, as it is written.
class MachineSetting
{
public:
#ifdef _WIN32
    explicit MachineSetting(const std::filesystem::path& value, DWORD type = REG_SZ)
    {
        SetText(kProductKey, L"AppDataPath", value.c_str(), type);
    }

private:
    TestRegistry m_registry;
#else
    explicit MachineSetting(const std::filesystem::path& value) : m_variable("AppDataPath", value) {}

private:
    ScopedVariable m_variable;
#endif
};

} // namespace tsypr::test

#endif
