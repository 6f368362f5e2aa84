#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/device_mode.h"
#include "remote/devmode_merge.h"

#include <cstdio>
#include <stdexcept>

namespace tsypr::bench
{
namespace
{

// Everything that is merged without asking the printer.
constexpr DWORD kFields = DM_ORIENTATION | DM_DUPLEX | DM_DEFAULTSOURCE | DM_FORMNAME | DM_COLOR | DM_PRINTQUALITY |
                          DM_YRESOLUTION | DM_COPIES | DM_COLLATE | DM_SCALE;

} // namespace

void MeasureMerge(Report& report)
{
    DeviceMode in = MakeDeviceMode(kFields);
    DeviceMode current = MakeDeviceMode(kFields);
    in.Get()->dmOrientation = DMORIENT_LANDSCAPE;
    DeviceMode out = {};
    DeviceMode plain = {};
    const auto merge = [&] { return MergeAndCopyDM(out.Get(), in.Get(), current.Get(), DM_IN_BUFFER | DM_OUT_BUFFER); };
    if (!merge() || std::memcmp(out.bytes, in.bytes, sizeof(in.bytes)) != 0)
    {
        throw std::runtime_error("the device modes were not merged");
    }
    const Comparison times = Compare(merge, [&] { CopyBytes(plain.bytes, current.bytes, sizeof(current.bytes)); });
    char detail[120];
    std::snprintf(detail, sizeof(detail), "merge %.1f ns, memcpy %.1f ns", times.firstNs, times.secondNs);
    report.measurements.push_back({"MergeAndCopyDM without look-ups - memcpy",
                                   "ns",
                                   times.differenceNs,
                                   200,
                                   false,
                                   times.firstNs,
                                   times.secondNs,
                                   detail});
}

} // namespace tsypr::bench
