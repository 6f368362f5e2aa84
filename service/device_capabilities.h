#ifndef TESSARY_SERVICE_DEVICE_CAPABILITIES_H
#define TESSARY_SERVICE_DEVICE_CAPABILITIES_H

#include <cstddef>
#include <vector>

#include <windows.h>

#include "service/profile.h"

namespace tsypr::service
{

// What DeviceCapabilities answers: the result, and the list for the indexes that have one.
struct CapabilityAnswer
{
    LONG result = -1;
    std::vector<std::byte> data;
};

// The printer's answer to one DC_* index; -1 without data for an index that it does not answer. The answers describe
// the printer, not a job, so no device mode is needed. Throws std::bad_alloc.
CapabilityAnswer QueryCapability(const Profile& profile, WORD index);

} // namespace tsypr::service

#endif
