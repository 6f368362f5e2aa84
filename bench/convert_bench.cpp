#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/device_mode.h"
#include "bench/library.h"
#include "remote/driver_exports.h"

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
    AddRatio(report, "CDM_CONVERT / memcpy of 1332 bytes", times, 2, "convert", "memcpy");
}

} // namespace tsypr::bench
