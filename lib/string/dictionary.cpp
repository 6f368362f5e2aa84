#include "lib/string/dictionary.h"

#include "lib/string/key_value_text.h"

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

bool Dictionary::Remove(std::string_view key) noexcept
{
    const auto found = m_values.find(key);
    if (found == m_values.end())
    {
        return false;
    }
    m_values.erase(found);
    return true;
}

void Dictionary::Clear() noexcept
{
    m_values.clear();
}

size_t Dictionary::Load(std::string_view text, std::vector<size_t>* damagedLines) noexcept
{
    size_t damaged = 0;
    KeyValueReader reader(text);
    const auto next = [&reader](bool& taken)
    {
        try
        {
            taken = true;
            return reader.Next();
        }
        catch (...)
        {
            taken = false;
            return true;
        }
    };
    for (bool taken = false; next(taken);)
    {
        if (taken && (reader.Kind() == LineKind::Comment ||
                      (reader.Kind() == LineKind::Setting && Set(reader.Key(), reader.Value()))))
        {
            continue;
        }
        ++damaged;
        if (damagedLines != nullptr && damagedLines->size() < kMostListed)
        {
            try
            {
                damagedLines->push_back(reader.LineNumber());
            }
            catch (...)
            {
                damagedLines = nullptr; // counted all the same
            }
        }
    }
    return damaged;
}

bool Dictionary::Save(std::string& text) const noexcept
{
    text.clear();
    try
    {
        for (const auto& [key, value] : m_values)
        {
            if (!IsWritableKey(key))
            {
                text.clear();
                return false;
            }
            text.append(key).append(" = ");
            AppendQuotedValue(text, value);
            text.push_back('\n');
        }
        return true;
    }
    catch (...)
    {
        text.clear();
        return false;
    }
}

} // namespace tsypr
