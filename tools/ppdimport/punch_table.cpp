#include "tools/ppdimport/finishing_table.h"

namespace tsypr::ppdimport
{
namespace
{

// The first rule that applies wins. Sides of the feed path ("front", "back", "side") are no edges of the page.
// clang-format off
constexpr FinishingRule kPunchRules[] = {
    {"printer", "", false},
    {"none", "psk:None", false},
    {"left", "psk:LeftEdge", false},
    {"right", "psk:RightEdge", false},
    {"top", "psk:TopEdge", false},
    {"bottom", "psk:BottomEdge", false},
    {"front", "", false},
    {"rear", "", false},
    {"side", "", false},
    {"port", "", false},
    {"hole", "psk:LeftEdge", true},
    {"on", "psk:LeftEdge", true},
};
// clang-format on

constexpr FinishingTable kPunch = {
    "RIPunch KCPunch ARPunch JCLARPunch HolePunch Punch Punching HPPunchingOptions",
    "punch holepunch punching punchmethod",
    kPunchRules,
};

} // namespace

const FinishingTable& PunchTable()
{
    return kPunch;
}

} // namespace tsypr::ppdimport
