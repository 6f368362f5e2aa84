#include "lib/unicode/code_page.h"
#include "lib/unicode/process_code_page.h"
#include "lib/unicode/system_code_page_windows.h"
#include "lib/unicode/through_utf16.h"

#include <windows.h>

namespace tsypr
{
namespace
{

// The system counts with `int`, and a character may have two bytes.
constexpr size_t kTooLong = size_t{1} << 30;

// The system's conversions; 0 stands for a failure. No text of ours that comes here is empty or too long.
size_t Decode(UINT page, std::string_view text, wchar_t* to, size_t room) noexcept
{
    return static_cast<size_t>(MultiByteToWideChar(
        page, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()), to, static_cast<int>(room)));
}

size_t Encode(UINT page, Utf16View text, char* to, size_t room) noexcept
{
    BOOL replaced = FALSE;
    const int written = WideCharToMultiByte(page,
                                            WC_NO_BEST_FIT_CHARS,
                                            text.data(),
                                            static_cast<int>(text.size()),
                                            to,
                                            static_cast<int>(room),
                                            nullptr,
                                            &replaced);
    return replaced ? 0 : static_cast<size_t>(written);
}

// One character at `from`: how many units it has or, where there is none, the bad part has.
struct Unit
{
    size_t length;
    CodeSetStatus status;
};

Unit DecodeOne(UINT page, std::string_view text, wchar_t (&to)[2], size_t& written) noexcept
{
    const bool lead = IsDBCSLeadByteEx(page, static_cast<BYTE>(text[0])) != FALSE;
    if (lead && text.size() == 1)
    {
        return {1, CodeSetStatus::Incomplete};
    }
    const size_t length = lead ? 2 : 1;
    written = Decode(page, text.substr(0, length), to, 2);
    if (written != 0)
    {
        return {length, CodeSetStatus::Ok};
    }
    // A letter behind a lead byte that does not take it is not swallowed with it.
    return {lead && static_cast<signed char>(text[1]) < 0 ? length : 1, CodeSetStatus::IllFormed};
}

Unit EncodeOne(UINT page, Utf16View text, char (&to)[4], size_t& written) noexcept
{
    size_t length = 1;
    if (IsSurrogate(text[0]))
    {
        DecodeUtf16(text[0], text.size() > 1 ? text[1] : 0, length);
        if (length == 1)
        {
            const bool cut = IsHighSurrogate(text[0]) && text.size() == 1;
            return {1, cut ? CodeSetStatus::Incomplete : CodeSetStatus::IllFormed};
        }
    }
    written = Encode(page, text.substr(0, length), to, sizeof(to));
    return {length, written != 0 ? CodeSetStatus::Ok : CodeSetStatus::Unmappable};
}

// A text in which the system has found something: once more, character by character.
template <class From, class To, size_t kRoom>
void Walk(UINT page,
          std::basic_string_view<From> text,
          std::basic_string<To>& out,
          utf::Course& course,
          Unit (*one)(UINT, std::basic_string_view<From>, To (&)[kRoom], size_t&))
{
    while (course.offset < text.size())
    {
        To units[kRoom];
        size_t written = 0;
        const Unit unit = one(page, text.substr(course.offset), units, written);
        if (unit.status == CodeSetStatus::Ok)
        {
            out.append(units, written);
        }
        else if (NoteBad(course, unit.status, course.offset))
        {
            out.push_back(static_cast<To>(course.replacement));
        }
        else
        {
            return;
        }
        course.offset += unit.length;
    }
}

// `whole` converts a text all of which can be converted, `one` a character.
template <class From, class To, size_t kRoom>
CodeSetResult Convert(UINT page,
                      std::basic_string_view<From> text,
                      std::basic_string<To>& out,
                      utf::Course course,
                      size_t (*whole)(UINT, std::basic_string_view<From>, To*, size_t),
                      Unit (*one)(UINT, std::basic_string_view<From>, To (&)[kRoom], size_t&)) noexcept
{
    out.clear();
    if (text.size() >= kTooLong)
    {
        return {CodeSetStatus::TooLong};
    }
    try
    {
        out.resize(text.size() * 2);
        out.resize(text.empty() ? 0 : whole(page, text, out.data(), out.size()));
        if (out.empty())
        {
            Walk(page, text, out, course, one);
        }
    }
    catch (...)
    {
        course.result.status = CodeSetStatus::OutOfMemory;
    }
    return utf::Finished(course.result, out);
}

} // namespace

CodeSetResult SystemPageToUtf16(unsigned page, std::string_view text, Utf16String& out, CodeSetMode mode) noexcept
{
    if (page == kCodePageUtf8)
    {
        return CodeSet_Utf8ToUtf16(text, out, mode);
    }
    return Convert(page, text, out, {mode}, Decode, DecodeOne);
}

CodeSetResult Utf16ToSystemPage(unsigned page, Utf16View text, std::string& out, CodeSetMode mode) noexcept
{
    if (page == kCodePageUtf8)
    {
        return CodeSet_Utf16ToUtf8(text, out, mode);
    }
    return Convert(page, text, out, {mode, '?'}, Encode, EncodeOne);
}

unsigned CodeSet_ProcessPage() noexcept
{
    return GetACP();
}

CodeSetResult CodeSet_ProcessToUtf16(std::string_view text, Utf16String& out, CodeSetMode mode) noexcept
{
    return SystemPageToUtf16(GetACP(), text, out, mode);
}

CodeSetResult CodeSet_Utf16ToProcess(Utf16View text, std::string& out, CodeSetMode mode) noexcept
{
    return Utf16ToSystemPage(GetACP(), text, out, mode);
}

CodeSetResult CodeSet_ProcessToUtf8(std::string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return utf::ToUtf8(out, [&](Utf16String& wide) { return CodeSet_ProcessToUtf16(text, wide, mode); });
}

CodeSetResult CodeSet_Utf8ToProcess(std::string_view text, std::string& out, CodeSetMode mode) noexcept
{
    return utf::FromUtf8(text, out, [&](Utf16View wide) { return CodeSet_Utf16ToProcess(wide, out, mode); });
}

} // namespace tsypr
