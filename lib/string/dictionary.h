// An ordered store of text keys and values, as settings are handed from one library to another.
#ifndef TESSARY_LIB_STRING_DICTIONARY_H
#define TESSARY_LIB_STRING_DICTIONARY_H

#include <map>
#include <string>
#include <string_view>

namespace tsypr
{

class Dictionary
{
public:
    // Stores a copy under the key, replacing what was there. Returns false when memory runs out.
    bool Set(std::string_view key, std::string_view value) noexcept;

    // The value of the key, valid until the dictionary changes; null when the key is not there.
    const char* Get(std::string_view key) const noexcept;

private:
    std::map<std::string, std::string, std::less<>> m_values;
};

} // namespace tsypr

#endif
