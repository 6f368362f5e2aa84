// The environment as a test wants it.
#ifndef TESSARY_TESTS_LIB_SCOPED_VARIABLE_H
#define TESSARY_TESTS_LIB_SCOPED_VARIABLE_H

#include <cstdlib>
#include <filesystem>
#include <optional>

#ifdef _WIN32
#include <windows.h>
#endif

namespace tsypr::test
{

// While it lives, the variable of the process has this value.
class ScopedVariable
{
public:
    ScopedVariable(const char* name, const std::filesystem::path& value) : m_name(name), m_before(Get(m_name.c_str()))
    {
        Set(m_name.c_str(), value.c_str());
    }
    ~ScopedVariable()
    {
        Set(m_name.c_str(), m_before ? m_before->c_str() : nullptr);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    using Text = std::filesystem::path::string_type;

#ifdef _WIN32
    static std::optional<Text> Get(const wchar_t* name)
    {
        Text value(GetEnvironmentVariableW(name, nullptr, 0), L'\0'); // room for the terminator, 0 where there is none
        const bool exists = !value.empty();
        value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
        return exists ? std::optional(value) : std::nullopt;
    }
    static void Set(const wchar_t* name, const wchar_t* value)
    {
        SetEnvironmentVariableW(name, value);
    }
#else
    static std::optional<Text> Get(const char* name)
    {
        const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
        return value != nullptr ? std::optional<Text>(value) : std::nullopt;
    }
    static void Set(const char* name, const char* value)
    {
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    }
#endif

    const std::filesystem::path m_name;
    const std::optional<Text> m_before;
};

} // namespace tsypr::test

#endif
