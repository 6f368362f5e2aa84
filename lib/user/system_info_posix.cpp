#include "lib/user/system_info.h"

#include "lib/file/read_file.h"

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <ctime>

namespace tsypr
{
namespace
{

constexpr size_t kMaxReleaseFile = 64 * 1024;

// The value of a line NAME=value or NAME="value"; empty when there is none.
std::string ReleaseValue(const std::string& text, const std::string& name)
{
    const std::string start = "\n" + name + "=";
    const size_t found = ("\n" + text).find(start);
    if (found == std::string::npos)
    {
        return {};
    }
    const size_t begin = found + start.size() - 1;
    std::string value = text.substr(begin, text.find('\n', begin) - begin);
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
    {
        value = value.substr(1, value.size() - 2);
    }
    return value;
}

void SetIfKnown(std::string& member, const std::string& value)
{
    if (!value.empty())
    {
        member = value;
    }
}

std::string ArchitectureName(const std::string& machine)
{
    if (machine == "x86_64")
    {
        return "x86-64";
    }
    if (machine == "aarch64")
    {
        return "arm64";
    }
    return machine.starts_with('i') && machine.ends_with("86") ? "x86" : machine;
}

void ReadSystem(SystemInfo& info)
{
    utsname name{};
    if (uname(&name) == 0)
    {
        SetIfKnown(info.hostName, name.nodename);
        SetIfKnown(info.osName, name.sysname);
        SetIfKnown(info.osBuild, name.release);
        SetIfKnown(info.architecture, ArchitectureName(name.machine));
    }
    std::string release;
    if (ReadWholeFile("/etc/os-release", kMaxReleaseFile, release))
    {
        SetIfKnown(info.osName, ReleaseValue(release, "NAME"));
        SetIfKnown(info.osVersion, ReleaseValue(release, "VERSION_ID"));
    }
}

void ReadUser(SystemInfo& info)
{
    constexpr size_t kRecordBytes = 16 * 1024;
    std::string room(kRecordBytes, '\0');
    passwd record{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &record, room.data(), room.size(), &found) == 0 && found != nullptr)
    {
        SetIfKnown(info.userName, found->pw_name);
    }
}

void ReadHardware(SystemInfo& info) noexcept
{
    const long processors = sysconf(_SC_NPROCESSORS_ONLN);
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    info.processorCount = processors > 0 ? static_cast<uint32_t>(processors) : 0;
    info.memoryBytes = pages > 0 && pageBytes > 0 ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageBytes) : 0;
}

void ReadTimeZone(SystemInfo& info)
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local) != nullptr)
    {
        info.utcOffsetMinutes = static_cast<int>(local.tm_gmtoff / 60);
        SetIfKnown(info.timeZone, local.tm_zone != nullptr ? local.tm_zone : "");
    }
}

} // namespace

SystemInfo ReadSystemInfo() noexcept
{
    SystemInfo info;
    ReadHardware(info);
    for (void (*const read)(SystemInfo&) : {ReadSystem, ReadUser, ReadTimeZone})
    {
        try
        {
            read(info);
        }
        catch (...) // NOLINT(bugprone-empty-catch): what was not read stays unknown
        {
        }
    }
    return info;
}

} // namespace tsypr
