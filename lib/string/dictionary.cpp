#include "lib/string/dictionary.h"

namespace tsypr
{

bool Dictionary::Set(std::string_view key, std::string_view value) noexcept
{
    try
    {
        m_values.insert_or_assign(std::string(key), std::string(value));
        return true;
    }
    catch (...)
    {
        return false;
    }
}

const char* Dictionary::Get(std::string_view key) const noexcept
{
    const auto found = m_values.find(key);
    return found != m_values.end() ? found->second.c_str() : nullptr;
}

} // namespace tsypr
