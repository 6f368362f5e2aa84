// Text conversion and the program's output, which is UTF-8 wherever it goes.
#ifndef TESSARY_PRINTCTL_TEXT_H
#define TESSARY_PRINTCTL_TEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace tsypr::printctl
{

// Characters that cannot be converted become U+FFFD.
std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);

// The text in double quotes, for messages.
std::string Quoted(std::wstring_view text);

// Ordinal comparison without regard to letter case.
bool EqualNoCase(std::wstring_view left, std::wstring_view right);

// The text of a fixed-size field: up to its first zero or its end.
std::wstring FixedWide(const wchar_t* text, size_t capacity);

// Writes UTF-8 text as it is to a file or pipe, and as characters to a console.
void WriteOut(std::string_view utf8);
void WriteError(std::string_view utf8);

// Columns of text padded to their widest cell; the first row is the heading.
class TextTable
{
public:
    explicit TextTable(std::vector<std::string> heading);

    void AddRow(std::vector<std::string> cells);
    bool HasRows() const noexcept;

    // The rows, each indented by two blanks and ended by a line feed.
    std::string Format() const;

private:
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace tsypr::printctl

#endif
