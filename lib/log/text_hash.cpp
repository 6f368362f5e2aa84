#include "lib/log/text_hash.h"

#include <cstring>

namespace tsypr
{
namespace
{

// Odd numbers without a pattern: digits of the roots of 2, 3, 5 and 7.
constexpr uint64_t kMixers[] = {0x6A09E667F3BCC909, 0xBB67AE8584CAA73B, 0x3C6EF372FE94F82B, 0xA54FF53A5F1D36F1};

// The 128-bit product of both, folded: every bit of either counts.
uint64_t Fold(uint64_t a, uint64_t b) noexcept
{
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

// Two words of the text and both halves go into each half, combined in different ways.
void Mix(TextHash& hash, uint64_t a, uint64_t b) noexcept
{
    const uint64_t first = Fold(a ^ hash.first ^ kMixers[0], b ^ hash.second ^ kMixers[1]);
    hash.second = Fold(b ^ hash.first ^ kMixers[2], a ^ hash.second ^ kMixers[3]) + (first ^ a);
    hash.first = first;
}

} // namespace

TextHash HashText(std::string_view text) noexcept
{
    TextHash hash = {kMixers[1] ^ text.size(), kMixers[2] - text.size()};
    uint64_t words[2];
    for (; text.size() >= sizeof(words); text.remove_prefix(sizeof(words)))
    {
        std::memcpy(words, text.data(), sizeof(words));
        Mix(hash, words[0], words[1]);
    }
    words[0] = words[1] = 0;
    if (!text.empty())
    {
        std::memcpy(words, text.data(), text.size());
    }
    Mix(hash, words[0], words[1]);
    Mix(hash, kMixers[0], kMixers[3]);
    return hash;
}

} // namespace tsypr
