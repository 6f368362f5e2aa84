// What DeviceCapabilitiesW says about a printer, read into lists.
#ifndef TESSARY_PRINTCTL_CAPABILITIES_H
#define TESSARY_PRINTCTL_CAPABILITIES_H

#include "tools/printctl/spooler.h"

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr::printctl
{

// How the answer to a capability index looks.
enum class CapabilityKind
{
    Number,    // the result itself
    Words,     // 16-bit numbers
    Dwords,    // 32-bit numbers
    LongPairs, // pairs of 32-bit numbers
    Names,     // texts of a fixed number of characters
    Text       // one text
};

struct CapabilityIndex
{
    WORD index;
    const char* name; // of the Windows constant
    CapabilityKind kind;
    size_t nameChars; // of one text, for Names and Text
};

// Every index that Windows defines, in ascending order.
std::span<const CapabilityIndex> CapabilityIndexes();

struct CapabilityAnswer
{
    const CapabilityIndex* index;
    int result;                                       // -1: not supported
    std::vector<std::pair<int64_t, int64_t>> numbers; // Words, Dwords (second is 0), LongPairs
    std::vector<std::wstring> texts;                  // Names, Text
    bool tooMuchData;                                 // the driver wrote beyond the elements that it announced
};

// One named choice of a printer.
struct Choice
{
    int64_t id;
    std::wstring name;
};

class Capabilities
{
public:
    // Asks for one index: the count first, then the data.
    // deviceMode: the settings to ask for; null for the printer's defaults.
    Capabilities(std::wstring printer, std::wstring port, const DEVMODEW* deviceMode);

    CapabilityAnswer Ask(WORD index) const;

    // Identifiers and names of two list answers side by side. A missing name is empty.
    std::vector<Choice> Choices(WORD ids, WORD names) const;

private:
    std::wstring m_printer;
    std::wstring m_port;
    const DEVMODEW* m_deviceMode;
};

} // namespace tsypr::printctl

#endif
