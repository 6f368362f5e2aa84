#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/device_mode.h"
#include "bench/library.h"
#include "remote/driver_exports.h"

#include <cstdio>

namespace tsypr::bench
{
namespace
{

constexpr DWORD kConvert = 1; // CDM_CONVERT

} // namespace

void MeasureConvert(Report& report)
{
    const Library module(L"tsyprui.dll");
    decltype(DrvConvertDevMode)* convert = nullptr;
    module.Bind("DrvConvertDevMode", convert);
    wchar_t printer[] = L"Office Laser";
    DeviceMode in = MakeDeviceMode(DM_ORIENTATION | DM_COPIES);
    DeviceMode out = MakeDeviceMode(0);
    DeviceMode plain = out;
    LONG needed = kDeviceModeBytes;
    const auto throughModule = [&] { return convert(printer, in.Get(), out.Get(), &needed, kConvert); };
    const auto copy = [&] { CopyBytes(plain.bytes, in.bytes, sizeof(in.bytes)); };
    copy();
    if (throughModule() == FALSE || std::memcmp(out.bytes, plain.bytes, sizeof(out.bytes)) != 0)
    {
        throw std::runtime_error("the module did not convert the device mode");
    }
    const Comparison times = Compare(throughModule, copy);
    char detail[120];
    std::snprintf(detail, sizeof(detail), "convert %.1f ns, memcpy %.1f ns", times.firstNs, times.secondNs);
    report.measurements.push_back(
        {"CDM_CONVERT / memcpy of 1332 bytes", "x", times.ratio, 2, false, times.firstNs, times.secondNs, detail});
}

} // namespace tsypr::bench
