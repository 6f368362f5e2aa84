// Media types between their numbers in device modes and their display names.
#ifndef TESSARY_PTPROVIDER_MEDIA_TYPES_H
#define TESSARY_PTPROVIDER_MEDIA_TYPES_H

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace tsypr
{

// The client printer's display name of a media type; empty when it has none or cannot be asked. The printer is asked
// with the device mode.
std::wstring GetMediaTypeNameByID(const wchar_t* printerName, uint32_t mediaType, const DEVMODEW* devMode);

// Finds the media type with exactly this display name. False when there is none or the printer cannot be asked.
bool GetMediaTypeIDByName(const wchar_t* printerName,
                          const std::wstring& name,
                          const DEVMODEW* devMode,
                          uint32_t* mediaType) noexcept;

} // namespace tsypr

#endif
