// The single measurements.
#ifndef TESSARY_BENCH_BENCHES_H
#define TESSARY_BENCH_BENCHES_H

#include "bench/report.h"
#include "bench/surroundings.h"

namespace tsypr::bench
{

// Each adds its results. They load and free the libraries that they need, and throw std::runtime_error when something
// cannot be measured.

// Loading and freeing the module, against a library that only loads the same two libraries.
void MeasureAttach(const Surroundings& surroundings, Report& report);

// One capability question through the module, against the same calls made directly on the service.
void MeasureCapabilityQuery(Report& report);

// Copying a device mode with DrvConvertDevMode, against copying its bytes.
void MeasureConvert(Report& report);

// Merging device modes without a question to the service, against copying a device mode's bytes.
void MeasureMerge(Report& report);

// The device-mode dump and a single log call at a level that is off.
void MeasureQuietLog(Report& report);

// What the exported functions ask of the service.
void CheckServiceCalls(Report& report);

// Conversions through the print ticket provider, against the same service calls, loads and saves made directly.
void MeasurePrintTickets(Report& report);

// Questions to a large capabilities document, against the same calls without anything around them.
void MeasurePrintSchemaQueries(Report& report);

// What the provider's methods ask of the service.
void CheckTicketCalls(Report& report);

} // namespace tsypr::bench

#endif
