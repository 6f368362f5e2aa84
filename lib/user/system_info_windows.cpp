#include "lib/user/system_info.h"

#include "lib/string/format.h"
#include "lib/unicode/codeset.h"
#include "lib/user/registry_text_windows.h"

#include <windows.h>

#include <lmcons.h>

namespace tsypr
{
namespace
{

constexpr wchar_t kVersionKey[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion";

void SetIfKnown(std::string& member, const wchar_t* text)
{
    std::string utf8;
    if (*text != L'\0' && CodeSet_Utf16ToUtf8(text, utf8))
    {
        member = utf8;
    }
}

// Of the version key; empty when it is not there.
std::wstring ReadVersionText(const wchar_t* name)
{
    std::wstring text;
    ReadMachineText(kVersionKey, name, text);
    return text;
}

template <typename Function>
Function FindFunction(const wchar_t* library, const char* name) noexcept
{
    const HMODULE module = GetModuleHandleW(library);
    return module == nullptr ? nullptr
                             : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// Unlike GetVersionEx it does not depend on what the host program declares.
bool ReadVersion(OSVERSIONINFOW& version) noexcept
{
    using RtlGetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    const auto function = FindFunction<RtlGetVersion>(L"ntdll.dll", "RtlGetVersion");
    version.dwOSVersionInfoSize = sizeof(version);
    return function != nullptr && function(&version) == 0;
}

void ReadVersionNumbers(SystemInfo& info)
{
    OSVERSIONINFOW version{};
    if (!ReadVersion(version))
    {
        return;
    }
    DWORD revision = 0;
    DWORD bytes = sizeof(revision);
    const bool revised = RegGetValueW(HKEY_LOCAL_MACHINE,
                                      kVersionKey,
                                      L"UBR",
                                      RRF_RT_REG_DWORD | RRF_SUBKEY_WOW6464KEY,
                                      nullptr,
                                      &revision,
                                      &bytes) == ERROR_SUCCESS;
    std::wstring release = ReadVersionText(L"DisplayVersion");
    if (release.empty())
    {
        release = ReadVersionText(version.szCSDVersion[0] == L'\0' ? L"ReleaseId" : L"CSDVersion");
    }
    FormatString(info.osVersion,
                 "%lu.%lu%s%S",
                 version.dwMajorVersion,
                 version.dwMinorVersion,
                 release.empty() ? "" : " ",
                 release.c_str());
    FormatString(info.osBuild, revised ? "%lu.%lu" : "%lu", version.dwBuildNumber, revision); // NOLINT
    // The registry of Windows 11 still says 10.
    constexpr DWORD kFirstBuildOf11 = 22000;
    constexpr std::string_view kTen = "Windows 10";
    if (version.dwBuildNumber >= kFirstBuildOf11 && info.osName.starts_with(kTen))
    {
        info.osName.replace(0, kTen.size(), "Windows 11");
    }
}

void ReadSystem(SystemInfo& info)
{
    SetIfKnown(info.osName, ReadVersionText(L"ProductName").c_str());
    ReadVersionNumbers(info);
}

void ReadNames(SystemInfo& info)
{
    wchar_t host[256] = {};
    auto length = static_cast<DWORD>(std::size(host));
    if (GetComputerNameExW(ComputerNamePhysicalDnsHostname, host, &length) != FALSE)
    {
        SetIfKnown(info.hostName, host);
    }
    wchar_t user[UNLEN + 1] = {};
    length = static_cast<DWORD>(std::size(user));
    if (GetUserNameW(user, &length) != FALSE)
    {
        SetIfKnown(info.userName, user);
    }
}

const char* ArchitectureName(USHORT machine) noexcept
{
    switch (machine)
    {
    case IMAGE_FILE_MACHINE_AMD64:
        return "x86-64";
    case IMAGE_FILE_MACHINE_ARM64:
        return "arm64";
    case IMAGE_FILE_MACHINE_I386:
        return "x86";
    default:
        return kUnknownText;
    }
}

// What GetNativeSystemInfo says where the newer question is not known.
USHORT MachineOf(WORD processor) noexcept
{
    switch (processor)
    {
    case PROCESSOR_ARCHITECTURE_AMD64:
        return IMAGE_FILE_MACHINE_AMD64;
    case PROCESSOR_ARCHITECTURE_ARM64:
        return IMAGE_FILE_MACHINE_ARM64;
    case PROCESSOR_ARCHITECTURE_INTEL:
        return IMAGE_FILE_MACHINE_I386;
    default:
        return IMAGE_FILE_MACHINE_UNKNOWN;
    }
}

void ReadHardware(SystemInfo& info)
{
    using IsWow64Process2 = BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*);
    const auto ask = FindFunction<IsWow64Process2>(L"kernel32.dll", "IsWow64Process2");
    USHORT ours = IMAGE_FILE_MACHINE_UNKNOWN;
    USHORT native = IMAGE_FILE_MACHINE_UNKNOWN;
    SYSTEM_INFO system{};
    GetNativeSystemInfo(&system);
    if (ask == nullptr || ask(GetCurrentProcess(), &ours, &native) == FALSE)
    {
        native = MachineOf(system.wProcessorArchitecture);
    }
    info.architecture = ArchitectureName(native);
    const DWORD all = GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
    info.processorCount = all != 0 ? all : system.dwNumberOfProcessors;
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof(memory);
    info.memoryBytes = GlobalMemoryStatusEx(&memory) != FALSE ? memory.ullTotalPhys : 0;
}

void ReadTimeZone(SystemInfo& info)
{
    DYNAMIC_TIME_ZONE_INFORMATION zone{};
    const DWORD season = GetDynamicTimeZoneInformation(&zone);
    if (season == TIME_ZONE_ID_INVALID)
    {
        return;
    }
    LONG bias = zone.Bias;
    if (season != TIME_ZONE_ID_UNKNOWN)
    {
        bias += season == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : zone.StandardBias;
    }
    info.utcOffsetMinutes = static_cast<int>(-bias);
    // The key is the same in every language, the name is not.
    SetIfKnown(info.timeZone, zone.TimeZoneKeyName[0] != L'\0' ? zone.TimeZoneKeyName : zone.StandardName);
}

} // namespace

SystemInfo ReadSystemInfo() noexcept
{
    SystemInfo info;
    for (void (*const read)(SystemInfo&) : {ReadNames, ReadSystem, ReadHardware, ReadTimeZone})
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
