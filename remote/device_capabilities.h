// The client printer's capabilities, for the driver's own needs.
#ifndef TESSARY_REMOTE_DEVICE_CAPABILITIES_H
#define TESSARY_REMOTE_DEVICE_CAPABILITIES_H

#include <windows.h>

#include <cstdint>

namespace tsypr
{

// Asks the client printer behind `printerName` for a list-valued capability (`capIndex` is a DC_* value); the device
// mode may be null. Returns the client's count and stores the list and its size in bytes. Returns -1 when the printer
// cannot be opened, no data comes back or memory runs out; an answer without data (a pure count) gives -1, too. The
// caller presets `outData` to null and releases whatever it holds afterwards with free(), also when the client's count
// is -1.
int32_t GetDeviceCapabilitiesData(const wchar_t* printerName,
                                  uint16_t capIndex,
                                  const DEVMODEW* pDevMode,
                                  void** outData,
                                  uint32_t* outSize) noexcept;

inline constexpr uint32_t kNoIndex = 0xFFFFFFFF;

// Finds the paper size in the list of the client printer that the device mode names in its private block. `outIndex`
// receives the position of the first match, else kNoIndex. Returns whether there is one.
bool GetMatchedPaperSizeIndex(uint32_t* outIndex, int16_t paperSize, const DEVMODEW* pDevMode) noexcept;

// The same for a media type.
bool GetMatchedMediaTypeIndex(uint32_t* outIndex, uint32_t mediaType, const DEVMODEW* pDevMode) noexcept;

// Reads width (x) and length (y), in tenths of a millimetre, of the paper at a position of the client's list. Returns
// false when the list cannot be read or is shorter.
bool GetPaperDimensionByIndex(uint32_t index, const DEVMODEW* pDevMode, POINT* dimension) noexcept;

} // namespace tsypr

#endif
