#include "tools/printctl/capabilities.h"

#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tsypr::printctl
{

namespace
{

constexpr size_t kSpareBytes = 64 * 1024;
constexpr uint8_t kUntouched = 0xA5;
constexpr int kMostElements = 65536;

constexpr CapabilityIndex kIndexes[] = {
    {DC_FIELDS, "DC_FIELDS", CapabilityKind::Number, 0},
    {DC_PAPERS, "DC_PAPERS", CapabilityKind::Words, 0},
    {DC_PAPERSIZE, "DC_PAPERSIZE", CapabilityKind::LongPairs, 0},
    {DC_MINEXTENT, "DC_MINEXTENT", CapabilityKind::Number, 0},
    {DC_MAXEXTENT, "DC_MAXEXTENT", CapabilityKind::Number, 0},
    {DC_BINS, "DC_BINS", CapabilityKind::Words, 0},
    {DC_DUPLEX, "DC_DUPLEX", CapabilityKind::Number, 0},
    {DC_SIZE, "DC_SIZE", CapabilityKind::Number, 0},
    {DC_EXTRA, "DC_EXTRA", CapabilityKind::Number, 0},
    {DC_VERSION, "DC_VERSION", CapabilityKind::Number, 0},
    {DC_DRIVER, "DC_DRIVER", CapabilityKind::Number, 0},
    {DC_BINNAMES, "DC_BINNAMES", CapabilityKind::Names, 24},
    {DC_ENUMRESOLUTIONS, "DC_ENUMRESOLUTIONS", CapabilityKind::LongPairs, 0},
    {DC_FILEDEPENDENCIES, "DC_FILEDEPENDENCIES", CapabilityKind::Names, 64},
    {DC_TRUETYPE, "DC_TRUETYPE", CapabilityKind::Number, 0},
    {DC_PAPERNAMES, "DC_PAPERNAMES", CapabilityKind::Names, 64},
    {DC_ORIENTATION, "DC_ORIENTATION", CapabilityKind::Number, 0},
    {DC_COPIES, "DC_COPIES", CapabilityKind::Number, 0},
    {DC_BINADJUST, "DC_BINADJUST", CapabilityKind::Number, 0},
    {DC_EMF_COMPLIANT, "DC_EMF_COMPLIANT", CapabilityKind::Number, 0},
    {DC_DATATYPE_PRODUCED, "DC_DATATYPE_PRODUCED", CapabilityKind::Names, 32},
    {DC_COLLATE, "DC_COLLATE", CapabilityKind::Number, 0},
    {DC_MANUFACTURER, "DC_MANUFACTURER", CapabilityKind::Text, 256},
    {DC_MODEL, "DC_MODEL", CapabilityKind::Text, 256},
    {DC_PERSONALITY, "DC_PERSONALITY", CapabilityKind::Names, 32},
    {DC_PRINTRATE, "DC_PRINTRATE", CapabilityKind::Number, 0},
    {DC_PRINTRATEUNIT, "DC_PRINTRATEUNIT", CapabilityKind::Number, 0},
    {DC_PRINTERMEM, "DC_PRINTERMEM", CapabilityKind::Number, 0},
    {DC_MEDIAREADY, "DC_MEDIAREADY", CapabilityKind::Names, 64},
    {DC_STAPLE, "DC_STAPLE", CapabilityKind::Number, 0},
    {DC_PRINTRATEPPM, "DC_PRINTRATEPPM", CapabilityKind::Number, 0},
    {DC_COLORDEVICE, "DC_COLORDEVICE", CapabilityKind::Number, 0},
    {DC_NUP, "DC_NUP", CapabilityKind::Dwords, 0},
    {DC_MEDIATYPENAMES, "DC_MEDIATYPENAMES", CapabilityKind::Names, 64},
    {DC_MEDIATYPES, "DC_MEDIATYPES", CapabilityKind::Dwords, 0},
};

size_t ElementSize(const CapabilityIndex& index)
{
    switch (index.kind)
    {
    case CapabilityKind::Words:
        return sizeof(WORD);
    case CapabilityKind::Dwords:
        return sizeof(DWORD);
    case CapabilityKind::LongPairs:
        return 2 * sizeof(LONG);
    case CapabilityKind::Names:
    case CapabilityKind::Text:
        return index.nameChars * sizeof(wchar_t);
    case CapabilityKind::Number:
        break;
    }
    return 0;
}

template <typename Element>
Element At(const std::vector<uint8_t>& data, size_t index)
{
    Element element;
    std::memcpy(&element, data.data() + index * sizeof(Element), sizeof(element));
    return element;
}

// count: whole elements that the data holds.
void Decode(const std::vector<uint8_t>& data, size_t count, CapabilityAnswer& answer)
{
    for (size_t i = 0; i < count; ++i)
    {
        switch (answer.index->kind)
        {
        case CapabilityKind::Words:
            answer.numbers.emplace_back(At<WORD>(data, i), 0);
            break;
        case CapabilityKind::Dwords:
            answer.numbers.emplace_back(static_cast<int64_t>(At<DWORD>(data, i)), 0);
            break;
        case CapabilityKind::LongPairs:
            answer.numbers.emplace_back(At<LONG>(data, 2 * i), At<LONG>(data, 2 * i + 1));
            break;
        case CapabilityKind::Names:
        case CapabilityKind::Text:
        {
            const size_t chars = answer.index->nameChars;
            const auto* text = reinterpret_cast<const wchar_t*>(data.data()) + i * chars;
            answer.texts.push_back(FixedWide(text, chars));
            break;
        }
        case CapabilityKind::Number:
            break;
        }
    }
}

} // namespace

std::span<const CapabilityIndex> CapabilityIndexes()
{
    return kIndexes;
}

Capabilities::Capabilities(std::wstring printer, std::wstring port, const DEVMODEW* deviceMode)
    : m_printer(std::move(printer)), m_port(std::move(port)), m_deviceMode(deviceMode)
{
}

CapabilityAnswer Capabilities::Ask(WORD index) const
{
    const auto found = std::find_if(std::begin(kIndexes),
                                    std::end(kIndexes),
                                    [index](const CapabilityIndex& entry) { return entry.index == index; });
    if (found == std::end(kIndexes))
    {
        throw Failure(ExitCode::Internal, "unknown capability index " + std::to_string(index));
    }
    CapabilityAnswer answer{found, -1, {}, {}, false};
    const int count = DeviceCapabilitiesW(m_printer.c_str(), m_port.c_str(), index, nullptr, m_deviceMode);
    answer.result = count;
    if (found->kind == CapabilityKind::Number || count <= 0)
    {
        return answer;
    }
    // A text's answer is not a number of texts: there is one, of a length that only the system limits.
    const bool single = found->kind == CapabilityKind::Text;
    const size_t announced = single ? 1 : static_cast<size_t>(std::min(count, kMostElements));
    const size_t size = announced * ElementSize(*found);
    std::vector<uint8_t> data(size + kSpareBytes, kUntouched);
    std::fill_n(data.begin(), size, uint8_t{0});
    const int filled = DeviceCapabilitiesW(
        m_printer.c_str(), m_port.c_str(), index, reinterpret_cast<wchar_t*>(data.data()), m_deviceMode);
    if (filled <= 0)
    {
        answer.result = filled;
        return answer;
    }
    answer.tooMuchData = std::any_of(
        data.begin() + static_cast<std::ptrdiff_t>(size), data.end(), [](uint8_t byte) { return byte != kUntouched; });
    Decode(data, single ? 1 : std::min(announced, static_cast<size_t>(filled)), answer);
    return answer;
}

std::vector<Choice> Capabilities::Choices(WORD ids, WORD names) const
{
    const CapabilityAnswer numbers = Ask(ids);
    const CapabilityAnswer texts = Ask(names);
    std::vector<Choice> choices;
    for (size_t i = 0; i < numbers.numbers.size(); ++i)
    {
        choices.push_back({numbers.numbers[i].first, i < texts.texts.size() ? texts.texts[i] : std::wstring()});
    }
    return choices;
}

} // namespace tsypr::printctl
