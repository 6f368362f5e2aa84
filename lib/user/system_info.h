// The machine, its system and its user, as support wants to know them.
#ifndef TESSARY_LIB_USER_SYSTEM_INFO_H
#define TESSARY_LIB_USER_SYSTEM_INFO_H

#include <cstdint>
#include <string>

namespace tsypr
{

inline constexpr char kUnknownText[] = "unknown";

// Texts are UTF-8 and "unknown" where the system does not tell; numbers are then 0.
struct SystemInfo
{
    std::string hostName = kUnknownText;
    std::string userName = kUnknownText;
    std::string osName = kUnknownText;       // "Windows 11 Pro", "Debian GNU/Linux"
    std::string osVersion = kUnknownText;    // "10.0 23H2", "12"
    std::string osBuild = kUnknownText;      // "22631.3007", "6.1.0-18-amd64"
    std::string architecture = kUnknownText; // of the machine, also when it emulates ours: x86, x86-64, arm64, ...
    uint32_t processorCount = 0;             // logical ones
    uint64_t memoryBytes = 0;
    std::string timeZone = kUnknownText; // "W. Europe Standard Time", "CET"
    int utcOffsetMinutes = 0;            // now, east of Greenwich positive
};

// Asks the system anew each time. What it does not tell, or what memory runs out for, stays unknown.
SystemInfo ReadSystemInfo() noexcept;

// Gives the record to `sink` line by line, each without a line end and valid for the call only; `context` is handed on.
// Nothing happens without a sink.
void WriteSystemInfo(const SystemInfo& info, void (*sink)(void* context, const char* line), void* context) noexcept;

} // namespace tsypr

#endif
