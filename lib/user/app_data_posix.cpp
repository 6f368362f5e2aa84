#include "lib/user/app_data.h"

#include <sys/stat.h>

#include <cstdlib>

namespace tsypr
{
namespace
{

bool ReadEnvironment(const char* name, std::string& value)
{
    const char* text = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here changes the environment
    value = text != nullptr ? text : "";
    return !value.empty();
}

bool IsDirectory(const std::string& path) noexcept
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

// Where there is no registry, an environment variable of the same name takes its place.
bool W32Util_GetTessaryCommonAppDataFilePath(const char* relative, std::string& path) noexcept
{
    try
    {
        if (!ReadEnvironment("AppDataPath", path))
        {
            path = "/var/lib/zelmora/tessary";
        }
        if (!IsDirectory(path))
        {
            path.clear();
            return false;
        }
        if (relative != nullptr && *relative != '\0')
        {
            path.append("/").append(relative);
        }
        return true;
    }
    catch (...)
    {
        path.clear();
        return false;
    }
}

bool GetUserAppDataDirectory(std::string& path) noexcept
{
    try
    {
        if (!ReadEnvironment("HOME", path))
        {
            return false;
        }
        path += "/.config/zelmora/tessary";
        return true;
    }
    catch (...)
    {
        path.clear();
        return false;
    }
}

} // namespace tsypr
