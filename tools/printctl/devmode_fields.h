// The fields of a device mode by name: reading, writing and showing them, public and private ones alike.
#ifndef TESSARY_PRINTCTL_DEVMODE_FIELDS_H
#define TESSARY_PRINTCTL_DEVMODE_FIELDS_H

#include "tools/printctl/capabilities.h"
#include "tools/printctl/devmode_buffer.h"

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace tsypr::printctl
{

struct ValueName
{
    const char* name;
    int64_t value;
};

enum class FieldType
{
    Int16,
    Word,
    Dword,
    Byte,
    Text
};

// The printer's own list in which a field's value is to be found.
enum class PrinterList
{
    None,
    Papers,
    Bins,
    MediaTypes
};

enum class FieldPlace
{
    Public,  // from the start of the device mode
    Private, // from the start of the private block
};

struct Field
{
    const char* name;
    FieldPlace place;
    DWORD bit; // in dmFields; 0 for private fields
    size_t offset;
    FieldType type;
    size_t chars; // of a text, with its terminator
    std::span<const ValueName> values;
    PrinterList list;
    bool flags;    // the values are bits
    bool settable; // may be named in --set
};

using FieldValue = std::variant<int64_t, std::wstring>;

// The printer's named choices.
struct PrinterChoices
{
    std::vector<Choice> papers;
    std::vector<Choice> bins;
    std::vector<Choice> mediaTypes;
};

PrinterChoices ReadChoices(const Capabilities& capabilities);

std::span<const Field> Fields();

// By name, in any letter case. A Failure with ExitCode::Usage that lists the settable fields when there is none.
const Field& FindField(std::wstring_view name);

// Whether the field is in use: its dmFields bit, or the presence of the private block.
bool IsSet(const DevModeBuffer& dm, const Field& field);

// Nothing when the device mode has no room for the field.
std::optional<FieldValue> ReadField(const DevModeBuffer& dm, const Field& field);

// Stores a value given as text (a number, a name of the field's values, or a name in the printer's list) and sets the
// field's dmFields bit. A Failure with ExitCode::Usage when the text means nothing or the field is missing.
void SetField(DevModeBuffer& dm, const Field& field, std::wstring_view text, const PrinterChoices& choices);

// The name of a value in UTF-8, or empty when it has none.
std::string ValueNameOf(const Field& field, const FieldValue& value, const PrinterChoices& choices);

// The name and number, or the text, as messages show it.
std::string ShowValue(const Field& field, const FieldValue& value, const PrinterChoices& choices);

// Names of the set bits of dmFields, joined by ", ".
std::string FieldBitNames(DWORD bits);

} // namespace tsypr::printctl

#endif
