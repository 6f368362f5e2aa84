#include "module/logging_setup.h"

#include "lib/string/ascii.h"
#include "lib/unicode/process_code_page.h"
#include "lib/user/app_data.h"
#include "lib/user/preferences.h"
#include "module/log.h"
#include "module/malloc_ptr.h"
#include "module/reg_utils.h"
#include "module/registry_keys.h"

#include <windows.h>

#include <process.h>

#include <string>

namespace tsypr
{
namespace
{

constexpr size_t kNameBuffer = 255;

bool ReadRegistryText(const char* subkey, const char* name, std::string& value)
{
    char* text = nullptr;
    if (!RegUtils::ReadStringValueA(HKEY_LOCAL_MACHINE, subkey, name, &text))
    {
        return false;
    }
    const MallocPtr<char> owner(text);
    value = text;
    return true;
}

// `format` takes the tag and gives the preference's key.
bool ReadTaggedPreference(const char* format, const char* tag, std::string& value) noexcept
{
    char key[kNameBuffer];
    // The formats are the two literals below.
    FormatFixed(key, sizeof(key), format, tag); // NOLINT(clang-diagnostic-format-nonliteral)
    return ReadPreference(key, value);
}

std::string ReadLevelName(const char* tag, const std::string& moduleKey)
{
    std::string level;
    if (!ReadRegistryText(kDriverKey, "LogLevel", level) && !ReadRegistryText(moduleKey.c_str(), "LogLevel", level) &&
        !ReadTaggedPreference("pref.pr.%s.minLogLevel", tag, level))
    {
        return "info";
    }
    return EqualsIgnoringCase(level, "trace") ? "verbose" : level;
}

// One file per process start. Empty when there is no application data directory: the log then runs without a file.
std::string GenerateFileName(const char* tag)
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    char name[kNameBuffer];
    FormatFixed(name,
                sizeof(name),
                "logs\\print_%s_%04d-%02d-%02d_%02d%02d%02d-%03d_%d.log",
                tag,
                now.wYear,
                now.wMonth,
                now.wDay,
                now.wHour,
                now.wMinute,
                now.wSecond,
                now.wMilliseconds,
                _getpid());
    std::string path;
    W32Util_GetTessaryCommonAppDataFilePath(name, path);
    return path;
}

// The file is read from the per-module key only, while the level may be set for all modules at once. `generated` tells
// that the name is this process's own.
std::string ReadFileName(const char* tag, const std::string& moduleKey, bool& generated)
{
    std::string path;
    generated = false;
    if (ReadRegistryText(moduleKey.c_str(), "LogFile", path))
    {
        // The registry's narrow texts are in the process's code page, the log's file name in UTF-8.
        std::string utf8;
        return CodeSet_ProcessToUtf8(path, utf8, CodeSetMode::Lenient).Ok() ? utf8 : path;
    }
    if (ReadTaggedPreference("pref.pr.%s.logFile", tag, path))
    {
        return path;
    }
    generated = true;
    return GenerateFileName(tag);
}

// What the preferences say about rotation and the like, under the names that the settings have.
void AddPreferences(const char* tag, Dictionary& settings)
{
    constexpr const char* kKeys[] = {
        kLogRotateBytesKey, kLogKeepRotatedKey, kLogKeepFilesKey, kLogThrottleLinesKey, kLogThrottleSecondsKey};
    for (const char* key : kKeys)
    {
        char preference[kNameBuffer];
        std::string value;
        FormatFixed(preference, sizeof(preference), "pref.pr.%s.%s", tag, key);
        if (ReadPreference(preference, value))
        {
            settings.Set(key, value);
        }
    }
}

bool StartLog(const char* tag, std::string& level)
{
    Dictionary settings;
    const std::string moduleKey = std::string(kDriverKey) + "\\" + tag;
    level = ReadLevelName(tag, moduleKey);
    settings.Set(kLogFileLevelKey, level);
    bool ownFile = false;
    const std::string file = ReadFileName(tag, moduleKey, ownFile);
    if (!file.empty())
    {
        settings.Set(kLogFileNameKey, file);
        settings.Set(kLogOwnFileKey, ownFile ? "1" : "0");
    }
    AddPreferences(tag, settings);
    return LogStart(tag, settings);
}

} // namespace

int InitLogging(const char* tag) noexcept
{
    if (tag == nullptr)
    {
        return 2;
    }
    PreferencesStart();
    try
    {
        std::string level;
        if (StartLog(tag, level))
        {
            LogAt(kLogInfo, "virtual integrated print log level: %s.\n", level.c_str());
            return 0;
        }
    }
    catch (...)
    {
        LogStop();
    }
    PreferencesStop();
    return 3;
}

void ShutdownLogging() noexcept
{
    LogStop();
    PreferencesStop();
}

} // namespace tsypr
