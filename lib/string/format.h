// printf-style formatting that gives the same text on every platform and under every locale.
//
// Conversions: %d %i %u %x %X %o %c %s %S %C %p %% and %f %F %e %E %g %G %a %A, with flags, width, precision, "*", and
// the sizes hh h l ll j z t I64 I32. %s takes UTF-8; %S and %ls take UTF-16, whatever the C locale is, and write UTF-8;
// a lone surrogate becomes U+FFFD. A precision of a text counts bytes of the result and never cuts a character; no more
// of the argument is read than that. A null text prints "(null)". %p prints sixteen hexadecimal digits. %n writes
// nothing. A conversion that is not known is copied as it stands and takes no argument.
#ifndef TESSARY_LIB_STRING_FORMAT_H
#define TESSARY_LIB_STRING_FORMAT_H

#include "lib/string/text_buffer.h"

#include <cstdarg>
#include <cstddef>

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

// Appends the formatted text to `out`. Never throws; out.Cut() tells when memory ran out.
void FormatTo(TextBuffer& out, const char* format, va_list arguments) noexcept;

// Formats into `buffer` of `capacity` bytes, terminator included. Returns the length of what was written. What does not
// fit is cut at a character's border. With a null buffer or no capacity it writes nothing and returns 0.
size_t FormatFixed(char* buffer, size_t capacity, const char* format, ...) noexcept TESSARY_PRINTF(3, 4);

} // namespace tsypr

#endif
