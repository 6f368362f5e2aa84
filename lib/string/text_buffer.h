// The growing or fixed byte buffer that formatted text is written into.
#ifndef TESSARY_LIB_STRING_TEXT_BUFFER_H
#define TESSARY_LIB_STRING_TEXT_BUFFER_H

#include <cstddef>
#include <string_view>

namespace tsypr
{

// Starts in room of its own and moves to the heap when that is used up; a line of ordinary length allocates nothing.
// When memory runs out, or when the buffer was made over fixed storage, what does not fit is dropped and Cut() tells.
class TextBuffer
{
public:
    TextBuffer() noexcept;

    // Over storage of the caller's that never grows. `capacity` in bytes.
    TextBuffer(char* storage, size_t capacity) noexcept;

    ~TextBuffer();
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    void Append(const char* text, size_t length) noexcept;
    void Append(std::string_view text) noexcept
    {
        Append(text.data(), text.size());
    }
    void Append(char c) noexcept
    {
        if (m_cut || m_size == m_capacity)
        {
            Append(&c, 1);
            return;
        }
        m_data[m_size++] = c;
    }

    // Appends the text up to its terminator or the first `stop`, and returns where that is. Short texts, as formats are
    // made of, are copied faster than they could first be measured.
    const char* AppendUntil(const char* text, char stop) noexcept
    {
        char* to = m_data + m_size;
        const char* const end = m_cut ? to : m_data + m_capacity;
        while (to != end && *text != '\0' && *text != stop)
        {
            *to++ = *text++;
        }
        m_size = static_cast<size_t>(to - m_data);
        return *text == '\0' || *text == stop ? text : AppendRestUntil(text, stop);
    }
    void AppendFill(char filler, size_t count) noexcept;

    std::string_view View() const noexcept
    {
        return {m_data, m_size};
    }
    bool Cut() const noexcept
    {
        return m_cut;
    }

    // Drops the end of the text, down to `size` bytes.
    void Truncate(size_t size) noexcept;

private:
    const char* AppendRestUntil(const char* text, char stop) noexcept;
    char* Moved(size_t capacity) const noexcept;
    size_t MakeRoom(size_t wanted) noexcept;
    bool OnHeap() const noexcept
    {
        return m_grows && m_data != m_inline;
    }

    static constexpr size_t kInlineBytes = 1024;

    char* m_data;
    size_t m_size = 0;
    size_t m_capacity;
    bool m_grows;
    bool m_cut = false;
    char m_inline[kInlineBytes];
};

} // namespace tsypr

#endif
