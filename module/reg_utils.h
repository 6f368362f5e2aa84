// Reading settings and policies from the registry, and writing the few values the driver keeps there.
//
// All readers return false without touching the registry when a root, key name or value name is null or empty, or the
// result pointer is null. The root HKEY_CURRENT_USER stands for the hive of the user that the thread acts for.
#ifndef TESSARY_MODULE_REG_UTILS_H
#define TESSARY_MODULE_REG_UTILS_H

#include <windows.h>

namespace tsypr
{

namespace RegUtils
{

// Reads a DWORD policy: the user's before the machine's, and in each hive the present key before the legacy key, which
// is read only while IsFallbackToLegacyGPO() says so. `out` receives the value, or `defaultValue` when there is none.
bool ReadGPODwordValue(const char* name, DWORD defaultValue, DWORD* out) noexcept;

// Whether policies under the legacy key are honoured; read afresh at every call. On unless a setting says otherwise.
bool IsFallbackToLegacyGPO() noexcept;

// Stores `defaultValue` in `out`, then the value if it exists as a REG_DWORD of 4 bytes; returns whether it did.
bool ReadDwordValue(HKEY root, const char* subkey, const char* name, DWORD defaultValue, DWORD* out) noexcept;

// Reads a REG_SZ. On success `out` receives a terminated text that the caller releases with free().
bool ReadStringValueA(HKEY root, const char* subkey, const char* name, char** out) noexcept;

// Reads a REG_SZ or REG_MULTI_SZ. On success `out` receives a terminated text that the caller releases with free(), and
// `outBytes`, unless null, the size of the stored value in bytes.
bool ReadStringValueW(HKEY root, const wchar_t* subkey, const wchar_t* name, wchar_t** out, DWORD* outBytes) noexcept;

} // namespace RegUtils

// Creates or opens the key and sets the value (`size` in bytes). Returns whether the value was set; false when the
// root, `subkey` or `valueName` is null.
bool SetRegistryValue(
    HKEY root, const wchar_t* subkey, const wchar_t* valueName, DWORD type, const void* data, DWORD size) noexcept;

} // namespace tsypr

#endif
