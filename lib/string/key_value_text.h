// Settings as text: lines of the form  key = "value"  in UTF-8.
//
// Lines that begin with "#" and empty lines are comments. Blanks around key and value do not count. In a value \" is a
// quote, \\ a backslash and \<0A> the byte with that hexadecimal number; every other backslash stands for itself, so
// that Windows paths need no doubling. Lines end with LF or CR LF, and a byte-order mark may come first. A line of
// another form is damaged, and so is one that is not well-formed UTF-8, has a NUL in it or a key that cannot be
// written.
#ifndef TESSARY_LIB_STRING_KEY_VALUE_TEXT_H
#define TESSARY_LIB_STRING_KEY_VALUE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tsypr
{

enum class LineKind
{
    Comment, // or nothing
    Setting,
    Damaged
};

// Goes through a text line by line. The views are parts of that text.
class KeyValueReader
{
public:
    explicit KeyValueReader(std::string_view text) noexcept : m_rest(text) {}

    // Goes on to the next line, at first to line 1. Returns false at the end. Throws std::bad_alloc only.
    bool Next();

    LineKind Kind() const noexcept
    {
        return m_kind;
    }
    size_t LineNumber() const noexcept
    {
        return m_number;
    }

    // With its end and the byte-order mark.
    std::string_view Line() const noexcept
    {
        return m_line;
    }

    // Of a setting.
    std::string_view Key() const noexcept
    {
        return m_key;
    }
    const std::string& Value() const noexcept
    {
        return m_value;
    }
    // As it is written, with its quotes.
    std::string_view QuotedValue() const noexcept
    {
        return m_quoted;
    }

private:
    LineKind ParseLine(std::string_view line);

    std::string_view m_rest;
    std::string_view m_line;
    std::string_view m_key;
    std::string_view m_quoted;
    std::string m_value;
    size_t m_number = 0;
    LineKind m_kind = LineKind::Comment;
};

// Whether a key can be written so that it is read again: well-formed UTF-8 that is not empty, has no "=" and no control
// character, and starts neither with "#" nor with a byte-order mark nor, as at its end, with a blank.
bool IsWritableKey(std::string_view key) noexcept;

// Appends the value in quotes. Any bytes are possible: control characters, and all that is not ASCII in a value that is
// not well-formed UTF-8, are written as \<0A>. Throws std::bad_alloc only.
void AppendQuotedValue(std::string& out, std::string_view value);

// Makes `key` have the value, or have none when `value` is null. All other lines, and all else in the line that is
// changed, stay byte for byte. Of several lines with the key the last one, which counts, is changed; removing takes
// all. A new line goes to the end, with the same kind of line end as the first line. Returns false, with `text` as it
// was, when the key is not writable or memory runs out.
bool RewriteKeyValueText(std::string& text, std::string_view key, const std::string_view* value) noexcept;

} // namespace tsypr

#endif
