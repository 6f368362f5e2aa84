// The names of device-mode values, as Windows' constants have them without their prefix.
//
// A value without a name is given as a number in a buffer of the calling thread, and so is every set of flags; the text
// stays valid until the same function is called again on the same thread. "?" is given when there is no memory for it.
#ifndef TESSARY_REMOTE_DEVMODE_NAMES_H
#define TESSARY_REMOTE_DEVMODE_NAMES_H

#include <windows.h>

#include <cstdint>

namespace tsypr::PrintUtils
{

const char* OrientationName(int value) noexcept;
const char* PaperSizeName(int value) noexcept;
const char* SourceName(int value) noexcept;
const char* PrintQualityName(int value) noexcept;
const char* ColorName(int value) noexcept;
const char* DuplexName(int value) noexcept;
const char* TTOptionName(int value) noexcept;
const char* CollateName(int value) noexcept;
const char* NupName(DWORD value) noexcept;
const char* ICMMethodName(DWORD value) noexcept;
const char* ICMIntentName(DWORD value) noexcept;
const char* MediaTypeName(DWORD value) noexcept;
const char* DitherTypeName(DWORD value) noexcept;
const char* DisplayFixedOutputName(DWORD value) noexcept;
const char* DisplayOrientationName(DWORD value) noexcept;

// Names of the set bits in ascending order, then the bits without a name as one hexadecimal number, joined by ", ".
const char* FieldsNames(DWORD flags) noexcept;
const char* DisplayFlagsNames(DWORD flags) noexcept;
const char* FeatureNames(uint32_t flags) noexcept;
const char* LockedNames(uint32_t flags) noexcept;

// Frees what the functions above keep for all threads; to be called before the module's code goes away.
void ReleaseNameBuffers() noexcept;

} // namespace tsypr::PrintUtils

#endif
