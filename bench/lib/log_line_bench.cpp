#include "bench/compare.h"
#include "bench/lib/benches.h"
#include "bench/scratch_folder.h"
#include "lib/log/log.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <cstdio>
#include <stdexcept>
#include <thread>

namespace tsypr::bench
{
namespace
{

constexpr char kFunction[] = "DrvDeviceCapabilities";
constexpr size_t kTimes = 501;

// Both rotate alike; the defaults of ours.
constexpr size_t kRotateBytes = 10 * 1024 * 1024;
constexpr size_t kKeepRotated = 5;

// Our log, with its own prefix of time, level, process and thread.
class OurLog
{
public:
    explicit OurLog(const std::filesystem::path& file)
    {
        Dictionary settings;
        settings.Set(kLogFileLevelKey, "info");
        settings.Set(kLogFileNameKey, file.string());
        settings.Set(kLogOwnFileKey, "1"); // as the module's file is, and the other logger's
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
        Line(m_index++);
    }

    void Line(int index) noexcept
    {
        LogWrite(kLogInfo,
                 "%s, VpGetDeviceCapabilities(%d) returned %d with query result %d\n",
                 kFunction,
                 index,
                 0,
                 index + 5);
    }

private:
    int m_index = 0;
};

// The widely used logger, with its default pattern, made to hand over every line and to rotate as ours does.
template <class Sink>
class OtherLog
{
public:
    explicit OtherLog(const std::filesystem::path& file)
        : m_logger("bench", std::make_shared<Sink>(file.string(), kRotateBytes, kKeepRotated))
    {
        m_logger.flush_on(spdlog::level::trace);
    }

    void Line()
    {
        Line(m_index++);
    }

    void Line(int index)
    {
        m_logger.info(
            "{}, VpGetDeviceCapabilities({}) returned {} with query result {}", kFunction, index, 0, index + 5);
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

// Nanoseconds of one line, by the wall clock, when that many threads write at once.
template <class Log>
double TimeThreads(Log& log)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 500;
    const double begin = NowNs();
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < kThreads; ++t)
        {
            threads.emplace_back(
                [&log, t]
                {
                    for (int i = 0; i < kLines; ++i)
                    {
                        log.Line(t * kLines + i);
                    }
                });
        }
    }
    return (NowNs() - begin) / (kThreads * kLines);
}

template <class Other>
Comparison CompareThreads(OurLog& ours, Other& other)
{
    constexpr int kRounds = 31;
    std::vector<double> ourNs;
    std::vector<double> otherNs;
    std::vector<double> ratios;
    for (int round = 0; round < kRounds; ++round)
    {
        otherNs.push_back(TimeThreads(other));
        ourNs.push_back(TimeThreads(ours));
        ratios.push_back(otherNs.back() / ourNs.back());
    }
    return {Median(otherNs), Median(ourNs), Median(ratios), Median(otherNs) - Median(ourNs)};
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
    OtherLog<spdlog::sinks::rotating_file_sink_mt> other(folder / L"other.log");
    BareLog bare(folder / L"bare.log");
    AddResult(report, "log lines per second / spdlog, flushed, rotated", "spdlog", CompareLines(ours, other), 1.3);
    AddResult(report, "the same with eight threads", "spdlog", CompareThreads(ours, other), 1.3);
    AddResult(report, "log lines per second / snprintf+WriteFile", "bare", CompareLines(ours, bare), 0);
}

} // namespace tsypr::bench
