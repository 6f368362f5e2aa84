#include "tools/ppdimport/finishing_table.h"

namespace tsypr::ppdimport
{
namespace
{

// The first rule that applies wins. Where only one end of the feed path is told, the page is taken to leave the printer
// upright with its left edge at the stapler, the rear of which is then the top. Texts with a place for either
// orientation ("Port RU/Land RB") are left alone: guessing a corner would staple the wrong one.
// clang-format off
constexpr FinishingRule kStapleRules[] = {
    {"stapleless", "", false},
    {"printer", "", false},
    {"none", "psk:None", false},
    {"saddle", "psk:SaddleStitch", false},
    {"dual center", "psk:SaddleStitch", false},
    {"dual left", "psk:StapleDualLeft", false},
    {"dual right", "psk:StapleDualRight", false},
    {"dual top", "psk:StapleDualTop", false},
    {"dual bottom", "psk:StapleDualBottom", false},
    {"top left", "psk:StapleTopLeft", false},
    {"top right", "psk:StapleTopRight", false},
    {"bottom left", "psk:StapleBottomLeft", false},
    {"bottom right", "psk:StapleBottomRight", false},
    {"upperleft", "psk:StapleTopLeft", false},
    {"port", "", false},
    {"rear", "psk:StapleTopLeft", true},
    {"front", "psk:StapleBottomLeft", true},
    {"center", "psk:StapleDualLeft", true},
    {"dual", "psk:StapleDualLeft", true},
    {"1", "psk:StapleTopLeft", true},
    {"on", "psk:StapleTopLeft", true},
};
// clang-format on

constexpr FinishingTable kStaple = {
    "StapleLocation StapleJob Staple KCStaple ARStaple JCLARStaple CNStaple HPStaplerOptions StaplePosition Stapling",
    "staple stapling staplelocation stapleposition",
    kStapleRules,
};

} // namespace

const FinishingTable& StapleTable()
{
    return kStaple;
}

} // namespace tsypr::ppdimport
