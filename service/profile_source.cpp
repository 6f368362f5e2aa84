#include "service/profile_source.h"

#include <windows.h>

#include "service/wide_text.h"

namespace tsypr::service
{

namespace
{

constexpr wchar_t kServiceKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir\\service";
constexpr wchar_t kProfilesValue[] = L"PrinterProfiles";
constexpr DWORD kLongestPath = 32768;

// The registry's directory, empty when none is set.
std::wstring ConfiguredDirectory()
{
    std::wstring text(kLongestPath, L'\0');
    DWORD size = kLongestPath * sizeof(wchar_t);
    const LSTATUS status =
        RegGetValueW(HKEY_LOCAL_MACHINE, kServiceKey, kProfilesValue, RRF_RT_REG_SZ, nullptr, text.data(), &size);
    if (status != ERROR_SUCCESS)
    {
        return {};
    }
    text.resize(wcsnlen(text.c_str(), size / sizeof(wchar_t)));
    return text;
}

// The directory of the library that holds this code, not that of the program.
std::filesystem::path LibraryDirectory()
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            kServiceKey,
                            &module))
    {
        return {};
    }
    std::wstring file(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(module, file.data(), kLongestPath);
    file.resize(length);
    return std::filesystem::path(file).parent_path();
}

} // namespace

std::filesystem::path ProfileDirectory()
{
    const std::wstring configured = ConfiguredDirectory();
    return configured.empty() ? LibraryDirectory() / L"printers" : std::filesystem::path(configured);
}

std::wstring DescribeProblems(const std::vector<ProfileProblem>& problems)
{
    std::wstring text;
    for (const ProfileProblem& problem : problems)
    {
        text += WideFromUtf8(problem.file + ": " + problem.field + ": " + problem.reason) + L'\n';
    }
    return text;
}

} // namespace tsypr::service
