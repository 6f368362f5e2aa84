#include "bench/compare.h"
#include "bench/lib/benches.h"
#include "bench/scratch_folder.h"
#include "lib/log/log.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <cstdio>
#include <stdexcept>

namespace tsypr::bench
{
namespace
{

constexpr char kFunction[] = "DrvDeviceCapabilities";
constexpr size_t kTimes = 501;

// Our log, with its own prefix of time, level, process and thread.
class OurLog
{
public:
    explicit OurLog(const std::filesystem::path& file)
    {
        Dictionary settings;
        settings.Set(kLogFileLevelKey, "info");
        settings.Set(kLogFileNameKey, file.string());
        if (!LogStart("bench", settings))
        {
            throw std::runtime_error("the log did not start");
        }
    }
    ~OurLog()
    {
        LogStop();
    }
    OurLog(const OurLog&) = delete;
    OurLog& operator=(const OurLog&) = delete;

    void Line() noexcept
    {
        LogWrite(kLogInfo,
                 "%s, VpGetDeviceCapabilities(%d) returned %d with query result %d\n",
                 kFunction,
                 m_index,
                 0,
                 m_index + 5);
        ++m_index;
    }

private:
    int m_index = 0;
};

// The widely used logger, with its default pattern, made to hand over every line as ours does.
template <class Sink>
class OtherLog
{
public:
    explicit OtherLog(const std::filesystem::path& file) : m_logger("bench", std::make_shared<Sink>(file.string()))
    {
        m_logger.flush_on(spdlog::level::trace);
    }

    void Line()
    {
        m_logger.info(
            "{}, VpGetDeviceCapabilities({}) returned {} with query result {}", kFunction, m_index, 0, m_index + 5);
        ++m_index;
    }

private:
    spdlog::logger m_logger;
    int m_index = 0;
};

// The least that a line can cost: the message alone, without any prefix.
class BareLog
{
public:
    explicit BareLog(const std::filesystem::path& file)
        : m_handle(CreateFileW(file.c_str(),
                               FILE_APPEND_DATA | SYNCHRONIZE,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                               nullptr,
                               OPEN_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL,
                               nullptr))
    {
        if (m_handle == INVALID_HANDLE_VALUE)
        {
            throw std::runtime_error("cannot open a file");
        }
    }
    ~BareLog()
    {
        CloseHandle(m_handle);
    }
    BareLog(const BareLog&) = delete;
    BareLog& operator=(const BareLog&) = delete;

    void Line() noexcept
    {
        char text[256];
        const int length = std::snprintf(text,
                                         sizeof(text),
                                         "%s, VpGetDeviceCapabilities(%d) returned %d with query result %d\n",
                                         kFunction,
                                         m_index,
                                         0,
                                         m_index + 5);
        DWORD written = 0;
        WriteFile(m_handle, text, static_cast<DWORD>(length), &written, nullptr);
        ++m_index;
    }

private:
    HANDLE m_handle;
    int m_index = 0;
};

// How many times as many lines our log writes.
template <class Other>
Comparison CompareLines(OurLog& ours, Other& other)
{
    Plan plan;
    plan.rounds = kTimes;
    plan.mostCalls = 100;
    return Compare([&] { other.Line(); }, [&] { ours.Line(); }, plan);
}

void AddResult(Report& report, const char* name, const char* other, const Comparison& times, double goal)
{
    char detail[120];
    std::snprintf(
        detail, sizeof(detail), "ours %.0f lines/s, %s %.0f lines/s", 1e9 / times.secondNs, other, 1e9 / times.firstNs);
    report.measurements.push_back({name, "x", times.ratio, goal, true, times.secondNs, times.firstNs, detail});
}

} // namespace

void MeasureLogLines(Report& report)
{
    const ScratchFolder scratch;
    const std::filesystem::path& folder = scratch.Path();
    OurLog ours(folder / L"ours.log");
    OtherLog<spdlog::sinks::basic_file_sink_st> single(folder / L"single.log");
    OtherLog<spdlog::sinks::basic_file_sink_mt> multi(folder / L"multi.log");
    BareLog bare(folder / L"bare.log");
    AddResult(report, "log lines per second / spdlog st, flushed", "spdlog", CompareLines(ours, single), 1.3);
    AddResult(report, "log lines per second / spdlog mt, flushed", "spdlog", CompareLines(ours, multi), 1.3);
    AddResult(report, "log lines per second / snprintf+WriteFile", "bare", CompareLines(ours, bare), 0);
}

} // namespace tsypr::bench
