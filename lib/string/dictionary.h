// An ordered store of text keys and values, as settings are handed from one library to another.
#ifndef TESSARY_LIB_STRING_DICTIONARY_H
#define TESSARY_LIB_STRING_DICTIONARY_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr
{

// Keys are compared byte by byte and kept in that order. Any text may be a key or a value, also an empty one. Nothing
// throws. Several threads may read at the same time while none writes.
class Dictionary
{
public:
    using Values = std::map<std::string, std::string, std::less<>>;

    // Damaged lines are listed up to this number.
    static constexpr size_t kMostListed = 100;

    // Stores a copy under the key, replacing what was there. Returns false when memory runs out.
    bool Set(std::string_view key, std::string_view value) noexcept;

    // The value of the key, valid until the dictionary changes; null when the key is not there.
    const char* Get(std::string_view key) const noexcept;

    // Returns whether the key was there.
    bool Remove(std::string_view key) noexcept;
    void Clear() noexcept;

    size_t Size() const noexcept
    {
        return m_values.size();
    }

    // Pairs of key and value in the order of the keys.
    Values::const_iterator begin() const noexcept
    {
        return m_values.begin();
    }
    Values::const_iterator end() const noexcept
    {
        return m_values.end();
    }

    // The value of the key read as a type; `otherwise` when the key is not there or the value is not of the type or not
    // in the range. Blanks around a value do not count. Integers are decimal, or hexadecimal behind "0x"; a bool is
    // true, yes, on, 1, false, no, off or 0 in any letter case; a double is finite and has a "." in every locale.
    const char* GetText(std::string_view key, const char* otherwise) const noexcept;
    int64_t GetInt64(std::string_view key,
                     int64_t otherwise,
                     int64_t least = INT64_MIN,
                     int64_t most = INT64_MAX) const noexcept;
    uint32_t GetUint32(std::string_view key,
                       uint32_t otherwise,
                       uint32_t least = 0,
                       uint32_t most = UINT32_MAX) const noexcept;
    bool GetBool(std::string_view key, bool otherwise) const noexcept;
    double GetDouble(std::string_view key, double otherwise) const noexcept;

    // Adds the settings of a text as key_value_text.h describes it; a later line wins. Damaged lines, and lines for
    // which memory runs out, are skipped. Returns how many these were; `damagedLines`, if given, gets the numbers of
    // the first kMostListed of them.
    size_t Load(std::string_view text, std::vector<size_t>* damagedLines = nullptr) noexcept;

    // Replaces `text` with lines that Load reads. Returns false, with `text` empty, when memory runs out or a key
    // cannot be written (see IsWritableKey).
    bool Save(std::string& text) const noexcept;

private:
    Values m_values;
};

} // namespace tsypr

#endif
