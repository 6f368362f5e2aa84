#include "bench/benches.h"
#include "bench/compare.h"
#include "bench/device_mode.h"
#include "module/log.h"
#include "remote/devmode_dump.h"

#include <stdexcept>

namespace tsypr::bench
{
namespace
{

// A log without a file: at its level nothing that is measured here is written anyway.
class QuietLog
{
public:
    QuietLog()
    {
        Dictionary settings;
        settings.Set(kLogFileLevelKey, "info");
        if (!LogStart("bench", settings))
        {
            throw std::runtime_error("the log did not start");
        }
    }
    ~QuietLog()
    {
        LogStop();
    }
    QuietLog(const QuietLog&) = delete;
    QuietLog& operator=(const QuietLog&) = delete;
};

// What the loop around the calls costs is counted in: it is far below the goals.
template <class Code>
double ShortestNs(Code code)
{
    return Compare(code, [] {}).firstNs;
}

} // namespace

void MeasureQuietLog(Report& report)
{
    const QuietLog log;
    DeviceMode mode = MakeDeviceMode(DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES);
    const double dump = ShortestNs([&] { PrintUtils::DumpDevMode(mode.Get(), L"dm returned by VpGetDevMode():"); });
    report.measurements.push_back({"DumpDevMode at level info", "ns", dump, 100, false, dump, 0, ""});
    const wchar_t* printer = L"Office Laser";
    const double line = ShortestNs(
        [&] {
            LogVerbose("%s, copy the original [%S] as the normalized printer name.\n", "NormalizePrinterName", printer);
        });
    report.measurements.push_back({"LogVerbose at level info", "ns", line, 10, false, line, 0, ""});
}

} // namespace tsypr::bench
