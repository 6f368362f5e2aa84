// The converters on arbitrary bytes: against ICU, in pieces against the whole, and there and back.
#include "lib/unicode/code_page_stream.h"
#include "tests/fuzz/fuzz_check.h"

#include <unicode/ustring.h>

#include <vector>

namespace tsypr
{
namespace
{

template <class Stream, class From, class To>
void CheckPieces(Stream&& stream,
                 std::basic_string_view<From> text,
                 size_t step,
                 const std::basic_string<To>& whole,
                 const CodeSetResult& result)
{
    std::basic_string<To> out;
    for (size_t i = 0; i < text.size(); i += step)
    {
        stream.Append(text.substr(i, step), out);
    }
    Check(stream.Finish(out) == result, "result of pieces == result of whole");
    Check(!result.Ok() || out == whole, "pieces == whole");
}

void FuzzUtf(std::string_view text, size_t step)
{
    std::vector<UChar> theirs(text.size() + 1);
    int32_t length = 0;
    int32_t replaced = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(theirs.data(),
                         static_cast<int32_t>(theirs.size()),
                         &length,
                         text.data(),
                         static_cast<int32_t>(text.size()),
                         0xFFFD,
                         &replaced,
                         &error);
    Utf16String wide;
    const CodeSetResult lenient = CodeSet_Utf8ToUtf16(text, wide, CodeSetMode::Lenient);
    Check(lenient.Ok() && Utf16View(theirs.data(), static_cast<size_t>(length)) == wide, "ours == ICU's");
    Check(lenient.replacements == static_cast<size_t>(replaced), "replacements == ICU's");
    CheckPieces(UtfStream<char, Utf16Unit>(CodeSetMode::Lenient), text, step, wide, lenient);
    std::u32string wider;
    Check(CodeSet_Utf8ToUtf32(text, wider, CodeSetMode::Lenient) == lenient, "UTF-32 like UTF-16");
    std::u32string again;
    Check(CodeSet_Utf16ToUtf32(wide, again, CodeSetMode::Strict).Lossless() && again == wider, "16 to 32");
    std::string back;
    Check(CodeSet_Utf32ToUtf8(wider, back, CodeSetMode::Strict).Lossless(), "32 to 8");
    Utf16String strictly;
    const CodeSetResult strict = CodeSet_Utf8ToUtf16(text, strictly, CodeSetMode::Strict);
    Check(strict.Ok() == lenient.Lossless() && strict.firstBadOffset == lenient.firstBadOffset, "strict like lenient");
    Check(!strict.Ok() || back == text, "there and back");
    CheckPieces(UtfStream<char, Utf16Unit>(CodeSetMode::Strict), text, step, strictly, strict);
    Check(CodeSet_Utf8ToUtf16(text.substr(0, strict.firstBadOffset), strictly), "well-formed before the offset");
}

void FuzzUtf16(std::string_view bytes, size_t step)
{
    Utf16String text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        text.push_back(static_cast<Utf16Unit>(static_cast<unsigned char>(bytes[i]) << 8 |
                                              static_cast<unsigned char>(bytes[i + 1])));
    }
    std::string narrow;
    const CodeSetResult lenient = CodeSet_Utf16ToUtf8(text, narrow, CodeSetMode::Lenient);
    CheckPieces(UtfStream<Utf16Unit, char>(CodeSetMode::Lenient), Utf16View(text), step, narrow, lenient);
    Utf16String back;
    Check(CodeSet_Utf8ToUtf16(narrow, back) && back.size() == text.size(), "UTF-8 of ours is well-formed");
    Check(!lenient.Lossless() || back == text, "UTF-16 there and back");
}

void FuzzPage(unsigned page, std::string_view text, size_t step)
{
    Utf16String wide;
    const CodeSetResult lenient = CodeSet_PageToUtf16(page, text, wide, CodeSetMode::Lenient);
    CheckPieces(CodePageDecoder(page, CodeSetMode::Lenient), text, step, wide, lenient);
    Utf16String strictly;
    const CodeSetResult strict = CodeSet_PageToUtf16(page, text, strictly, CodeSetMode::Strict);
    Check(strict.Ok() == lenient.Lossless() && strict.firstBadOffset == lenient.firstBadOffset, "strict like lenient");
    std::string bytes;
    const CodeSetResult encoded = CodeSet_Utf16ToPage(page, wide, bytes, CodeSetMode::Lenient);
    Check(encoded.Ok() && (!strict.Ok() || encoded.Lossless()), "what was decoded can be encoded");
    CheckPieces(CodePageEncoder(page, CodeSetMode::Lenient), Utf16View(wide), step, bytes, encoded);
    Utf16String again;
    Check(CodeSet_PageToUtf16(page, bytes, again, CodeSetMode::Strict).Lossless(), "what was encoded can be decoded");
    Check(!strict.Ok() || again == wide, "code page there and back");
    // UTF-8 into the page goes another way to the same end.
    Utf16String fromUtf8;
    std::string direct;
    std::string through;
    const CodeSetResult result = CodeSet_Utf8ToPage(page, text, direct, CodeSetMode::Lenient);
    if (CodeSet_Utf8ToUtf16(text, fromUtf8))
    {
        const CodeSetResult other = CodeSet_Utf16ToPage(page, fromUtf8, through, CodeSetMode::Lenient);
        Check(direct == through && result.replacements == other.replacements, "UTF-8 to page == UTF-16 to page");
    }
}

} // namespace
} // namespace tsypr

// The first byte chooses the code page and the length of the pieces.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace tsypr;
    constexpr unsigned kPages[] = {1252, 932, 936, 949, 950, 54936, kCodePageUtf8, 0};
    if (size == 0)
    {
        return 0;
    }
    const size_t step = 1 + data[0] / std::size(kPages) % 7;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const unsigned page = kPages[data[0] % std::size(kPages)];
    if (page != 0)
    {
        FuzzPage(page, text, step);
    }
    else
    {
        FuzzUtf(text, step);
        FuzzUtf16(text, step);
    }
    return 0;
}
