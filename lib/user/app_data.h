// Where the product keeps data for all users of the machine.
#ifndef TESSARY_LIB_USER_APP_DATA_H
#define TESSARY_LIB_USER_APP_DATA_H

#include <string>

namespace tsypr
{

// The machine-wide application data directory, or a path in it, UTF-8: `relative` (null or empty for the directory
// itself) is joined with "\". The directory is the registry value "AppDataPath" of the product, else the all-users
// application data folder followed by "\Zelmora\Tessary". Returns false, with `path` empty, when that directory does
// not exist or memory runs out. Whether `relative` exists is not looked at.
bool W32Util_GetTessaryCommonAppDataFilePath(const char* relative, std::string& path) noexcept;

// The present user's directory for the product's data, UTF-8; false when there is none.
bool GetUserAppDataDirectory(std::string& path) noexcept;

} // namespace tsypr

#endif
