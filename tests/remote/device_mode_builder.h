// Device modes for the tests.
#ifndef TESSARY_TESTS_REMOTE_DEVICE_MODE_BUILDER_H
#define TESSARY_TESTS_REMOTE_DEVICE_MODE_BUILDER_H

#include "remote/private_devmode.h"

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

namespace tsypr::test
{

using Bytes = std::vector<BYTE>;

// A device mode in memory of its own; at first zero but for its sizes and, where there is room, the block's signature.
class DeviceMode
{
public:
    explicit DeviceMode(WORD size = sizeof(DEVMODEW), WORD extra = kPrivateDevModeSize, BYTE filler = 0)
        : m_bytes(std::max<size_t>(size_t{size} + extra, sizeof(DEVMODEW)), filler)
    {
        Get()->dmSize = size;
        Get()->dmDriverExtra = extra;
        if (PrivateDevMode* block = PrivateDevModePlace(Get()))
        {
            block->signature = kPrivateDevModeSignature;
        }
    }

    DEVMODEW* Get()
    {
        return reinterpret_cast<DEVMODEW*>(m_bytes.data());
    }
    const DEVMODEW* Get() const
    {
        return reinterpret_cast<const DEVMODEW*>(m_bytes.data());
    }
    DEVMODEW* operator->()
    {
        return Get();
    }
    PrivateDevMode& Private()
    {
        return *reinterpret_cast<PrivateDevMode*>(m_bytes.data() + DevModeTotalSize(Get()) - kPrivateDevModeSize);
    }
    // The device mode as far as its stated sizes go.
    Bytes Whole() const
    {
        return {m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(DevModeTotalSize(Get()))};
    }

private:
    Bytes m_bytes;
};

// Values as one text: Words() << 1 << "two" is "1 two".
struct Words
{
    template <typename Value>
    Words& operator<<(const Value& value)
    {
        text += parts++ == 0 ? "" : " ";
        if constexpr (std::is_arithmetic_v<Value>)
        {
            text += std::to_string(value);
        }
        else
        {
            text += value;
        }
        return *this;
    }
    friend bool operator==(const std::string& expected, const Words& words)
    {
        return words.text == expected;
    }
    friend void PrintTo(const Words& words, std::ostream* out)
    {
        *out << words.text;
    }
    std::string text;
    int parts = 0;
};

// The keyword or name as readers see it.
template <size_t Chars>
std::wstring Text(const WideField<Chars>& field)
{
    return field.Read().text;
}

// Fills the whole field, last position included, with one character.
template <size_t Chars>
void Fill(WideField<Chars>& field, wchar_t character)
{
    const std::wstring text(Chars, character);
    std::memcpy(static_cast<void*>(&field), text.data(), sizeof(field));
}

// What the client printer "Office Laser" answers: A4, portrait, monochrome, with a filled private block.
inline DeviceMode ClientDeviceMode()
{
    DeviceMode dm;
    wcscpy(dm->dmDeviceName, L"Office Laser");
    dm->dmSpecVersion = 0x401;
    dm->dmDriverVersion = 0x500;
    dm->dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COLOR;
    dm->dmOrientation = DMORIENT_PORTRAIT;
    dm->dmPaperSize = DMPAPER_A4;
    dm->dmColor = DMCOLOR_MONOCHROME;
    wcscpy(dm->dmFormName, L"A4");
    PrivateDevMode& block = dm.Private();
    block.compression = 1;
    block.printerName.Write(L"Office Laser");
    block.printTargetChoice = 2;
    block.pagesPerSheet = 4;
    block.nupLayout.Write(L"psk:RightBottom");
    block.staple.Write(L"psk:None");
    block.punch.Write(L"psk:LeftEdge");
    return dm;
}

} // namespace tsypr::test

#endif
