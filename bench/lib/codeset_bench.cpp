#include "bench/compare.h"
#include "bench/lib/benches.h"
#include "lib/unicode/code_page.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <stdexcept>

namespace tsypr::bench
{
namespace
{

constexpr size_t kTextBytes = 4000;

std::string Repeated(std::string_view line)
{
    std::string text;
    while (text.size() < kTextBytes)
    {
        text += line;
    }
    return text;
}

// One text, and room for each result that nobody has to measure out first.
struct Sample
{
    explicit Sample(std::string_view line) : utf8(Repeated(line))
    {
        if (!CodeSet_Utf8ToUtf16(utf8, utf16))
        {
            throw std::runtime_error("bad sample");
        }
        narrowRoom.resize(utf16.size() * 4 + 1);
        wideRoom.resize(utf8.size() + 1);
    }

    std::string utf8;
    Utf16String utf16;
    std::string narrowRoom;
    Utf16String wideRoom;
    std::string ourUtf8;
    Utf16String ourUtf16;
};

UChar* Units(Utf16String& text)
{
    return reinterpret_cast<UChar*>(text.data());
}

// `length` is what the other one has written; anything else than our length is a mistake of the benchmark.
void RequireLength(size_t length, size_t expected)
{
    if (length != expected)
    {
        throw std::runtime_error("the conversions do not agree");
    }
}

void MeasureUtf(Report& report, const std::string& what, Sample& sample)
{
    const auto ourWide = [&] { CodeSet_Utf8ToUtf16(sample.utf8, sample.ourUtf16, CodeSetMode::Strict); };
    const auto ourNarrow = [&] { CodeSet_Utf16ToUtf8(sample.utf16, sample.ourUtf8, CodeSetMode::Strict); };
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    const auto icuWide = [&]
    {
        u_strFromUTF8(Units(sample.wideRoom),
                      static_cast<int32_t>(sample.wideRoom.size()),
                      &length,
                      sample.utf8.data(),
                      static_cast<int32_t>(sample.utf8.size()),
                      &error);
    };
    const auto icuNarrow = [&]
    {
        u_strToUTF8(sample.narrowRoom.data(),
                    static_cast<int32_t>(sample.narrowRoom.size()),
                    &length,
                    Units(sample.utf16),
                    static_cast<int32_t>(sample.utf16.size()),
                    &error);
    };
    const auto windowsWide = [&]
    {
        length = MultiByteToWideChar(CP_UTF8,
                                     MB_ERR_INVALID_CHARS,
                                     sample.utf8.data(),
                                     static_cast<int>(sample.utf8.size()),
                                     sample.wideRoom.data(),
                                     static_cast<int>(sample.wideRoom.size()));
    };
    const auto windowsNarrow = [&]
    {
        length = WideCharToMultiByte(CP_UTF8,
                                     WC_ERR_INVALID_CHARS,
                                     sample.utf16.data(),
                                     static_cast<int>(sample.utf16.size()),
                                     sample.narrowRoom.data(),
                                     static_cast<int>(sample.narrowRoom.size()),
                                     nullptr,
                                     nullptr);
    };
    AddRatio(report, "UTF-8 to UTF-16, " + what + " / ICU", Compare(ourWide, icuWide), 1.1);
    RequireLength(static_cast<size_t>(length), sample.ourUtf16.size());
    AddRatio(report, "UTF-8 to UTF-16, " + what + " / MultiByteToWideChar", Compare(ourWide, windowsWide), 0);
    RequireLength(static_cast<size_t>(length), sample.ourUtf16.size());
    AddRatio(report, "UTF-16 to UTF-8, " + what + " / ICU", Compare(ourNarrow, icuNarrow), 1.1);
    RequireLength(static_cast<size_t>(length), sample.ourUtf8.size());
    AddRatio(report, "UTF-16 to UTF-8, " + what + " / WideCharToMultiByte", Compare(ourNarrow, windowsNarrow), 0);
    RequireLength(static_cast<size_t>(length), sample.ourUtf8.size());
}

// A converter of ICU's that is opened once, as its users are told to.
struct Converter
{
    Converter()
    {
        UErrorCode error = U_ZERO_ERROR;
        handle = ucnv_open("ibm-943_P15A-2003", &error);
        ucnv_setToUCallBack(handle, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        ucnv_setFromUCallBack(handle, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        if (U_FAILURE(error))
        {
            throw std::runtime_error("ICU has no converter");
        }
    }
    ~Converter()
    {
        ucnv_close(handle);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    UConverter* handle = nullptr;
};

void MeasureCodePage(Report& report, Sample& sample)
{
    const Converter converter;
    std::string bytes;
    if (!CodeSet_Utf8ToPage(932, sample.utf8, bytes, CodeSetMode::Strict).Ok())
    {
        throw std::runtime_error("bad sample");
    }
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    const auto ourDecoding = [&] { CodeSet_PageToUtf16(932, bytes, sample.ourUtf16, CodeSetMode::Strict); };
    const auto icuDecoding = [&]
    {
        length = ucnv_toUChars(converter.handle,
                               Units(sample.wideRoom),
                               static_cast<int32_t>(sample.wideRoom.size()),
                               bytes.data(),
                               static_cast<int32_t>(bytes.size()),
                               &error);
    };
    std::string ourBytes;
    const auto ourEncoding = [&] { CodeSet_Utf16ToPage(932, sample.utf16, ourBytes, CodeSetMode::Strict); };
    const auto icuEncoding = [&]
    {
        length = ucnv_fromUChars(converter.handle,
                                 sample.narrowRoom.data(),
                                 static_cast<int32_t>(sample.narrowRoom.size()),
                                 Units(sample.utf16),
                                 static_cast<int32_t>(sample.utf16.size()),
                                 &error);
    };
    AddRatio(report, "code page 932 to UTF-16 / ICU", Compare(ourDecoding, icuDecoding), 1.1);
    RequireLength(static_cast<size_t>(length), sample.ourUtf16.size());
    AddRatio(report, "UTF-16 to code page 932 / ICU", Compare(ourEncoding, icuEncoding), 1.1);
    RequireLength(static_cast<size_t>(length), ourBytes.size());
}

} // namespace

void MeasureCodeSets(Report& report)
{
    Sample log("DrvDocumentPropertySheets, printer \"Kyocera CS 250ci\" returned 1 with query result 0x00000005\n");
    MeasureUtf(report, "log lines", log);
    Sample japanese("\xE5\x8D\xB0\xE5\x88\xB7\xE3\x81\xAE\xE8\xA8\xAD\xE5\xAE\x9A\xE3\x82\x92\xE5\xA4\x89\xE6\x9B\xB4"
                    "\xE3\x81\x97\xE3\x81\xBE\xE3\x81\x97\xE3\x81\x9F\xE3\x80\x82");
    MeasureUtf(report, "Japanese", japanese);
    MeasureCodePage(report, japanese);
}

} // namespace tsypr::bench
