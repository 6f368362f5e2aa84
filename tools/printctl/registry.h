// Values under HKEY_LOCAL_MACHINE, with undo.
#ifndef TESSARY_PRINTCTL_REGISTRY_H
#define TESSARY_PRINTCTL_REGISTRY_H

#include "tools/printctl/undo_log.h"

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tsypr::printctl
{

struct RegistryValue
{
    DWORD type;
    std::vector<uint8_t> data;
};

RegistryValue StringValue(const std::wstring& text);
RegistryValue StringListValue(const std::vector<std::wstring>& texts);

// The texts of a REG_SZ or REG_MULTI_SZ value; none for any other type.
std::vector<std::wstring> TextsOf(const RegistryValue& value);

// Nothing when the key or the value does not exist.
std::optional<RegistryValue> ReadRegistryValue(const std::wstring& key, const std::wstring& name);

// Creates the key if needed. On failure the previous value comes back and keys made on the way go again.
void SetRegistryValue(UndoLog& undo, const std::wstring& key, const std::wstring& name, const RegistryValue& value);

// Returns whether the value was there.
bool DeleteRegistryValue(const std::wstring& key, const std::wstring& name);

// Deletes the key, then the key above it and so on up to (not including) stop, as long as each is empty.
void DeleteEmptyKeys(std::wstring key, const std::wstring& stop);

} // namespace tsypr::printctl

#endif
