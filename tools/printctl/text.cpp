#include "tools/printctl/text.h"

#include <windows.h>

#include <algorithm>

namespace tsypr::printctl
{

namespace
{

void WriteTo(DWORD stream, std::string_view utf8)
{
    const HANDLE handle = GetStdHandle(stream);
    DWORD mode = 0;
    DWORD written = 0;
    if (GetConsoleMode(handle, &mode) != FALSE)
    {
        const std::wstring text = Wide(utf8);
        WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        return;
    }
    while (!utf8.empty())
    {
        const DWORD part = static_cast<DWORD>(std::min<size_t>(utf8.size(), 1 << 20));
        if (WriteFile(handle, utf8.data(), part, &written, nullptr) == FALSE || written == 0)
        {
            return;
        }
        utf8.remove_prefix(written);
    }
}

size_t Columns(std::string_view utf8)
{
    return static_cast<size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

} // namespace

std::string Utf8(std::wstring_view text)
{
    const int units = static_cast<int>(text.size());
    if (units == 0)
    {
        return {};
    }
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(std::max(bytes, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, result.data(), bytes, nullptr, nullptr);
    return result;
}

std::wstring Wide(std::string_view utf8)
{
    const int bytes = static_cast<int>(utf8.size());
    if (bytes == 0)
    {
        return {};
    }
    const int units = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
    std::wstring result(static_cast<size_t>(std::max(units, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, result.data(), units);
    return result;
}

std::string Quoted(std::wstring_view text)
{
    return "\"" + Utf8(text) + "\"";
}

bool EqualNoCase(std::wstring_view left, std::wstring_view right)
{
    return left.size() == right.size() &&
           (left.empty() ||
            CompareStringOrdinal(
                left.data(), static_cast<int>(left.size()), right.data(), static_cast<int>(right.size()), TRUE) ==
                CSTR_EQUAL);
}

std::wstring FixedWide(const wchar_t* text, size_t capacity)
{
    return {text, std::find(text, text + capacity, L'\0')};
}

void WriteOut(std::string_view utf8)
{
    WriteTo(STD_OUTPUT_HANDLE, utf8);
}

void WriteError(std::string_view utf8)
{
    WriteTo(STD_ERROR_HANDLE, utf8);
}

TextTable::TextTable(std::vector<std::string> heading)
{
    m_rows.push_back(std::move(heading));
}

void TextTable::AddRow(std::vector<std::string> cells)
{
    m_rows.push_back(std::move(cells));
}

bool TextTable::HasRows() const noexcept
{
    return m_rows.size() > 1;
}

std::string TextTable::Format() const
{
    std::vector<size_t> widths;
    for (const auto& row : m_rows)
    {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i)
        {
            widths[i] = std::max(widths[i], Columns(row[i]));
        }
    }
    std::string text;
    for (const auto& row : m_rows)
    {
        std::string line = "  ";
        for (size_t i = 0; i < row.size(); ++i)
        {
            line += row[i] + std::string(widths[i] - Columns(row[i]) + 2, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

} // namespace tsypr::printctl
