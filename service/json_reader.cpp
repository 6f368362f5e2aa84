#include "service/json_reader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "service/text.h"

namespace tsypr::service
{

namespace
{

bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool IsNameStart(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool IsNameCharacter(char c)
{
    return IsNameStart(c) || (c >= '0' && c <= '9') || c == '.' || c == '-';
}

bool IsKeyword(std::string_view text)
{
    for (const std::string_view prefix : {std::string_view("psk:"), std::string_view("ns0000:")})
    {
        if (text.starts_with(prefix))
        {
            text.remove_prefix(prefix.size());
            return !text.empty() && IsNameStart(text.front()) && std::ranges::all_of(text, IsNameCharacter);
        }
    }
    return false;
}

} // namespace

ProblemList::ProblemList(std::string file, std::vector<ProfileProblem>& problems)
    : m_file(std::move(file)), m_problems(problems), m_before(problems.size())
{
}

void ProblemList::Add(std::string field, std::string reason)
{
    std::ranges::replace_if(field, IsControl, '?');
    m_problems.push_back({m_file, std::move(field), std::move(reason)});
}

bool ProblemList::Any() const
{
    return m_problems.size() > m_before;
}

ObjectReader::ObjectReader(const Json& object, std::string path, ProblemList& problems)
    : m_object(object), m_path(std::move(path)), m_problems(problems)
{
    if (!object.is_object())
    {
        m_problems.Add(m_path, "must be an object");
    }
}

const ObjectReader::Json* ObjectReader::Find(std::string_view key, Presence presence)
{
    if (!m_object.is_object())
    {
        return nullptr;
    }
    m_known.emplace(key);
    const auto found = m_object.find(std::string(key));
    if (found != m_object.end())
    {
        return &*found;
    }
    if (presence == Presence::Required)
    {
        m_problems.Add(PathOf(key), "is missing");
    }
    return nullptr;
}

void ObjectReader::ReportUnknown()
{
    if (!m_object.is_object())
    {
        return;
    }
    for (const auto& field : m_object.items())
    {
        if (!m_known.contains(field.key()))
        {
            m_problems.Add(PathOf(field.key()), "unknown field");
        }
    }
}

std::string ObjectReader::PathOf(std::string_view key) const
{
    return m_path.empty() ? std::string(key) : m_path + "." + std::string(key);
}

void ObjectReader::Boolean(std::string_view key, Presence presence, bool& target)
{
    std::optional<bool> value;
    Boolean(key, presence, value);
    target = value.value_or(target);
}

void ObjectReader::Boolean(std::string_view key, Presence presence, std::optional<bool>& target)
{
    const Json* value = Find(key, presence);
    if (value == nullptr)
    {
        return;
    }
    if (!value->is_boolean())
    {
        m_problems.Add(PathOf(key), "must be true or false");
        return;
    }
    target = value->get<bool>();
}

void ObjectReader::Text(std::string_view key, Presence presence, TextLimits limits, std::string& target)
{
    const Json* value = Find(key, presence);
    if (value == nullptr)
    {
        return;
    }
    if (!value->is_string())
    {
        m_problems.Add(PathOf(key), "must be a text");
        return;
    }
    const auto& text = value->get_ref<const std::string&>();
    const std::size_t length = Utf16Length(text);
    if (length < limits.shortest || length > limits.longest)
    {
        m_problems.Add(PathOf(key),
                       "must have " + std::to_string(limits.shortest) + " to " + std::to_string(limits.longest) +
                           " characters, has " + std::to_string(length));
        return;
    }
    if (std::ranges::any_of(text, IsControl))
    {
        m_problems.Add(PathOf(key), "must not hold control characters");
        return;
    }
    target = text;
}

void ObjectReader::Keyword(std::string_view key, Presence presence, std::size_t longest, std::string& target)
{
    const Json* value = Find(key, presence);
    if (value != nullptr && CheckKeyword(*value, PathOf(key), longest))
    {
        target = value->get<std::string>();
    }
}

void ObjectReader::KeywordList(std::string_view key,
                               Presence presence,
                               std::size_t longest,
                               std::vector<std::string>& target)
{
    ForEach(key,
            presence,
            presence == Presence::Required ? 1 : 0,
            [&](const Json& item, const std::string& path)
            {
                if (CheckKeyword(item, path, longest))
                {
                    AddUnique(target, item.get<std::string>(), path);
                }
            });
}

const ObjectReader::Json* ObjectReader::FindArray(std::string_view key, Presence presence, std::size_t fewest)
{
    const Json* value = Find(key, presence);
    if (value == nullptr)
    {
        return nullptr;
    }
    if (!value->is_array())
    {
        m_problems.Add(PathOf(key), "must be a list");
        return nullptr;
    }
    if (value->size() < fewest)
    {
        m_problems.Add(PathOf(key), "must not be empty");
        return nullptr;
    }
    return value;
}

std::optional<std::int64_t> ObjectReader::ReadInteger(const Json* value, const std::string& path, Range range)
{
    if (value == nullptr)
    {
        return std::nullopt;
    }
    const bool beyond = value->is_number_unsigned() &&
                        value->get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    if (value->is_number_integer() && !beyond)
    {
        const auto number = value->get<std::int64_t>();
        if (number >= range.smallest && number <= range.largest)
        {
            return number;
        }
    }
    m_problems.Add(
        path, "must be an integer from " + std::to_string(range.smallest) + " to " + std::to_string(range.largest));
    return std::nullopt;
}

bool ObjectReader::CheckKeyword(const Json& value, const std::string& path, std::size_t longest)
{
    if (!value.is_string() || !IsKeyword(value.get_ref<const std::string&>()))
    {
        m_problems.Add(path, "must be a keyword such as psk:Name or ns0000:Name");
        return false;
    }
    if (value.get_ref<const std::string&>().size() > longest)
    {
        m_problems.Add(path, "must have at most " + std::to_string(longest) + " characters");
        return false;
    }
    return true;
}

} // namespace tsypr::service
