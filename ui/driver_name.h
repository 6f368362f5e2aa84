// The driver of the printer whose property sheet was opened last.
#ifndef TESSARY_UI_DRIVER_NAME_H
#define TESSARY_UI_DRIVER_NAME_H

#include "remote/private_devmode.h"

#include <string>

namespace tsypr
{

inline constexpr wchar_t kOwnDriverName[] = L"Tessary Universal EMF Driver";

// Replaces the name, which is one for the whole process.
void SetCurrentDriverName(std::wstring name) noexcept;

// For messages: cut at 255 characters.
FixedText<256> CurrentDriverName() noexcept;

// Whether the name is this driver's own, character by character: only then are its private settings offered.
bool IsOwnDriver() noexcept;

} // namespace tsypr

#endif
