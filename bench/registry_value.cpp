#include "bench/registry_value.h"

#include <stdexcept>

namespace tsypr::bench
{
namespace
{

bool KeyExists(const std::wstring& path) noexcept
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return false;
    }
    RegCloseKey(key);
    return true;
}

std::vector<std::wstring> MissingKeys(const std::wstring& path)
{
    std::vector<std::wstring> missing;
    for (size_t end = path.find(L'\\'); end != std::wstring::npos; end = path.find(L'\\', end + 1))
    {
        if (!KeyExists(path.substr(0, end)))
        {
            missing.push_back(path.substr(0, end));
        }
    }
    if (path.back() != L'\\' && !KeyExists(path))
    {
        missing.push_back(path);
    }
    return missing;
}

void RemoveIfEmpty(const std::wstring& path) noexcept
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return;
    }
    DWORD keys = 1;
    DWORD values = 1;
    RegQueryInfoKeyW(
        key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(key);
    if (keys == 0 && values == 0)
    {
        RegDeleteKeyW(HKEY_LOCAL_MACHINE, path.c_str());
    }
}

} // namespace

RegistryValue::RegistryValue(const wchar_t* key, const wchar_t* name, const std::optional<std::wstring>& text)
    : m_key(key), m_name(name), m_madeKeys(MissingKeys(m_key))
{
    Remember();
    LSTATUS status = ERROR_SUCCESS;
    if (text)
    {
        const auto bytes = static_cast<DWORD>((text->size() + 1) * sizeof(wchar_t));
        status = RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, name, REG_SZ, text->c_str(), bytes);
    }
    else if (m_before)
    {
        status = RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, key, name);
    }
    if (status != ERROR_SUCCESS)
    {
        throw std::runtime_error("cannot set up the registry, error " + std::to_string(status));
    }
}

RegistryValue::~RegistryValue()
{
    if (m_before)
    {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        m_key.c_str(),
                        m_name.c_str(),
                        m_before->type,
                        m_before->bytes.data(),
                        static_cast<DWORD>(m_before->bytes.size()));
    }
    else
    {
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, m_key.c_str(), m_name.c_str());
    }
    for (auto path = m_madeKeys.rbegin(); path != m_madeKeys.rend(); ++path)
    {
        RemoveIfEmpty(*path);
    }
}

void RegistryValue::Remember()
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, m_key.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return;
    }
    Data data;
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(key, m_name.c_str(), nullptr, &data.type, nullptr, &size);
    if (status == ERROR_SUCCESS)
    {
        data.bytes.resize(size);
        status = RegQueryValueExW(key, m_name.c_str(), nullptr, &data.type, data.bytes.data(), &size);
    }
    RegCloseKey(key);
    if (status == ERROR_SUCCESS)
    {
        m_before = std::move(data);
    }
}

} // namespace tsypr::bench
