// A fingerprint by which equal texts are recognised without keeping them.
#ifndef TESSARY_LIB_LOG_TEXT_HASH_H
#define TESSARY_LIB_LOG_TEXT_HASH_H

#include <cstdint>
#include <string_view>

namespace tsypr
{

// 128 bits: that two different texts of a process's life share it is out of the question. Not for texts that somebody
// chooses in order to deceive.
struct TextHash
{
    uint64_t first;
    uint64_t second;

    bool operator==(const TextHash&) const noexcept = default;
};

TextHash HashText(std::string_view text) noexcept;

} // namespace tsypr

#endif
