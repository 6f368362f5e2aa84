// A registry text set for as long as the object lives.
#ifndef TESSARY_BENCH_REGISTRY_VALUE_H
#define TESSARY_BENCH_REGISTRY_VALUE_H

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace tsypr::bench
{

class RegistryValue
{
public:
    // Sets the value below HKEY_LOCAL_MACHINE, or removes it when there is no text. Throws std::runtime_error when the
    // registry refuses.
    RegistryValue(const wchar_t* key, const wchar_t* name, const std::optional<std::wstring>& text);

    // Puts back what was there before, and removes keys that had to be made and are still empty.
    ~RegistryValue();
    RegistryValue(const RegistryValue&) = delete;
    RegistryValue& operator=(const RegistryValue&) = delete;

private:
    struct Data
    {
        DWORD type = 0;
        std::vector<BYTE> bytes;
    };

    void Remember();

    std::wstring m_key;
    std::wstring m_name;
    std::vector<std::wstring> m_madeKeys; // outermost first
    std::optional<Data> m_before;
};

} // namespace tsypr::bench

#endif
