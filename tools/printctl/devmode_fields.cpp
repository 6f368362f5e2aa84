#include "tools/printctl/devmode_fields.h"

#include "remote/private_devmode.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/text.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <cwchar>

namespace tsypr::printctl
{

namespace
{

size_t SizeOf(const Field& field)
{
    switch (field.type)
    {
    case FieldType::Int16:
    case FieldType::Word:
        return sizeof(WORD);
    case FieldType::Dword:
        return sizeof(DWORD);
    case FieldType::Byte:
        return sizeof(BYTE);
    case FieldType::Text:
        return field.chars * sizeof(wchar_t);
    }
    return 0;
}

// Where the field's bytes are, or null.
const uint8_t* PlaceOf(const DevModeBuffer& dm, const Field& field)
{
    if (field.place == FieldPlace::Private)
    {
        const PrivateDevMode* block = GetPrivateDevMode(dm.Get());
        return block == nullptr ? nullptr : reinterpret_cast<const uint8_t*>(block) + field.offset;
    }
    return field.offset + SizeOf(field) <= dm.Get()->dmSize ? reinterpret_cast<const uint8_t*>(dm.Get()) + field.offset
                                                            : nullptr;
}

template <typename Number>
int64_t Load(const uint8_t* place)
{
    Number number;
    std::memcpy(&number, place, sizeof(number));
    return static_cast<int64_t>(number);
}

template <typename Number>
void Store(uint8_t* place, int64_t value)
{
    const auto number = static_cast<Number>(value);
    std::memcpy(place, &number, sizeof(number));
}

const std::vector<Choice>& ListOf(const Field& field, const PrinterChoices& choices)
{
    static const std::vector<Choice> none;
    switch (field.list)
    {
    case PrinterList::Papers:
        return choices.papers;
    case PrinterList::Bins:
        return choices.bins;
    case PrinterList::MediaTypes:
        return choices.mediaTypes;
    case PrinterList::None:
        break;
    }
    return none;
}

std::pair<int64_t, int64_t> RangeOf(FieldType type)
{
    switch (type)
    {
    case FieldType::Int16:
        return {SHRT_MIN, SHRT_MAX};
    case FieldType::Word:
        return {0, USHRT_MAX};
    case FieldType::Byte:
        return {0, UCHAR_MAX};
    case FieldType::Dword:
    case FieldType::Text:
        break;
    }
    return {0, UINT_MAX};
}

std::optional<int64_t> ParseNumber(const Field& field, const std::wstring& text)
{
    wchar_t* end = nullptr;
    errno = 0;
    const int64_t number = std::wcstoll(text.c_str(), &end, 0);
    if (text.empty() || *end != L'\0')
    {
        return std::nullopt;
    }
    const auto [low, high] = RangeOf(field.type);
    if (errno != 0 || number < low || number > high)
    {
        throw Failure(ExitCode::Usage,
                      std::string("value ") + Utf8(text) + " of field " + field.name + " is not between " +
                          std::to_string(low) + " and " + std::to_string(high));
    }
    return number;
}

int64_t ParseValue(const Field& field, const std::wstring& text, const PrinterChoices& choices)
{
    if (const auto number = ParseNumber(field, text))
    {
        return *number;
    }
    for (const Choice& choice : ListOf(field, choices))
    {
        if (EqualNoCase(choice.name, text))
        {
            return choice.id;
        }
    }
    std::string known;
    for (const ValueName& value : field.values)
    {
        if (EqualNoCase(Wide(value.name), text))
        {
            return value.value;
        }
        known += std::string(known.empty() ? "" : ", ") + value.name;
    }
    for (const Choice& choice : ListOf(field, choices))
    {
        known += (known.empty() ? "" : ", ") + Quoted(choice.name);
    }
    throw Failure(ExitCode::Usage,
                  Quoted(text) + " is no value of field " + field.name +
                      (known.empty() ? " (a number is wanted)" : " (known: " + known + "; or a number)"));
}

void StoreText(uint8_t* place, const Field& field, std::wstring_view text)
{
    if (text.size() >= field.chars)
    {
        throw Failure(ExitCode::Usage,
                      std::string("the text of field ") + field.name + " may have at most " +
                          std::to_string(field.chars - 1) + " characters");
    }
    std::memset(place, 0, SizeOf(field));
    std::memcpy(place, text.data(), text.size() * sizeof(wchar_t));
}

std::string FlagNames(std::span<const ValueName> values, uint32_t bits)
{
    std::string names;
    for (const ValueName& value : values)
    {
        const auto bit = static_cast<uint32_t>(value.value);
        if ((bits & bit) != 0)
        {
            names += std::string(names.empty() ? "" : ", ") + value.name;
            bits &= ~bit;
        }
    }
    if (bits != 0)
    {
        char rest[16];
        snprintf(rest, sizeof(rest), "0x%x", bits);
        names += std::string(names.empty() ? "" : ", ") + rest;
    }
    return names;
}

} // namespace

PrinterChoices ReadChoices(const Capabilities& capabilities)
{
    return {capabilities.Choices(DC_PAPERS, DC_PAPERNAMES),
            capabilities.Choices(DC_BINS, DC_BINNAMES),
            capabilities.Choices(DC_MEDIATYPES, DC_MEDIATYPENAMES)};
}

const Field& FindField(std::wstring_view name)
{
    const std::wstring_view wanted = EqualNoCase(name, L"papersize") ? std::wstring_view(L"paper") : name;
    std::string known;
    for (const Field& field : Fields())
    {
        if (!field.settable)
        {
            continue;
        }
        if (EqualNoCase(Wide(field.name), wanted))
        {
            return field;
        }
        known += std::string(known.empty() ? "" : ", ") + field.name;
    }
    throw Failure(ExitCode::Usage, Quoted(name) + " is no field that can be set (known: " + known + ")");
}

bool IsSet(const DevModeBuffer& dm, const Field& field)
{
    return PlaceOf(dm, field) != nullptr &&
           (field.place == FieldPlace::Private || (dm.Get()->dmFields & field.bit) != 0);
}

std::optional<FieldValue> ReadField(const DevModeBuffer& dm, const Field& field)
{
    const uint8_t* place = PlaceOf(dm, field);
    if (place == nullptr)
    {
        return std::nullopt;
    }
    switch (field.type)
    {
    case FieldType::Int16:
        return Load<int16_t>(place);
    case FieldType::Word:
        return Load<uint16_t>(place);
    case FieldType::Dword:
        return Load<uint32_t>(place);
    case FieldType::Byte:
        return Load<uint8_t>(place);
    case FieldType::Text:
        break;
    }
    std::vector<wchar_t> text(field.chars);
    std::memcpy(text.data(), place, SizeOf(field));
    return FixedWide(text.data(), field.chars - 1);
}

void SetField(DevModeBuffer& dm, const Field& field, std::wstring_view text, const PrinterChoices& choices)
{
    auto* place = const_cast<uint8_t*>(PlaceOf(dm, field));
    if (place == nullptr)
    {
        throw Failure(ExitCode::Usage,
                      std::string("the device mode has no ") +
                          (field.place == FieldPlace::Private ? "private block for field " : "room for field ") +
                          field.name);
    }
    const std::wstring copy(text);
    switch (field.type)
    {
    case FieldType::Int16:
        Store<int16_t>(place, ParseValue(field, copy, choices));
        break;
    case FieldType::Word:
        Store<uint16_t>(place, ParseValue(field, copy, choices));
        break;
    case FieldType::Dword:
        Store<uint32_t>(place, ParseValue(field, copy, choices));
        break;
    case FieldType::Byte:
        Store<uint8_t>(place, ParseValue(field, copy, choices));
        break;
    case FieldType::Text:
        StoreText(place, field, text);
        break;
    }
    dm.Get()->dmFields |= field.bit;
}

std::string ValueNameOf(const Field& field, const FieldValue& value, const PrinterChoices& choices)
{
    const int64_t* number = std::get_if<int64_t>(&value);
    if (number == nullptr)
    {
        return {};
    }
    if (field.flags)
    {
        return FlagNames(field.values, static_cast<uint32_t>(*number));
    }
    for (const Choice& choice : ListOf(field, choices))
    {
        if (choice.id == *number)
        {
            return Utf8(choice.name);
        }
    }
    for (const ValueName& name : field.values)
    {
        if (name.value == *number)
        {
            return name.name;
        }
    }
    return {};
}

std::string ShowValue(const Field& field, const FieldValue& value, const PrinterChoices& choices)
{
    if (const auto* text = std::get_if<std::wstring>(&value))
    {
        return Quoted(*text);
    }
    const std::string number = std::to_string(std::get<int64_t>(value));
    const std::string name = ValueNameOf(field, value, choices);
    return name.empty() ? number : name + " (" + number + ")";
}

std::string FieldBitNames(DWORD bits)
{
    std::vector<ValueName> names;
    for (const Field& field : Fields())
    {
        if (field.bit != 0)
        {
            names.push_back({field.name, static_cast<int64_t>(field.bit)});
        }
    }
    return FlagNames(names, bits);
}

} // namespace tsypr::printctl
