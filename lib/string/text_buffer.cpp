#include "lib/string/text_buffer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace tsypr
{

// The inline room is deliberately left uninitialised: every log line has one of these.
TextBuffer::TextBuffer() noexcept : m_data(m_inline), m_capacity(kInlineBytes), m_grows(true) // NOLINT
{
}

TextBuffer::TextBuffer(char* storage, size_t capacity) noexcept // NOLINT
    : m_data(storage), m_capacity(capacity), m_grows(false)
{
}

TextBuffer::~TextBuffer()
{
    if (OnHeap())
    {
        std::free(m_data);
    }
}

// The text in heap memory of the capacity; null when there is none, and the text stays where it is.
char* TextBuffer::Moved(size_t capacity) const noexcept
{
    if (OnHeap())
    {
        return static_cast<char*>(std::realloc(m_data, capacity));
    }
    char* data = static_cast<char*>(std::malloc(capacity));
    if (data != nullptr)
    {
        std::memcpy(data, m_data, m_size);
    }
    return data;
}

// Returns how many of the wanted bytes fit after growing as far as possible.
size_t TextBuffer::MakeRoom(size_t wanted) noexcept
{
    if (wanted <= m_capacity - m_size)
    {
        return wanted;
    }
    if (m_grows && wanted <= SIZE_MAX / 4 && m_size <= SIZE_MAX / 4)
    {
        const size_t capacity = std::max(m_capacity * 2, m_size + wanted);
        char* data = Moved(capacity);
        if (data != nullptr)
        {
            m_data = data;
            m_capacity = capacity;
            return wanted;
        }
    }
    m_cut = true;
    return m_capacity - m_size;
}

void TextBuffer::Append(const char* text, size_t length) noexcept
{
    if (m_cut)
    {
        return; // nothing may follow a gap
    }
    const size_t fits = MakeRoom(length);
    if (fits != 0)
    {
        std::memcpy(m_data + m_size, text, fits);
        m_size += fits;
    }
}

const char* TextBuffer::AppendRestUntil(const char* text, char stop) noexcept
{
    size_t length = 0;
    while (text[length] != '\0' && text[length] != stop)
    {
        ++length;
    }
    Append(text, length);
    return text + length;
}

void TextBuffer::AppendFill(char filler, size_t count) noexcept
{
    if (m_cut || count == 0)
    {
        return;
    }
    const size_t fits = MakeRoom(count);
    std::memset(m_data + m_size, filler, fits);
    m_size += fits;
}

void TextBuffer::Truncate(size_t size) noexcept
{
    if (size < m_size)
    {
        m_size = size;
        m_cut = false; // what follows no longer stands behind a gap
    }
}

} // namespace tsypr
