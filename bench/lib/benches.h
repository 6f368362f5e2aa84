// The single measurements of the base library.
#ifndef TESSARY_BENCH_LIB_BENCHES_H
#define TESSARY_BENCH_LIB_BENCHES_H

#include "bench/report.h"

namespace tsypr::bench
{

// Each adds its results and throws std::runtime_error when something cannot be measured.

// Taking and releasing a lock that nobody else wants.
void MeasureLocks(Report& report);

// Lines that do go to the file, against other ways to write them.
void MeasureLogLines(Report& report);

// Messages of the module into a fixed buffer, against the C library's formatter.
void MeasureFormatter(Report& report);

// Texts between encodings, against ICU called directly and against Windows' own functions.
void MeasureCodeSets(Report& report);

} // namespace tsypr::bench

#endif
