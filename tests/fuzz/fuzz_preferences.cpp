// Setting and removing a key in any text does just that and leaves all other lines byte for byte as they were.
#include "lib/string/dictionary.h"
#include "lib/string/key_value_text.h"
#include "tests/fuzz/fuzz_check.h"

#include <algorithm>

namespace
{

using namespace tsypr;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct Lines
{
    std::vector<std::string> others; // than the key's, one after the other
    std::vector<std::string> values; // of the key
};

// The byte-order mark is the file's, not its first line's.
std::string_view LineOf(const KeyValueReader& reader)
{
    std::string_view line = reader.Line();
    if (reader.LineNumber() == 1 && line.starts_with(kByteOrderMark))
    {
        line.remove_prefix(kByteOrderMark.size());
    }
    return line;
}

Lines Split(std::string_view text, std::string_view key)
{
    Lines lines;
    for (KeyValueReader reader(text); reader.Next();)
    {
        if (reader.Kind() == LineKind::Setting && reader.Key() == key)
        {
            lines.values.push_back(reader.Value());
        }
        else if (!LineOf(reader).empty())
        {
            lines.others.emplace_back(LineOf(reader));
        }
    }
    return lines;
}

bool SameLines(const std::vector<std::string>& before, const std::vector<std::string>& after, bool mayEnd)
{
    if (before.size() != after.size())
    {
        return false;
    }
    for (size_t i = 0; i < before.size(); ++i)
    {
        const std::string_view was = before[i];
        const std::string_view is = after[i];
        const bool ended = mayEnd && i + 1 == before.size() && !was.ends_with('\n') && is.starts_with(was) &&
                           (is.substr(was.size()) == "\n" || is.substr(was.size()) == "\r\n");
        if (was != is && !ended)
        {
            return false;
        }
    }
    return true;
}

void CheckSet(const std::string& before, std::string_view key, std::string_view value)
{
    std::string after = before;
    Check(RewriteKeyValueText(after, key, &value));
    const Lines was = Split(before, key);
    const Lines is = Split(after, key);
    Check(!is.values.empty() && is.values.back() == value);
    Check(is.values.size() == std::max<size_t>(was.values.size(), 1));
    Check(SameLines(was.others, is.others, was.values.empty()));
    Check(after.starts_with(kByteOrderMark) == before.starts_with(kByteOrderMark));
    std::string again = after;
    Check(RewriteKeyValueText(again, key, &value) && again == after);
}

void CheckRemove(const std::string& before, std::string_view key)
{
    std::string after = before;
    Check(RewriteKeyValueText(after, key, nullptr));
    const Lines is = Split(after, key);
    Check(is.values.empty() && SameLines(Split(before, key).others, is.others, false));
    Check(after.starts_with(kByteOrderMark) == before.starts_with(kByteOrderMark));
}

} // namespace

// The first line is the key, the second the value, the rest the file.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const size_t keyEnd = std::min(text.find('\n'), size);
    const size_t valueEnd = std::min(text.find('\n', keyEnd + 1), size);
    std::string_view key = text.substr(0, keyEnd);
    const std::string_view value =
        text.substr(std::min(keyEnd + 1, valueEnd), valueEnd - std::min(keyEnd + 1, valueEnd));
    const std::string file(text.substr(std::min(valueEnd + 1, size)));
    if (!IsWritableKey(key))
    {
        std::string same = file;
        Check(!RewriteKeyValueText(same, key, &value) && same == file);
        key = "a";
    }
    CheckSet(file, key, value);
    if (file.find("\n\xEF\xBB\xBF") == std::string::npos) // removing may need an empty line before that
    {
        CheckRemove(file, key);
    }
    return 0;
}
