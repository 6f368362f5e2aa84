// What was read can be written and read again, and so can whatever was set.
#include "lib/string/dictionary.h"
#include "lib/string/key_value_text.h"
#include "tests/fuzz/fuzz_check.h"

#include <algorithm>

namespace
{

using namespace tsypr;

void CheckRoundTrip(const Dictionary& values)
{
    std::string text;
    Check(values.Save(text));
    Dictionary back;
    Check(back.Load(text) == 0);
    Check(std::equal(values.begin(), values.end(), back.begin(), back.end()));
}

void ReadAsTypes(const Dictionary& values)
{
    for (const auto& [key, value] : values)
    {
        const uint32_t number = values.GetUint32(key, 7, 5, 1000);
        Check(number >= 5 && number <= 1000);
        Check(values.GetDouble(key, 1.0) == values.GetDouble(key, 1.0)); // never NaN
        Check(values.GetInt64(key, 1) == values.GetInt64(key, 2) || values.GetInt64(key, 1) == 1);
        (void)values.GetBool(key, false);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Dictionary read;
    std::vector<size_t> damaged;
    const size_t count = read.Load(text, &damaged);
    Check(damaged.size() == std::min(count, Dictionary::kMostListed));
    CheckRoundTrip(read);
    ReadAsTypes(read);

    const size_t middle = std::min(text.find('\n'), size);
    Dictionary set;
    Check(set.Set(text.substr(0, middle), text.substr(std::min(middle + 1, size))));
    std::string written;
    Check(set.Save(written) == IsWritableKey(text.substr(0, middle)));
    if (!written.empty())
    {
        CheckRoundTrip(set);
    }
    return 0;
}
