// Where the product keeps data for all users of the machine.
#ifndef TESSARY_LIB_USER_APP_DATA_H
#define TESSARY_LIB_USER_APP_DATA_H

#include <string>

namespace tsypr
{

// The machine-wide application data directory, or a path in it, UTF-8: `relative` (null or empty for the directory
// itself) is joined with "\" as it is, of any length and whether it exists or not. The directory is the registry value
// "AppDataPath" of the product (REG_SZ or REG_EXPAND_SZ; separators at its end do not count; an empty one, one of
// another type or longer than any path counts as missing), else the all-users application data folder followed by
// "\Zelmora\Tessary". Returns false, with `path` empty, when that directory does not exist or memory runs out.
// `relative` must not be part of `path`. Natively "/" joins, and the environment variable "AppDataPath" or
// /var/lib/zelmora/tessary is the directory.
bool W32Util_GetTessaryCommonAppDataFilePath(const char* relative, std::string& path) noexcept;

// The present user's directory for the product's data, UTF-8, whether it exists or not. Returns false, with `path`
// empty, when the user has none or memory runs out.
bool GetUserAppDataDirectory(std::string& path) noexcept;

} // namespace tsypr

#endif
