// printf-style formatting that gives the same text on every platform and under every locale.
//
// Conversions: %d %i %u %x %X %o %c %s %S %C %p %% and %f %F %e %E %g %G %a %A, with flags, width, precision, "*", and
// the sizes hh h l ll j z t L I64 I32. %s takes UTF-8; %S and %ls take UTF-16, whatever the C locale is, and write
// UTF-8; a lone surrogate becomes U+FFFD, and so does an incomplete character at the end of a %s text. A precision of a
// text counts bytes of the result and never cuts a character; no more of the argument is read than that. A null text
// prints "(null)". %p prints sixteen hexadecimal digits. Floating-point numbers are rounded exactly, from the middle to
// the even digit, with "." and at least two digits of exponent; a long double is taken as a double, and a NaN has no
// sign. Widths and precisions of numbers end at 4096.
//
// For translated messages arguments may be taken by number: "%2$s %1$*3$d", from 1 to 32. The first conversion of a
// format decides for all. A conversion is copied as it stands and takes no argument when it is not known, when it is of
// the other sort than the first, when its argument is used as something else before, or when its number is too high or
// follows one that the format does not use. %n takes its argument and writes nothing.
#ifndef TESSARY_LIB_STRING_FORMAT_H
#define TESSARY_LIB_STRING_FORMAT_H

#include "lib/string/text_buffer.h"

#include <cstdarg>
#include <cstddef>
#include <string>

// Lets the compiler check a format against its arguments. Off natively, where its %S is not our UTF-16.
#if defined(_WIN32) && defined(__clang__)
#define TESSARY_PRINTF(formatIndex, firstIndex) __attribute__((format(printf, formatIndex, firstIndex)))
#elif defined(_WIN32)
#define TESSARY_PRINTF(formatIndex, firstIndex) __attribute__((format(gnu_printf, formatIndex, firstIndex)))
#else
#define TESSARY_PRINTF(formatIndex, firstIndex)
#endif

namespace tsypr
{

// Nothing here throws, and a null format is an empty one.

// Appends the formatted text to `out`. out.Cut() tells when memory ran out or a fixed buffer is full.
void FormatTo(TextBuffer& out, const char* format, va_list arguments) noexcept;

// Formats into `buffer` of `capacity` bytes, terminator included, and returns the length of what was written. What does
// not fit is left away from the first character on that does not fit whole. With a null buffer or no capacity nothing
// is written and the result is 0.
size_t FormatFixed(char* buffer, size_t capacity, const char* format, ...) noexcept TESSARY_PRINTF(3, 4);
size_t FormatFixedV(char* buffer, size_t capacity, const char* format, va_list arguments) noexcept;

// Replaces `text` with the formatted text. Returns false, with `text` empty, when memory runs out.
bool FormatString(std::string& text, const char* format, ...) noexcept TESSARY_PRINTF(2, 3);
bool FormatStringV(std::string& text, const char* format, va_list arguments) noexcept;

} // namespace tsypr

#endif
