// One conversion of a format, taken apart, and what the parts of the formatter share.
#ifndef TESSARY_LIB_STRING_FORMAT_CONVERSION_H
#define TESSARY_LIB_STRING_FORMAT_CONVERSION_H

#include "lib/string/text_buffer.h"
#include "lib/unicode/utf16.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tsypr::format
{

// How an argument is passed. Two conversions that use the same argument must agree on it.
enum class Kind : uint8_t
{
    None,
    Int,
    Long,
    LongLong,
    Max,
    SizeT,
    PtrDiff,
    Double,
    LongDouble,
    Text,
    WideText,
    Pointer
};

// A width or precision that comes as an argument.
struct Star
{
    bool given = false;
    uint8_t number = 0; // of the argument; 0: the next one
};

struct Conversion
{
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zero = false;
    bool hasPrecision = false;
    bool numbered = false;   // takes its arguments by number
    uint8_t number = 0;      // of the argument
    uint8_t integerBits = 0; // of what is shown of an integer
    Kind kind = Kind::None;  // None: not known, or "%%"
    char type = '\0';
    Star starWidth;
    Star starPrecision;
    size_t width = 0;
    size_t precision = 0;
};

// An argument as it was fetched: integers widened with their sign.
union Value
{
    uint64_t number;
    double real;
    const void* pointer;
};

// Translated messages need no more, and corrupt ones must not read further.
inline constexpr size_t kMaxArguments = 32;

// No text of ours is wider; a corrupt width must not make a line of gigabytes.
inline constexpr size_t kMaxWidth = 4096;

// Takes apart the conversion whose "%" is before `p`; returns what follows it. The kind is None when it is not known.
const char* ParseConversion(const char* p, Conversion& conversion) noexcept;

void SetWidth(Conversion& conversion, int width) noexcept;
void SetPrecision(Conversion& conversion, int precision) noexcept;

// A va_list that may be handed on by reference, which the bare type does not allow on every platform.
struct Arguments
{
    va_list list;
};

Value TakeArgument(Kind kind, Arguments& arguments) noexcept;

// Handles the rest of a format from its first conversion on, which takes its arguments by number.
void FormatNumbered(TextBuffer& out, const char* format, Arguments& arguments) noexcept;

// Formats one conversion that is known.
void FormatValue(TextBuffer& out, const Conversion& conversion, Value value) noexcept;

void FormatInteger(TextBuffer& out, const Conversion& conversion, uint64_t value) noexcept;
void FormatPointer(TextBuffer& out, const Conversion& conversion, const void* value) noexcept;
void FormatFloat(TextBuffer& out, const Conversion& conversion, double value) noexcept;
void FormatCharacter(TextBuffer& out, const Conversion& conversion, uint64_t value) noexcept;
void FormatText(TextBuffer& out, const Conversion& conversion, const void* value) noexcept;
void FormatWideText(TextBuffer& out, const Conversion& conversion, const void* value) noexcept;

// The same for "%s", "%S", "%d" and "%x" without anything else.
void AppendText(TextBuffer& out, const char* text) noexcept;
void AppendWideText(TextBuffer& out, const Utf16Unit* text) noexcept;
void AppendDecimal(TextBuffer& out, int value) noexcept;
void AppendHex(TextBuffer& out, unsigned value) noexcept;

// Puts sign or prefix, then zeros, then digits into the field. Zeros that fill the field follow the prefix, unless
// there is a precision.
void AppendNumber(TextBuffer& out,
                  const Conversion& conversion,
                  std::string_view prefix,
                  size_t zeros,
                  std::string_view digits) noexcept;

} // namespace tsypr::format

#endif
