#include "module/reg_utils.h"

#include "module/log.h"
#include "module/malloc_ptr.h"
#include "module/registry_keys.h"

#include <cwchar>
#include <cwctype>
#include <utility>

namespace tsypr
{
namespace
{

class RegistryKey
{
public:
    RegistryKey() noexcept = default;
    ~RegistryKey()
    {
        if (m_key != nullptr)
        {
            RegCloseKey(m_key);
        }
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    HKEY Get() const noexcept
    {
        return m_key;
    }
    HKEY* Put() noexcept
    {
        return &m_key;
    }

private:
    HKEY m_key = nullptr;
};

LSTATUS OpenKey(HKEY root, const char* subkey, HKEY* key) noexcept
{
    return RegOpenKeyExA(root, subkey, 0, KEY_READ, key);
}

LSTATUS OpenKey(HKEY root, const wchar_t* subkey, HKEY* key) noexcept
{
    return RegOpenKeyExW(root, subkey, 0, KEY_READ, key);
}

LSTATUS QueryValue(HKEY key, const char* name, DWORD* type, void* data, DWORD* bytes) noexcept
{
    return RegQueryValueExA(key, name, nullptr, type, static_cast<BYTE*>(data), bytes);
}

LSTATUS QueryValue(HKEY key, const wchar_t* name, DWORD* type, void* data, DWORD* bytes) noexcept
{
    return RegQueryValueExW(key, name, nullptr, type, static_cast<BYTE*>(data), bytes);
}

// Replaces HKEY_CURRENT_USER, whose handle is cached per process, by the hive of the user that the thread acts for: one
// that impersonates must get its client's. `user` keeps the hive open, for reading: what may be written below it
// depends on the user's rights there alone. False when it cannot be opened.
bool ResolveRoot(HKEY& root, RegistryKey& user) noexcept
{
    if (root == HKEY_CURRENT_USER)
    {
        if (RegOpenCurrentUser(KEY_READ, user.Put()) != ERROR_SUCCESS)
        {
            return false;
        }
        root = user.Get();
    }
    return true;
}

template <typename Char>
bool OpenForReading(HKEY root, const Char* subkey, RegistryKey& key) noexcept
{
    RegistryKey user;
    return ResolveRoot(root, user) && OpenKey(root, subkey, key.Put()) == ERROR_SUCCESS;
}

template <typename Char>
bool IsEmpty(const Char* text) noexcept
{
    return text == nullptr || *text == 0;
}

constexpr DWORD kFirstStringBytes = 260;

// Reads a text value of one of two types (give the same twice for one). The buffer has room for a terminator of our
// own, which makes a value that was stored without one safe.
template <typename Char>
bool ReadString(HKEY root,
                const Char* subkey,
                const Char* name,
                std::pair<DWORD, DWORD> types,
                Char** out,
                DWORD* outBytes) noexcept
{
    RegistryKey key;
    if (root == nullptr || IsEmpty(subkey) || IsEmpty(name) || out == nullptr || !OpenForReading(root, subkey, key))
    {
        return false;
    }
    DWORD bytes = kFirstStringBytes;
    LSTATUS status = ERROR_MORE_DATA;
    while (status == ERROR_MORE_DATA)
    {
        // One character more than the terminator needs, for a value whose size is not a whole number of characters.
        MallocPtr<Char> buffer(static_cast<Char*>(std::calloc(bytes + 2 * sizeof(Char), 1)));
        if (buffer == nullptr)
        {
            return false;
        }
        DWORD type = REG_NONE;
        status = QueryValue(key.Get(), name, &type, buffer.get(), &bytes);
        if (status == ERROR_SUCCESS && (type == types.first || type == types.second))
        {
            *out = buffer.release();
            if (outBytes != nullptr)
            {
                *outBytes = bytes;
            }
            return true;
        }
    }
    return false;
}

bool ReadFallbackSetting(wchar_t** text) noexcept
{
    constexpr wchar_t kValue[] = L"FallbackToLegacyGPO";
    return RegUtils::ReadStringValueW(HKEY_LOCAL_MACHINE, kProductPolicyKey, kValue, text, nullptr) ||
           RegUtils::ReadStringValueW(HKEY_LOCAL_MACHINE, kProductKey, kValue, text, nullptr);
}

} // namespace

bool RegUtils::ReadDwordValue(HKEY root, const char* subkey, const char* name, DWORD defaultValue, DWORD* out) noexcept
{
    if (root == nullptr || IsEmpty(subkey) || IsEmpty(name) || out == nullptr)
    {
        return false;
    }
    *out = defaultValue;
    RegistryKey key;
    if (!OpenForReading(root, subkey, key))
    {
        return false;
    }
    DWORD value = 0;
    DWORD type = REG_NONE;
    DWORD bytes = sizeof(value);
    if (QueryValue(key.Get(), name, &type, &value, &bytes) != ERROR_SUCCESS || type != REG_DWORD ||
        bytes != sizeof(value))
    {
        return false;
    }
    *out = value;
    return true;
}

bool RegUtils::ReadStringValueA(HKEY root, const char* subkey, const char* name, char** out) noexcept
{
    return ReadString(root, subkey, name, {REG_SZ, REG_SZ}, out, nullptr);
}

bool RegUtils::ReadStringValueW(
    HKEY root, const wchar_t* subkey, const wchar_t* name, wchar_t** out, DWORD* outBytes) noexcept
{
    return ReadString(root, subkey, name, {REG_SZ, REG_MULTI_SZ}, out, outBytes);
}

bool RegUtils::IsFallbackToLegacyGPO() noexcept
{
    wchar_t* text = nullptr;
    if (!ReadFallbackSetting(&text))
    {
        return true;
    }
    const MallocPtr<wchar_t> owner(text);
    for (wchar_t* c = text; *c != L'\0'; ++c)
    {
        *c = static_cast<wchar_t>(std::towlower(*c));
    }
    return std::wcscmp(text, L"true") == 0;
}

bool RegUtils::ReadGPODwordValue(const char* name, DWORD defaultValue, DWORD* out) noexcept
{
    if (out == nullptr)
    {
        return false;
    }
    struct Place
    {
        HKEY root;
        const char* subkey;
        bool legacy;
    };
    const Place places[] = {{HKEY_CURRENT_USER, kDriverPolicyKey, false},
                            {HKEY_CURRENT_USER, kLegacyDriverPolicyKey, true},
                            {HKEY_LOCAL_MACHINE, kDriverPolicyKey, false},
                            {HKEY_LOCAL_MACHINE, kLegacyDriverPolicyKey, true}};
    const bool fallback = IsFallbackToLegacyGPO();
    const char* tried = "";
    *out = defaultValue;
    for (const Place& place : places)
    {
        if (place.legacy && !fallback)
        {
            continue;
        }
        tried = place.subkey;
        if (ReadDwordValue(place.root, place.subkey, name, defaultValue, out))
        {
            LogAt(kLogInfo, "%s, succeeded to read GPO [%s] from [%s].\n", "RegUtils::ReadGPODwordValue", name, tried);
            return true;
        }
    }
    LogError("%s, failed to read GPO [%s] from [%s].\n", "RegUtils::ReadGPODwordValue", name, tried);
    return false;
}

bool SetRegistryValue(
    HKEY root, const wchar_t* subkey, const wchar_t* valueName, DWORD type, const void* data, DWORD size) noexcept
{
    if (root == nullptr || subkey == nullptr || valueName == nullptr)
    {
        return false;
    }
    RegistryKey user;
    RegistryKey key;
    if (!ResolveRoot(root, user) ||
        RegCreateKeyExW(root, subkey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE, nullptr, key.Put(), nullptr) !=
            ERROR_SUCCESS)
    {
        return false;
    }
    return RegSetValueExW(key.Get(), valueName, 0, type, static_cast<const BYTE*>(data), size) == ERROR_SUCCESS;
}

} // namespace tsypr
