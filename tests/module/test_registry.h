// The registry as tests want it: empty at first, and as it was before when the test is over.
#ifndef TESSARY_TESTS_MODULE_TEST_REGISTRY_H
#define TESSARY_TESTS_MODULE_TEST_REGISTRY_H

#include "module/registry_keys.h"

#include <windows.h>

#include <cwchar>
#include <stdexcept>

namespace tsypr::test
{

inline constexpr wchar_t kDriverKeyW[] = L"Software\\Zelmora\\Tessary\\PrintRedir";
inline constexpr wchar_t kModuleKeyW[] = L"Software\\Zelmora\\Tessary\\PrintRedir\\ui";
inline constexpr wchar_t kPolicyKeyW[] = L"Software\\Policies\\Zelmora\\Tessary\\PrintRedir";
inline constexpr wchar_t kLegacyPolicyKeyW[] = L"Software\\Policies\\Brenlow, Inc.\\Brenlow LDX\\PrintRedir";

// Stands in for HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kFakeMachine[] = L"Software\\Tessary module tests";

// While it lives, HKEY_LOCAL_MACHINE is an empty key of the user's. The user's own hive cannot be replaced where
// RegOpenCurrentUser opens it: its policies are deleted, so the tests belong into a disposable prefix.
class TestRegistry
{
public:
    TestRegistry()
    {
        Clear();
        HKEY machine = nullptr;
        if (RegCreateKeyW(HKEY_CURRENT_USER, kFakeMachine, &machine) != ERROR_SUCCESS ||
            RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) != ERROR_SUCCESS)
        {
            throw std::runtime_error("no key for the tests");
        }
        RegCloseKey(machine);
    }
    ~TestRegistry()
    {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        Clear();
    }
    TestRegistry(const TestRegistry&) = delete;
    TestRegistry& operator=(const TestRegistry&) = delete;

private:
    static void Clear()
    {
        for (const wchar_t* key : {kFakeMachine, kPolicyKeyW, kLegacyPolicyKeyW})
        {
            RegDeleteTreeW(HKEY_CURRENT_USER, key);
        }
    }
};

// Writes the bytes as they are.
inline void SetBytes(HKEY root, const wchar_t* key, const wchar_t* name, DWORD type, const void* data, size_t bytes)
{
    if (RegSetKeyValueW(root, key, name, type, data, static_cast<DWORD>(bytes)) != ERROR_SUCCESS)
    {
        throw std::runtime_error("value not written");
    }
}

// Writes a text of the machine, or removes the value when the text is null.
inline void SetText(const wchar_t* key, const wchar_t* name, const wchar_t* text, DWORD type = REG_SZ)
{
    RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key, name);
    if (text != nullptr)
    {
        SetBytes(HKEY_LOCAL_MACHINE, key, name, type, text, (std::wcslen(text) + 1) * sizeof(wchar_t));
    }
}

} // namespace tsypr::test

#endif
