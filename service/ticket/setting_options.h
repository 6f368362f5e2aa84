#ifndef TESSARY_SERVICE_TICKET_SETTING_OPTIONS_H
#define TESSARY_SERVICE_TICKET_SETTING_OPTIONS_H

#include <cstdint>
#include <vector>

#include "service/ticket/ticket_model.h"

namespace tsypr::service
{

// What a printer offers for each feature, none when it does not have the feature. The values are the device mode's own
// numbers, except where it holds keywords: there they count the profile's list.
std::vector<TicketOption> MediaSizeOptions(const Profile& profile);
std::vector<TicketOption> OrientationOptions(const Profile& profile);
std::vector<TicketOption> DuplexOptions(const Profile& profile);
std::vector<TicketOption> ColorOptions(const Profile& profile);
std::vector<TicketOption> QualityOptions(const Profile& profile);
std::vector<TicketOption> ResolutionOptions(const Profile& profile);
std::vector<TicketOption> InputBinOptions(const Profile& profile);
std::vector<TicketOption> MediaTypeOptions(const Profile& profile);
std::vector<TicketOption> CollateOptions(const Profile& profile);
std::vector<TicketOption> ScalingOptions(const Profile& profile);
std::vector<TicketOption> NupOptions(const Profile& profile);
std::vector<TicketOption> DirectionOptions(const Profile& profile);
std::vector<TicketOption> StapleOptions(const Profile& profile);
std::vector<TicketOption> PunchOptions(const Profile& profile);

// Values of the options of page scaling.
inline constexpr std::int64_t kUnscaled = 0;
inline constexpr std::int64_t kScaled = 1;

// Tenths of a millimetre in microns.
inline constexpr std::int64_t kMicronsPerTenth = 100;

// Both parts of a resolution in one positive number.
constexpr std::int64_t PackResolution(std::int16_t x, std::int16_t y)
{
    return std::int64_t{x} * 0x10000 + y;
}

} // namespace tsypr::service

#endif
