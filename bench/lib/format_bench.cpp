#include "bench/compare.h"
#include "bench/lib/benches.h"
#include "lib/string/format.h"

#include <cstdarg>
#include <cstdio>

namespace tsypr::bench
{
namespace
{

constexpr size_t kBufferBytes = 512;

using Formatter = size_t (*)(char* buffer, size_t capacity, const char* format, va_list arguments) noexcept;

size_t MingwFormat(char* buffer, size_t capacity, const char* format, va_list arguments) noexcept
{
    return static_cast<size_t>(__mingw_vsnprintf(buffer, capacity, format, arguments));
}

size_t MsvcrtFormat(char* buffer, size_t capacity, const char* format, va_list arguments) noexcept
{
    return static_cast<size_t>(_vsnprintf(buffer, capacity, format, arguments));
}

template <Formatter Format>
void Write(const char* format, ...) noexcept TESSARY_PRINTF(1, 2);

template <Formatter Format>
void Write(const char* format, ...) noexcept
{
    char buffer[kBufferBytes];
    va_list arguments;
    va_start(arguments, format);
    Format(buffer, sizeof(buffer), format, arguments);
    va_end(arguments);
}

constexpr int kMessages = 10;

// What the module writes most often: a capability, a name, a device mode's fields, a policy.
template <Formatter Format>
void WriteMessage(int which) noexcept
{
    static const wchar_t* const printer = L"Kyocera CS 250ci on HR-PC-0815 (from WKS-4711) in session 3";
    static const int modes[2] = {};
    switch (which)
    {
    case 0:
        return Write<Format>(
            "%s, VpGetDeviceCapabilities(%d) returned %d with query result %d\n", "DrvDeviceCapabilities", 16, 0, 142);
    case 1:
        return Write<Format>(
            "%s, normalize printer name from [%S] to [%S].\n", "NormalizePrinterName", printer, L"Kyocera CS 250ci");
    case 2:
        return Write<Format>("%s, deviceName = %S, pdmIn=%p, pdmOut=%p, fMode=%d, cbNeeded=%d\n",
                             "DrvConvertDevMode",
                             printer,
                             static_cast<const void*>(&modes[0]),
                             static_cast<const void*>(&modes[1]),
                             2,
                             1332);
    case 3:
        return Write<Format>("   pDevMode.dmDeviceName = \"%S\"\n", L"Kyocera CS 250ci on HR-PC-0815");
    case 4:
        return Write<Format>("   pDevMode.dmFields = %s\n",
                             "DM_ORIENTATION, DM_PAPERSIZE, DM_COPIES, DM_DEFAULTSOURCE, DM_PRINTQUALITY, DM_COLOR, "
                             "DM_DUPLEX, DM_YRESOLUTION, DM_COLLATE, DM_FORMNAME");
    case 5:
        return Write<Format>("   pDevMode.dmPaperSize = %s%s\n", "DMPAPER_A4", "");
    case 6:
        return Write<Format>("   pDevMode.dmSpecVersion = 0x%x\n", 0x401U);
    case 7:
        return Write<Format>("   pDevMode.dmPaperWidth = %d%s\n", 2100, " (not set)");
    case 8:
        return Write<Format>("   pDevMode.%s = %d(0x%x)\n", "dmICMMethod", 1, 1U);
    default:
        return Write<Format>("%s, succeeded to read GPO [%s] from [%s].\n",
                             "RegUtils::ReadGPODwordValue",
                             "EnablePrintPreDialog",
                             "Software\\Policies\\Zelmora\\Tessary\\PrintRedir");
    }
}

template <Formatter Format>
void WriteMessages(int first, int last) noexcept
{
    for (int which = first; which <= last; ++which)
    {
        WriteMessage<Format>(which);
    }
}

// How many times as long ours takes for these messages.
template <Formatter Other>
Comparison CompareWith(int first, int last, size_t rounds)
{
    Plan plan;
    plan.rounds = rounds;
    return Compare([=] { WriteMessages<FormatFixedV>(first, last); }, [=] { WriteMessages<Other>(first, last); }, plan);
}

template <Formatter Other>
void AddResult(Report& report, const char* name, double goal)
{
    double worst = 0;
    for (int which = 0; which < kMessages; ++which)
    {
        worst = std::max(worst, CompareWith<Other>(which, which, 51).ratio);
    }
    const Comparison all = CompareWith<Other>(0, kMessages - 1, 301);
    char detail[120];
    FormatFixed(detail,
                sizeof(detail),
                "ten messages: ours %.0f ns, other %.0f ns; worst single message %.2f",
                all.firstNs,
                all.secondNs,
                worst);
    report.measurements.push_back({name, "x", all.ratio, goal, false, all.firstNs, all.secondNs, detail});
}

} // namespace

void MeasureFormatter(Report& report)
{
    AddResult<MingwFormat>(report, "formatter / vsnprintf (C99)", 1.5);
    AddResult<MsvcrtFormat>(report, "formatter / msvcrt _vsnprintf", 0);
}

} // namespace tsypr::bench
