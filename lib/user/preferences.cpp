#include "lib/user/preferences.h"

#include "lib/file/operations.h"
#include "lib/misc/exclusive_lock.h"
#include "lib/string/dictionary_file.h"
#include "lib/user/app_data.h"

#include <memory>
#include <new>
#include <utility>

namespace tsypr
{
namespace
{

constexpr char kFileName[] = "preferences.conf";

constexpr int kStoreRank = 20; // files are read under it

struct Store
{
    ExclusiveLock lock{"preferences", kStoreRank};
    bool started = false;
    Dictionary* values = nullptr; // null until the first question
};

constinit Store g_store;

using StoreGuard = ScopedLock<ExclusiveLock>;

void Forget() noexcept
{
    delete g_store.values;
    g_store.values = nullptr;
}

FileResult AddFile(PreferenceScope scope, Dictionary& out, PreferenceReport& report)
{
    std::string path;
    if (!GetPreferenceFilePath(scope, path))
    {
        return {};
    }
    // The first question may come while a library is attached, where nobody may be kept waiting.
    constexpr RetryPolicy kBrief{1, 10, 50};
    std::vector<size_t> lines;
    size_t count = 0;
    const FileResult result = LoadDictionary(path.c_str(), out, &lines, &count, kBrief);
    report.damagedCount += count;
    for (const size_t line : lines)
    {
        report.damaged.push_back({scope, line});
    }
    return result.error == FileError::NotFound ? FileResult{} : result;
}

// Throws std::bad_alloc only.
std::unique_ptr<Dictionary> ReadFiles(PreferenceReport& report)
{
    auto values = std::make_unique<Dictionary>();
    report.machine = AddFile(PreferenceScope::Machine, *values, report);
    report.user = AddFile(PreferenceScope::User, *values, report);
    return values;
}

FileResult Change(PreferenceScope scope, std::string_view key, const std::string_view* value, uint32_t lockMs) noexcept
{
    std::string path;
    if (!GetPreferenceFilePath(scope, path))
    {
        return Failure(FileError::NotFound);
    }
    const FileResult result = value != nullptr ? SetPreferenceInFile(path.c_str(), key, *value, lockMs)
                                               : RemovePreferenceFromFile(path.c_str(), key, lockMs);
    const StoreGuard guard(g_store.lock);
    Forget();
    return result;
}

FileResult MakeUserFolder() noexcept
{
    std::string folder;
    return GetUserAppDataDirectory(folder) ? MakeDirectoryTree(folder.c_str()) : Failure(FileError::NotFound);
}

} // namespace

void PreferencesStart() noexcept
{
    const StoreGuard guard(g_store.lock);
    g_store.started = true;
}

void PreferencesStop() noexcept
{
    const StoreGuard guard(g_store.lock);
    Forget();
    g_store.started = false;
}

bool ReadPreference(std::string_view key, std::string& value) noexcept
{
    value.clear();
    const StoreGuard guard(g_store.lock);
    if (!g_store.started)
    {
        return false;
    }
    try
    {
        if (g_store.values == nullptr)
        {
            PreferenceReport report;
            g_store.values = ReadFiles(report).release();
        }
        const char* found = g_store.values->Get(key);
        value = found != nullptr ? found : "";
        return found != nullptr;
    }
    catch (...)
    {
        return false;
    }
}

FileResult PreferencesReload(PreferenceReport* report) noexcept
{
    const StoreGuard guard(g_store.lock);
    if (!g_store.started)
    {
        return Failure(FileError::InvalidArgument);
    }
    try
    {
        PreferenceReport own;
        std::unique_ptr<Dictionary> values = ReadFiles(own);
        const FileResult result = own.machine.Ok() ? own.user : own.machine;
        if (result.Ok())
        {
            Forget();
            g_store.values = values.release();
        }
        if (report != nullptr)
        {
            *report = std::move(own);
        }
        return result;
    }
    catch (...)
    {
        return Failure(FileError::OutOfMemory);
    }
}

bool GetPreferenceFilePath(PreferenceScope scope, std::string& path) noexcept
{
    if (scope == PreferenceScope::Machine)
    {
        return W32Util_GetTessaryCommonAppDataFilePath(kFileName, path);
    }
    try
    {
        if (!GetUserAppDataDirectory(path))
        {
            return false;
        }
        path.append("/").append(kFileName);
        return true;
    }
    catch (...)
    {
        path.clear();
        return false;
    }
}

FileResult WritePreference(PreferenceScope scope,
                           std::string_view key,
                           std::string_view value,
                           uint32_t lockMs) noexcept
{
    if (scope == PreferenceScope::User)
    {
        const FileResult made = MakeUserFolder();
        if (!made.Ok())
        {
            return made;
        }
    }
    return Change(scope, key, &value, lockMs);
}

FileResult RemovePreference(PreferenceScope scope, std::string_view key, uint32_t lockMs) noexcept
{
    return Change(scope, key, nullptr, lockMs);
}

} // namespace tsypr
