// Any format over arguments that are safe for every conversion: neither buffer is left, and both agree.
#include "lib/string/format.h"
#include "lib/unicode/codeset.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{

using namespace tsypr;

// Texts in UTF-8 and in UTF-16 alike: behind each stand enough zeros. Some end in the middle of a character.
alignas(8) constexpr char kTexts[][16] = {
    "abcdefgh", "\xE2\x82\xAC%s\xF0\x9F", "", "x\xC3\xA4\xC3\xA4\xC3", "a\xF0\x9F\x98"};

void Check(bool right)
{
    if (!right)
    {
        std::abort();
    }
}

bool IsUtf8(std::string_view text)
{
    Utf16String converted;
    return CodeSet_Utf8ToUtf16(text, converted);
}

void Run(size_t capacity, const char* format, ...) // NOLINT(cert-dcl50-cpp)
{
    va_list arguments;
    va_start(arguments, format);
    std::string whole;
    Check(FormatStringV(whole, format, arguments));
    const auto buffer = std::make_unique<char[]>(capacity);
    const size_t length = FormatFixedV(buffer.get(), capacity, format, arguments);
    va_end(arguments);
    if (capacity == 0)
    {
        Check(length == 0);
        return;
    }
    Check(length < capacity && buffer[length] == '\0');
    Check(whole.compare(0, length, buffer.get(), length) == 0);
    const size_t wanted = std::min(whole.size(), capacity - 1);
    Check(length == whole.size() || (length <= wanted && length + 3 >= wanted));
    // A "%c" may write any byte; nothing else may end a text inside a character.
    if (std::strpbrk(format, "cC") == nullptr && IsUtf8(format))
    {
        Check(IsUtf8(whole) && IsUtf8({buffer.get(), length}));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    // No format of this length asks for more than the arguments below.
    constexpr size_t kMostBytes = 64;
    if (size == 0)
    {
        return 0;
    }
    const std::string format(reinterpret_cast<const char*>(data + 1), std::min(size - 1, kMostBytes));
    const auto exact = std::make_unique<char[]>(format.size() + 1);
    std::copy(format.begin(), format.end(), exact.get());
    exact[format.size()] = '\0';
    const char* const a = kTexts[0];
    const char* const b = kTexts[1];
    const char* const c = kTexts[2];
    const char* const d = kTexts[3];
    const char* const e = kTexts[4];
    const void* const none = nullptr;
    Run(data[0],
        exact.get(),
        a,
        b,
        c,
        d,
        e,
        none,
        0.5,
        -1e300,
        5e-324,
        123456.789,
        1e22,
        -0.0,
        1.0 / 3,
        99.995,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none,
        a,
        b,
        c,
        d,
        e,
        none);
    return 0;
}
