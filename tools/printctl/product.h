// Where the installed product keeps its files and settings.
#ifndef TESSARY_PRINTCTL_PRODUCT_H
#define TESSARY_PRINTCTL_PRODUCT_H

#include <filesystem>
#include <string>

namespace tsypr::printctl
{

inline constexpr wchar_t kModuleFile[] = L"tsyprui.dll";
inline constexpr wchar_t kServiceFile[] = L"tsyprserverapi.dll";
inline constexpr wchar_t kDescriptionFile[] = L"tessary.ppd";

// Under HKEY_LOCAL_MACHINE.
inline constexpr wchar_t kSoftwareKey[] = L"Software";
inline constexpr wchar_t kLanguageKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir\\plugins";
inline constexpr wchar_t kLanguageValue[] = L"tsyprui_source";
inline constexpr wchar_t kServiceKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir\\service";
inline constexpr wchar_t kProfilesValue[] = L"PrinterProfiles";
// REG_MULTI_SZ: every file that an installation placed, so that removing takes exactly those.
inline constexpr wchar_t kFilesValue[] = L"InstalledFiles";

struct ProductFolders
{
    std::filesystem::path product;   // under Program Files
    std::filesystem::path languages; // language libraries
    std::filesystem::path printers;  // printer profiles
    std::filesystem::path data;      // under ProgramData: logs
    std::filesystem::path system;    // System32
    std::filesystem::path spooler;   // where the spooler keeps the files of installed drivers
};

ProductFolders FindProductFolders();

// The folder of this program.
std::filesystem::path ProgramFolder();

} // namespace tsypr::printctl

#endif
