#include "tools/printctl/registry.h"

#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

namespace tsypr::printctl
{

namespace
{

// Owner of an open registry key.
class Key
{
public:
    Key() = default;
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    ~Key()
    {
        if (m_key != nullptr)
        {
            RegCloseKey(m_key);
        }
    }

    HKEY Get() const noexcept
    {
        return m_key;
    }

    HKEY* Out() noexcept
    {
        return &m_key;
    }

private:
    HKEY m_key = nullptr;
};

std::string ShownKey(const std::wstring& key, const std::wstring& name)
{
    return Quoted(L"HKEY_LOCAL_MACHINE\\" + key + L"\\" + name);
}

std::wstring ParentKey(const std::wstring& key)
{
    const size_t slash = key.rfind(L'\\');
    return slash == std::wstring::npos ? std::wstring() : key.substr(0, slash);
}

bool KeyExists(const std::wstring& key)
{
    Key handle;
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, handle.Out()) == ERROR_SUCCESS;
}

bool IsEmptyKey(const std::wstring& key)
{
    Key handle;
    DWORD keys = 0;
    DWORD values = 0;
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, handle.Out()) == ERROR_SUCCESS &&
           RegQueryInfoKeyW(handle.Get(),
                            nullptr,
                            nullptr,
                            nullptr,
                            &keys,
                            nullptr,
                            nullptr,
                            &values,
                            nullptr,
                            nullptr,
                            nullptr,
                            nullptr) == ERROR_SUCCESS &&
           keys == 0 && values == 0;
}

void Store(const std::wstring& key, const std::wstring& name, const RegistryValue& value)
{
    Key handle;
    LSTATUS status =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, handle.Out(), nullptr);
    if (status == ERROR_SUCCESS)
    {
        status = RegSetValueExW(
            handle.Get(), name.c_str(), 0, value.type, value.data.data(), static_cast<DWORD>(value.data.size()));
    }
    if (status != ERROR_SUCCESS)
    {
        ThrowSystem("setting registry value " + ShownKey(key, name), static_cast<DWORD>(status));
    }
}

void CreateKeys(UndoLog& undo, const std::wstring& key)
{
    if (key.empty() || KeyExists(key))
    {
        return;
    }
    CreateKeys(undo, ParentKey(key));
    Key handle;
    const LSTATUS status =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, handle.Out(), nullptr);
    if (status != ERROR_SUCCESS)
    {
        ThrowSystem("creating registry key " + ShownKey(key, {}), static_cast<DWORD>(status));
    }
    undo.OnFailure("creating registry key " + ShownKey(key, {}), [key] { DeleteEmptyKeys(key, ParentKey(key)); });
}

void Append(std::vector<uint8_t>& data, const std::wstring& text)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.c_str());
    data.insert(data.end(), bytes, bytes + (text.size() + 1) * sizeof(wchar_t));
}

} // namespace

RegistryValue StringValue(const std::wstring& text)
{
    RegistryValue value{REG_SZ, {}};
    Append(value.data, text);
    return value;
}

RegistryValue StringListValue(const std::vector<std::wstring>& texts)
{
    RegistryValue value{REG_MULTI_SZ, {}};
    for (const auto& text : texts)
    {
        Append(value.data, text);
    }
    Append(value.data, {});
    return value;
}

std::vector<std::wstring> TextsOf(const RegistryValue& value)
{
    std::vector<std::wstring> texts;
    if (value.type != REG_SZ && value.type != REG_MULTI_SZ)
    {
        return texts;
    }
    std::wstring all(value.data.size() / sizeof(wchar_t), L'\0');
    std::copy_n(value.data.begin(), all.size() * sizeof(wchar_t), reinterpret_cast<uint8_t*>(all.data()));
    for (size_t start = 0; start < all.size();)
    {
        const size_t end = std::min(all.find(L'\0', start), all.size());
        if (end > start)
        {
            texts.push_back(all.substr(start, end - start));
        }
        start = end + 1;
    }
    return texts;
}

std::optional<RegistryValue> ReadRegistryValue(const std::wstring& key, const std::wstring& name)
{
    Key handle;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_READ, handle.Out()) != ERROR_SUCCESS)
    {
        return std::nullopt;
    }
    RegistryValue value{REG_NONE, {}};
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(handle.Get(), name.c_str(), nullptr, &value.type, nullptr, &size);
    if (status == ERROR_SUCCESS)
    {
        value.data.resize(size);
        status = RegQueryValueExW(handle.Get(), name.c_str(), nullptr, &value.type, value.data.data(), &size);
        value.data.resize(size);
    }
    if (status == ERROR_FILE_NOT_FOUND)
    {
        return std::nullopt;
    }
    if (status != ERROR_SUCCESS)
    {
        ThrowSystem("reading registry value " + ShownKey(key, name), static_cast<DWORD>(status));
    }
    return value;
}

void SetRegistryValue(UndoLog& undo, const std::wstring& key, const std::wstring& name, const RegistryValue& value)
{
    const std::optional<RegistryValue> previous = ReadRegistryValue(key, name);
    CreateKeys(undo, key);
    Store(key, name, value);
    undo.OnFailure("setting registry value " + ShownKey(key, name),
                   [key, name, previous]
                   {
                       if (previous)
                       {
                           Store(key, name, *previous);
                       }
                       else
                       {
                           DeleteRegistryValue(key, name);
                       }
                   });
}

bool DeleteRegistryValue(const std::wstring& key, const std::wstring& name)
{
    Key handle;
    LSTATUS status = RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_WRITE, handle.Out());
    if (status == ERROR_SUCCESS)
    {
        status = RegDeleteValueW(handle.Get(), name.c_str());
    }
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND)
    {
        ThrowSystem("deleting registry value " + ShownKey(key, name), static_cast<DWORD>(status));
    }
    return status == ERROR_SUCCESS;
}

void DeleteEmptyKeys(std::wstring key, const std::wstring& stop)
{
    while (!key.empty() && !EqualNoCase(key, stop) && IsEmptyKey(key))
    {
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), KEY_WOW64_64KEY, 0);
        key = ParentKey(key);
    }
}

} // namespace tsypr::printctl
