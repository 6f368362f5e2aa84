// What every conversion between encodings tells its caller.
#ifndef TESSARY_LIB_UNICODE_CODESET_RESULT_H
#define TESSARY_LIB_UNICODE_CODESET_RESULT_H

#include <cstddef>
#include <cstdint>

namespace tsypr
{

// What happens to a part of the text that is not well-formed, or that the target cannot hold.
enum class CodeSetMode
{
    Strict, // the conversion ends with a failure, and there is no output
    Lenient // each such part becomes one replacement character, and is counted
};

enum class CodeSetStatus
{
    Ok,              // converted; in the lenient mode perhaps with replacements
    IllFormed,       // not valid in its own encoding
    Incomplete,      // ends in the middle of a character
    Unmappable,      // a character that the target code page does not have
    UnknownCodePage, // not one of those in code_page.h
    TooLong,         // for the system's functions; see process_code_page.h
    OutOfMemory
};

inline constexpr size_t kNoOffset = SIZE_MAX;

struct CodeSetResult
{
    CodeSetStatus status = CodeSetStatus::Ok;
    size_t replacements = 0;           // always 0 in the strict mode
    size_t firstBadOffset = kNoOffset; // where the first bad part begins, in units of the source: bytes of UTF-8 or of
                                       // a code page, 16-bit or 32-bit units

    bool Ok() const noexcept
    {
        return status == CodeSetStatus::Ok;
    }
    // Every character of the text is in the output.
    bool Lossless() const noexcept
    {
        return Ok() && replacements == 0;
    }
    bool operator==(const CodeSetResult&) const = default;
};

} // namespace tsypr

#endif
