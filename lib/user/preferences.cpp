#include "lib/user/preferences.h"

#include "lib/file/read_file.h"
#include "lib/misc/exclusive_lock.h"
#include "lib/user/app_data.h"

#include <algorithm>
#include <memory>

namespace tsypr
{
namespace
{

constexpr char kFileName[] = "preferences.conf";
constexpr size_t kMaxFileBytes = 1024 * 1024;

struct Store
{
    ExclusiveLock lock;
    bool started = false;
    Dictionary* values = nullptr; // null until the first question
};

constinit Store g_store;

class StoreGuard
{
public:
    StoreGuard() noexcept
    {
        g_store.lock.Acquire();
    }
    ~StoreGuard()
    {
        g_store.lock.Release();
    }
    StoreGuard(const StoreGuard&) = delete;
    StoreGuard& operator=(const StoreGuard&) = delete;
};

std::string_view Trim(std::string_view text) noexcept
{
    const size_t first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// Takes the quoted value apart; false when it does not end with a quote of its own.
bool Unquote(std::string_view quoted, std::string& value)
{
    if (quoted.size() < 2 || quoted.front() != '"')
    {
        return false;
    }
    size_t i = 1;
    for (; i < quoted.size() && quoted[i] != '"'; ++i)
    {
        const bool escape =
            quoted[i] == '\\' && i + 1 < quoted.size() && (quoted[i + 1] == '"' || quoted[i + 1] == '\\');
        i += escape ? 1 : 0;
        value.push_back(quoted[i]);
    }
    return i + 1 == quoted.size();
}

bool ParseLine(std::string_view line, Dictionary& out)
{
    if (line.empty() || line.front() == '#')
    {
        return true;
    }
    const size_t equals = line.find('=');
    const std::string_view key = Trim(line.substr(0, equals));
    std::string value;
    return equals != std::string_view::npos && !key.empty() && Unquote(Trim(line.substr(equals + 1)), value) &&
           out.Set(key, value);
}

void AddFile(const std::string& path, Dictionary& out)
{
    std::string text;
    if (ReadWholeFile(path.c_str(), kMaxFileBytes, text))
    {
        ParsePreferences(text, out);
    }
}

void ReadFiles(Dictionary& out)
{
    std::string path;
    if (W32Util_GetTessaryCommonAppDataFilePath(kFileName, path))
    {
        AddFile(path, out);
    }
    if (GetUserAppDataDirectory(path))
    {
        AddFile(path.append("/").append(kFileName), out);
    }
}

} // namespace

size_t ParsePreferences(std::string_view text, Dictionary& out) noexcept
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark))
    {
        text.remove_prefix(kByteOrderMark.size());
    }
    size_t damaged = 0;
    while (!text.empty())
    {
        const size_t end = std::min(text.find('\n'), text.size());
        try
        {
            damaged += ParseLine(Trim(text.substr(0, end)), out) ? 0U : 1U;
        }
        catch (...)
        {
            ++damaged;
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return damaged;
}

void PreferencesStart() noexcept
{
    const StoreGuard guard;
    g_store.started = true;
}

void PreferencesStop() noexcept
{
    const StoreGuard guard;
    delete g_store.values;
    g_store.values = nullptr;
    g_store.started = false;
}

bool ReadPreference(std::string_view key, std::string& value) noexcept
{
    value.clear();
    const StoreGuard guard;
    if (!g_store.started)
    {
        return false;
    }
    try
    {
        if (g_store.values == nullptr)
        {
            auto values = std::make_unique<Dictionary>();
            ReadFiles(*values);
            g_store.values = values.release();
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

} // namespace tsypr
