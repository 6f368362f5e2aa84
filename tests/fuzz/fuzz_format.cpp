// Any format over arguments that are safe for every conversion: neither buffer is left, and both agree.
#include "lib/string/format.h"
#include "lib/unicode/codeset.h"
#include "tests/fuzz/fuzz_check.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace
{

using namespace tsypr;

// Texts in UTF-8 and in UTF-16 alike: behind each stand enough zeros. Some end in the middle of a character.
alignas(8) constexpr char kTexts[][16] = {
    "abcdefgh", "\xE2\x82\xAC%s\xF0\x9F", "", "x\xC3\xA4\xC3\xA4\xC3", "a\xF0\x9F\x98"};

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
    if (std::strpbrk(format, "cC") == nullptr && CodeSet_IsUtf8(format))
    {
        Check(CodeSet_IsUtf8(whole) && CodeSet_IsUtf8({buffer.get(), length}));
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
    constexpr const char* kPointers[] = {kTexts[0], kTexts[1], kTexts[2], kTexts[3], kTexts[4], nullptr};
    constexpr double kReals[] = {0.5, -1e300, 5e-324, 123456.789, 1e22, -0.0, 1.0 / 3, 99.995};
    const auto run = [&]<size_t... P, size_t... R, size_t... M>(
        std::index_sequence<P...>, std::index_sequence<R...>, std::index_sequence<M...>)
    {
        Run(data[0], exact.get(), kPointers[P]..., kReals[R]..., kPointers[M % std::size(kPointers)]...);
    };
    run(std::make_index_sequence<std::size(kPointers)>(),
        std::make_index_sequence<std::size(kReals)>(),
        std::make_index_sequence<60>());
    return 0;
}
