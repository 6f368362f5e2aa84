// Where the property sheet interface of the test environment writes down what its callers did against the contract.
#ifndef TESSARY_TOOLS_COMPSTUI_CONTRACT_H
#define TESSARY_TOOLS_COMPSTUI_CONTRACT_H

#include <cstddef>
#include <string>

namespace tsypr::compstui
{

// Counts a fault and writes it as one line, "compstui: contract fault: FUNCTION: WHAT.", to the debugger's output and
// to the end of the file that the environment variable TESSARY_COMPSTUI_LOG names, if there is one.
void ReportFault(const char* function, const char* what) noexcept;

// Says in the same places what a caller asked for rightly and does not get here. That is no fault and is not counted.
void ReportUnsupported(const char* function) noexcept;

// How many faults there were in this process.
std::size_t FaultCount() noexcept;

// The line of a fault, or an empty text. The first 256 are kept.
std::string FaultText(std::size_t index);

} // namespace tsypr::compstui

#endif
