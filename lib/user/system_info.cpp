#include "lib/user/system_info.h"

#include "lib/string/format.h"

#include <cstdlib>

namespace tsypr
{

void WriteSystemInfo(const SystemInfo& info, void (*sink)(void* context, const char* line), void* context) noexcept
{
    if (sink == nullptr)
    {
        return;
    }
    constexpr uint64_t kMebibyte = 1024 * 1024;
    constexpr size_t kLineBytes = 512;
    char line[kLineBytes];
    FormatFixed(line, sizeof(line), "host %s, user %s", info.hostName.c_str(), info.userName.c_str());
    sink(context, line);
    FormatFixed(line,
                sizeof(line),
                "system %s, version %s, build %s",
                info.osName.c_str(),
                info.osVersion.c_str(),
                info.osBuild.c_str());
    sink(context, line);
    FormatFixed(line,
                sizeof(line),
                "processor %s, %u logical, memory %llu MiB",
                info.architecture.c_str(),
                static_cast<unsigned>(info.processorCount),
                static_cast<unsigned long long>(info.memoryBytes / kMebibyte));
    sink(context, line);
    const int offset = std::abs(info.utcOffsetMinutes);
    FormatFixed(line,
                sizeof(line),
                "time zone %s, UTC%c%02d:%02d",
                info.timeZone.c_str(),
                info.utcOffsetMinutes < 0 ? '-' : '+',
                offset / 60,
                offset % 60);
    sink(context, line);
}

} // namespace tsypr
