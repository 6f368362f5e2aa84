#ifndef TESSARY_SERVICE_DEVICE_MODE_H
#define TESSARY_SERVICE_DEVICE_MODE_H

#include <cstddef>
#include <span>
#include <vector>

#include <windows.h>

#include "service/profile.h"

namespace tsypr::service
{

// dmDriverVersion of every device mode that the service makes.
inline constexpr WORD kDriverVersion = 0x0100;

// The printer's complete default device mode: 220 public bytes, the profile's leading extra bytes (zero) and the
// private block. Throws std::bad_alloc.
std::vector<std::byte> BuildDevMode(const Profile& profile);

// The dmFields bits of every public setting that the printer has.
DWORD SupportedFields(const Profile& profile);

// A device mode of the printer's own shape holding as much of `input` as the printer offers. `input` may be anything:
// no byte beyond it is read, whatever its size fields claim. A setting that is missing, not offered or locked gets the
// printer's default; copies and a user-defined paper size are brought into the printer's range. The session's printer
// name and bytes before the private block are kept. Throws std::bad_alloc.
std::vector<std::byte> ValidateDevMode(const Profile& profile, std::span<const std::byte> input);

} // namespace tsypr::service

#endif
