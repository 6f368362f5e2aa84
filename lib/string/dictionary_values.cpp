// The values of a dictionary as other types.
#include "lib/string/ascii.h"
#include "lib/string/dictionary.h"

#include <charconv>
#include <cmath>

namespace tsypr
{
namespace
{

std::string_view TextOf(const Dictionary& dictionary, std::string_view key) noexcept
{
    const char* found = dictionary.Get(key);
    return Trimmed(found != nullptr ? found : "");
}

// Reads all of the text as a number; from_chars itself takes no "+" and no "0x".
template <typename T, typename... Base>
bool ReadAll(std::string_view text, T& value, Base... base) noexcept
{
    const char* end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, value, base...);
    return error == std::errc() && next == end;
}

bool ReadInteger(std::string_view text, int64_t& value) noexcept
{
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
    {
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X"))
    {
        base = 16;
        text.remove_prefix(2);
    }
    uint64_t magnitude = 0;
    constexpr uint64_t kMost = INT64_MAX;
    if (!ReadAll(text, magnitude, base) || magnitude > kMost + (negative ? 1 : 0))
    {
        return false;
    }
    value = static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
    return true;
}

} // namespace

const char* Dictionary::GetText(std::string_view key, const char* otherwise) const noexcept
{
    const char* found = Get(key);
    return found != nullptr ? found : otherwise;
}

int64_t Dictionary::GetInt64(std::string_view key, int64_t otherwise, int64_t least, int64_t most) const noexcept
{
    int64_t value = 0;
    return ReadInteger(TextOf(*this, key), value) && value >= least && value <= most ? value : otherwise;
}

uint32_t Dictionary::GetUint32(std::string_view key, uint32_t otherwise, uint32_t least, uint32_t most) const noexcept
{
    return static_cast<uint32_t>(GetInt64(key, otherwise, least, most));
}

bool Dictionary::GetBool(std::string_view key, bool otherwise) const noexcept
{
    const std::string_view text = TextOf(*this, key);
    for (const char* yes : {"true", "yes", "on", "1"})
    {
        if (EqualsIgnoringCase(text, yes))
        {
            return true;
        }
    }
    for (const char* no : {"false", "no", "off", "0"})
    {
        if (EqualsIgnoringCase(text, no))
        {
            return false;
        }
    }
    return otherwise;
}

double Dictionary::GetDouble(std::string_view key, double otherwise) const noexcept
{
    std::string_view text = TextOf(*this, key);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
    {
        text.remove_prefix(1);
    }
    double value = 0;
    return ReadAll(text, value) && std::isfinite(value) ? value : otherwise;
}

} // namespace tsypr
