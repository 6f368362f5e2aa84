// What was measured, beside what is wanted.
#ifndef TESSARY_BENCH_REPORT_H
#define TESSARY_BENCH_REPORT_H

#include "bench/call_counts.h"
#include "bench/compare.h"

#include <string>
#include <vector>

namespace tsypr::bench
{

// One measured number. A goal of 0 means that the number is only shown.
struct Measurement
{
    std::string name;
    std::string unit; // "x" or "ns"
    double value;
    double goal;
    bool goalIsLeast;   // the value is to reach the goal, else it is to stay below
    double ns;          // one call of what is measured
    double againstNs;   // one call of what it is measured against; 0: nothing
    std::string detail; // the same for readers

    bool Met() const noexcept
    {
        return goal == 0 || (goalIsLeast ? value >= goal : value <= goal);
    }
};

// How often one call of the driver asked the service for something.
struct CallCheck
{
    std::string name;
    CallCounts expected;
    CallCounts actual;
};

struct Report
{
    std::vector<Measurement> measurements;
    std::vector<CallCheck> checks;

    bool GoalsMet() const noexcept;
    bool CallsMatch() const noexcept;
};

// Adds the ratio of two times, which is to stay below the goal. `first` and `second` name what was timed for readers.
void AddRatio(Report& report,
              const std::string& name,
              const Comparison& times,
              double goal,
              const std::string& first = "ours",
              const std::string& second = "other");

void PrintReport(const Report& report);

// Writes the numbers as JSON. Returns whether the file could be written.
bool WriteJson(const Report& report, const std::string& path);

} // namespace tsypr::bench

#endif
