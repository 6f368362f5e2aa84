#include "bench/report.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace tsypr::bench
{
namespace
{

const char* Verdict(const Measurement& measurement) noexcept
{
    if (measurement.goal == 0)
    {
        return "";
    }
    return measurement.Met() ? "ok" : "over";
}

void PrintMeasurement(const Measurement& measurement)
{
    char goal[40] = "";
    if (measurement.goal != 0)
    {
        std::snprintf(goal,
                      sizeof(goal),
                      "%s %.2f %s",
                      measurement.goalIsLeast ? ">=" : "<=",
                      measurement.goal,
                      measurement.unit.c_str());
    }
    std::printf("%-52s %9.2f %-2s  %-12s %-5s %s\n",
                measurement.name.c_str(),
                measurement.value,
                measurement.unit.c_str(),
                goal,
                Verdict(measurement),
                measurement.detail.c_str());
}

nlohmann::ordered_json CountsToJson(const CallCounts& counts)
{
    nlohmann::ordered_json json;
    for (const CallName& call : kCallNames)
    {
        json[call.name] = counts.*call.count;
    }
    return json;
}

nlohmann::ordered_json ToJson(const Report& report)
{
    nlohmann::ordered_json json;
    json["measurements"] = nlohmann::ordered_json::array();
    for (const Measurement& one : report.measurements)
    {
        nlohmann::ordered_json entry = {{"name", one.name}, {"value", one.value}, {"unit", one.unit}};
        if (one.goal != 0)
        {
            entry["goal"] = one.goal;
            entry["goalIs"] = one.goalIsLeast ? "least" : "most";
            entry["met"] = one.Met();
        }
        entry["ns"] = one.ns;
        if (one.againstNs != 0)
        {
            entry["againstNs"] = one.againstNs;
        }
        json["measurements"].push_back(std::move(entry));
    }
    json["serviceCalls"] = nlohmann::ordered_json::array();
    for (const CallCheck& check : report.checks)
    {
        json["serviceCalls"].push_back({{"name", check.name},
                                        {"expected", CountsToJson(check.expected)},
                                        {"actual", CountsToJson(check.actual)},
                                        {"match", check.expected == check.actual}});
    }
    return json;
}

// In a unit in which it is easy to read.
std::string TimeText(double ns)
{
    char text[40];
    std::snprintf(text,
                  sizeof(text),
                  ns >= 10'000 ? "%.0f us"
                  : ns >= 100  ? "%.0f ns"
                               : "%.1f ns",
                  ns >= 10'000 ? ns / 1000 : ns);
    return text;
}

} // namespace

bool Report::GoalsMet() const noexcept
{
    return std::ranges::all_of(measurements, &Measurement::Met);
}

bool Report::CallsMatch() const noexcept
{
    return std::ranges::all_of(checks, [](const CallCheck& check) { return check.expected == check.actual; });
}

void AddRatio(Report& report,
              const std::string& name,
              const Comparison& times,
              double goal,
              const std::string& first,
              const std::string& second)
{
    const std::string detail = first + " " + TimeText(times.firstNs) + ", " + second + " " + TimeText(times.secondNs);
    report.measurements.push_back({name, "x", times.ratio, goal, false, times.firstNs, times.secondNs, detail});
}

void PrintReport(const Report& report)
{
    std::printf("%-52s %12s  %-12s\n", "Speed", "measured", "goal");
    for (const Measurement& measurement : report.measurements)
    {
        PrintMeasurement(measurement);
    }
    if (report.checks.empty())
    {
        return;
    }
    std::printf("\n%-52s %-69s %s\n", "Service calls of one driver call", "prescribed", "counted");
    for (const CallCheck& check : report.checks)
    {
        std::printf("%-52s %-69s %s\n",
                    check.name.c_str(),
                    DescribeCounts(check.expected).c_str(),
                    check.expected == check.actual ? "the same" : DescribeCounts(check.actual).c_str());
    }
}

bool WriteJson(const Report& report, const std::string& path)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << ToJson(report).dump(2) << '\n';
    stream.close();
    return !stream.fail();
}

} // namespace tsypr::bench
