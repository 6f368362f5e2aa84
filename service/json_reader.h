#ifndef TESSARY_SERVICE_JSON_READER_H
#define TESSARY_SERVICE_JSON_READER_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "service/profile.h"

namespace tsypr::service
{

// Collects the problems of one file.
class ProblemList
{
public:
    ProblemList(std::string file, std::vector<ProfileProblem>& problems);

    // Control characters in `field` are replaced, so that one problem stays one line.
    void Add(std::string field, std::string reason);
    bool Any() const;

private:
    std::string m_file;
    std::vector<ProfileProblem>& m_problems;
    std::size_t m_before;
};

enum class Presence
{
    Optional,
    Required
};

struct Range
{
    std::int64_t smallest;
    std::int64_t largest;
};

// Limits of a text in UTF-16 units, the unit of Windows' fixed-size name fields.
struct TextLimits
{
    std::size_t shortest;
    std::size_t longest;
};

template <class Value>
struct Word
{
    std::string_view text;
    Value value;
};

// Reads the fields of one JSON object. A read that fails reports the problem and leaves the target as it is.
class ObjectReader
{
public:
    using Json = nlohmann::json;

    // `path` is the object's own path in the file, empty for the file's top object.
    ObjectReader(const Json& object, std::string path, ProblemList& problems);

    // The field's value, marked as known; null when it is absent.
    const Json* Find(std::string_view key, Presence presence);
    // Reports every field that nothing asked for.
    void ReportUnknown();
    std::string PathOf(std::string_view key) const;

    void Boolean(std::string_view key, Presence presence, bool& target);
    void Boolean(std::string_view key, Presence presence, std::optional<bool>& target);
    void Text(std::string_view key, Presence presence, TextLimits limits, std::string& target);
    // A name with a "psk:" or "ns0000:" prefix.
    void Keyword(std::string_view key, Presence presence, std::size_t longest, std::string& target);
    // A required list must not be empty.
    void KeywordList(std::string_view key, Presence presence, std::size_t longest, std::vector<std::string>& target);

    template <std::integral Number>
    void Integer(std::string_view key, Presence presence, Range range, Number& target)
    {
        if (const auto number = ReadInteger(Find(key, presence), PathOf(key), range))
        {
            target = static_cast<Number>(*number);
        }
    }

    template <std::integral Number>
    void Integer(std::string_view key, Presence presence, Range range, std::optional<Number>& target)
    {
        if (const auto number = ReadInteger(Find(key, presence), PathOf(key), range))
        {
            target = static_cast<Number>(*number);
        }
    }

    template <std::integral Number>
    void IntegerList(std::string_view key, Range range, std::vector<Number>& target)
    {
        ForEach(key,
                Presence::Required,
                1,
                [&](const Json& item, const std::string& path)
                {
                    if (const auto number = ReadInteger(&item, path, range))
                    {
                        AddUnique(target, static_cast<Number>(*number), path);
                    }
                });
    }

    template <class Value>
    void Choice(std::string_view key, std::span<const Word<Value>> words, std::optional<Value>& target)
    {
        if (const auto value = ReadWord(Find(key, Presence::Optional), PathOf(key), words))
        {
            target = *value;
        }
    }

    template <class Value>
    void ChoiceList(std::string_view key, std::span<const Word<Value>> words, std::vector<Value>& target)
    {
        ForEach(key,
                Presence::Optional,
                0,
                [&](const Json& item, const std::string& path)
                {
                    if (const auto value = ReadWord(&item, path, words))
                    {
                        AddUnique(target, *value, path);
                    }
                });
    }

    // Calls `read(reader)` for the object under `key`. False when there is none.
    template <class Read>
    bool Object(std::string_view key, Presence presence, Read&& read)
    {
        const Json* value = Find(key, presence);
        if (value == nullptr)
        {
            return false;
        }
        ObjectReader reader(*value, PathOf(key), m_problems);
        read(reader);
        reader.ReportUnknown();
        return true;
    }

    // Calls `read(reader)` for every object of the array under `key`.
    template <class Read>
    void Objects(std::string_view key, Presence presence, std::size_t fewest, Read&& read)
    {
        ForEach(key,
                presence,
                fewest,
                [&](const Json& item, const std::string& path)
                {
                    ObjectReader reader(item, path, m_problems);
                    read(reader);
                    reader.ReportUnknown();
                });
    }

private:
    template <class Visit>
    void ForEach(std::string_view key, Presence presence, std::size_t fewest, Visit&& visit)
    {
        const Json* value = FindArray(key, presence, fewest);
        for (std::size_t i = 0; value != nullptr && i < value->size(); ++i)
        {
            visit((*value)[i], PathOf(key) + "[" + std::to_string(i) + "]");
        }
    }

    template <class Value>
    void AddUnique(std::vector<Value>& target, Value value, const std::string& path)
    {
        for (const Value& present : target)
        {
            if (present == value)
            {
                m_problems.Add(path, "is listed twice");
                return;
            }
        }
        target.push_back(std::move(value));
    }

    template <class Value>
    std::optional<Value> ReadWord(const Json* value, const std::string& path, std::span<const Word<Value>> words)
    {
        if (value == nullptr)
        {
            return std::nullopt;
        }
        std::string allowed;
        for (const Word<Value>& word : words)
        {
            if (value->is_string() && value->get_ref<const std::string&>() == word.text)
            {
                return word.value;
            }
            allowed.append(allowed.empty() ? "" : ", ").append(word.text);
        }
        m_problems.Add(path, "must be one of: " + allowed);
        return std::nullopt;
    }

    const Json* FindArray(std::string_view key, Presence presence, std::size_t fewest);
    std::optional<std::int64_t> ReadInteger(const Json* value, const std::string& path, Range range);
    bool CheckKeyword(const Json& value, const std::string& path, std::size_t longest);

    const Json& m_object;
    std::string m_path;
    ProblemList& m_problems;
    std::set<std::string, std::less<>> m_known;
};

} // namespace tsypr::service

#endif
