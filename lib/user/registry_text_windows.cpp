#include "lib/user/registry_text_windows.h"

#include <windows.h>

namespace tsypr
{

bool ReadMachineText(const wchar_t* subkey, const wchar_t* name, std::wstring& text)
{
    constexpr size_t kMostUnits = 32768;
    LSTATUS status = ERROR_MORE_DATA;
    // The first room does for nearly every text. What the system asks for may leave out the replaced variables.
    for (size_t units = MAX_PATH; status == ERROR_MORE_DATA && units <= kMostUnits; units *= 2)
    {
        text.resize(units);
        auto bytes = static_cast<DWORD>(units * sizeof(wchar_t));
        status = RegGetValueW(
            HKEY_LOCAL_MACHINE, subkey, name, RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, text.data(), &bytes);
    }
    text.resize(status == ERROR_SUCCESS ? wcsnlen(text.data(), text.size()) : 0);
    return !text.empty();
}

} // namespace tsypr
