// The driver's own settings at the end of every device mode, and the safe reading of a device mode's parts.
#ifndef TESSARY_REMOTE_PRIVATE_DEVMODE_H
#define TESSARY_REMOTE_PRIVATE_DEVMODE_H

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <type_traits>

namespace tsypr
{

inline constexpr uint32_t kPrivateDevModeSignature = 0x78656D64; // the bytes "dmex"
inline constexpr size_t kPrivateDevModeSize = 1112;
inline constexpr size_t kPrinterNameChars = 256;
inline constexpr size_t kKeywordChars = 30;
inline constexpr size_t kWatermarkBytes = 384;

// Bits of PrivateDevMode::featureBitmap.
inline constexpr uint32_t kFeatureNup = 0x01;
inline constexpr uint32_t kFeaturePrintAsImage = 0x02;
inline constexpr uint32_t kFeaturePopupPreDlg = 0x04;
inline constexpr uint32_t kFeatureCompressionZlib = 0x08;
inline constexpr uint32_t kFeatureFinishing = 0x10;

// Bits of PrivateDevMode::lockedSettings.
inline constexpr uint32_t kLockedDuplex = 0x01;
inline constexpr uint32_t kLockedColor = 0x02;
inline constexpr uint32_t kLockedCompressionLevel = 0x04;

// A terminated copy of a fixed-size text.
template <size_t Chars>
struct FixedText
{
    wchar_t text[Chars];
};

// A fixed-size UTF-16 text inside a packed block, which may start at any address: its characters are only reached by
// copying, never through a pointer to wchar_t.
template <size_t Chars>
class WideField
{
public:
    // The text as readers may use it: the last position counts as the terminator, whatever it holds.
    FixedText<Chars> Read() const noexcept
    {
        FixedText<Chars> copy;
        std::memcpy(copy.text, m_bytes, sizeof(copy.text));
        copy.text[Chars - 1] = L'\0';
        return copy;
    }

    // Stores at most Chars - 1 characters of a terminated text and the terminator; the rest of the field stays.
    void Write(const wchar_t* text) noexcept
    {
        const size_t length = wcsnlen(text, Chars - 1);
        std::memcpy(m_bytes, text, length * sizeof(wchar_t));
        std::memset(m_bytes + length * sizeof(wchar_t), 0, sizeof(wchar_t));
    }

    // Ends the text at its last position, for readers that trust the terminator.
    void Terminate() noexcept
    {
        std::memset(m_bytes + (Chars - 1) * sizeof(wchar_t), 0, sizeof(wchar_t));
    }

private:
    unsigned char m_bytes[Chars * sizeof(wchar_t)];
};

// A binary format that travels in spool files and between processes.
#pragma pack(push, 1)
struct PrivateDevMode
{
    uint32_t signature;
    uint32_t compression;
    WideField<kPrinterNameChars> printerName;
    uint32_t printTargetChoice;
    uint8_t isPrintAsImage;
    uint8_t isShowPreDlg;
    uint16_t reserved1;
    uint32_t featureBitmap;
    uint32_t reserved2; // carried unchanged
    uint32_t pagesPerSheet;
    WideField<kKeywordChars> nupLayout;
    WideField<kKeywordChars> staple;
    WideField<kKeywordChars> punch;
    uint32_t lockedSettings;
    uint32_t reserved3; // carried unchanged
    uint8_t watermark[kWatermarkBytes];
};
#pragma pack(pop)

static_assert(sizeof(PrivateDevMode) == kPrivateDevModeSize);
static_assert(alignof(PrivateDevMode) == 1);
static_assert(offsetof(PrivateDevMode, signature) == 0);
static_assert(offsetof(PrivateDevMode, compression) == 4);
static_assert(offsetof(PrivateDevMode, printerName) == 8);
static_assert(offsetof(PrivateDevMode, printTargetChoice) == 520);
static_assert(offsetof(PrivateDevMode, isPrintAsImage) == 524);
static_assert(offsetof(PrivateDevMode, isShowPreDlg) == 525);
static_assert(offsetof(PrivateDevMode, reserved1) == 526);
static_assert(offsetof(PrivateDevMode, featureBitmap) == 528);
static_assert(offsetof(PrivateDevMode, reserved2) == 532);
static_assert(offsetof(PrivateDevMode, pagesPerSheet) == 536);
static_assert(offsetof(PrivateDevMode, nupLayout) == 540);
static_assert(offsetof(PrivateDevMode, staple) == 600);
static_assert(offsetof(PrivateDevMode, punch) == 660);
static_assert(offsetof(PrivateDevMode, lockedSettings) == 720);
static_assert(offsetof(PrivateDevMode, reserved3) == 724);
static_assert(offsetof(PrivateDevMode, watermark) == 728);

// Size in bytes of the whole device mode, public and driver-extra part, as the device mode itself states it.
inline size_t DevModeTotalSize(const DEVMODEW* dm) noexcept
{
    return static_cast<size_t>(dm->dmSize) + dm->dmDriverExtra;
}

// Whether the device mode states a size that reaches to the end of the public field. A field beyond it counts as absent
// and its bytes belong to somebody else.
template <typename Field>
bool DevModeHolds(const DEVMODEW* dm, Field DEVMODEW::*field) noexcept
{
    const auto* start = reinterpret_cast<const unsigned char*>(dm);
    const auto* place = reinterpret_cast<const unsigned char*>(&(dm->*field));
    return static_cast<size_t>(place - start) + sizeof(Field) <= dm->dmSize;
}

// The value of a public field, or zero when it is absent.
template <typename Field>
requires std::is_trivially_copyable_v<Field> &&(!std::is_array_v<Field>)Field
    DevModeField(const DEVMODEW* dm, Field DEVMODEW::*field) noexcept
{
    return DevModeHolds(dm, field) ? dm->*field : Field{};
}

// Where the private block of a device mode lies, whatever it holds; null when the device mode is too small to have one.
inline PrivateDevMode* PrivateDevModePlace(DEVMODEW* dm) noexcept
{
    const size_t total = DevModeTotalSize(dm);
    if (total <= kPrivateDevModeSize)
    {
        return nullptr;
    }
    return reinterpret_cast<PrivateDevMode*>(reinterpret_cast<unsigned char*>(dm) + (total - kPrivateDevModeSize));
}

// The private block of a device mode; null when the device mode is null, too small or its block lacks the signature.
// The block is part of the device mode and lives as long.
inline PrivateDevMode* GetPrivateDevMode(DEVMODEW* dm) noexcept
{
    PrivateDevMode* block = dm == nullptr ? nullptr : PrivateDevModePlace(dm);
    return block != nullptr && block->signature == kPrivateDevModeSignature ? block : nullptr;
}

inline const PrivateDevMode* GetPrivateDevMode(const DEVMODEW* dm) noexcept
{
    return GetPrivateDevMode(const_cast<DEVMODEW*>(dm));
}

} // namespace tsypr

#endif
