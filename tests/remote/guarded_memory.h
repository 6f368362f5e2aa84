// Memory whose first or last byte lies against an inaccessible page.
#ifndef TESSARY_TESTS_REMOTE_GUARDED_MEMORY_H
#define TESSARY_TESTS_REMOTE_GUARDED_MEMORY_H

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace tsypr::test
{

enum class Against
{
    PageBefore,
    PageBehind
};

// Holds a copy of the bytes; any access beyond their end (or before their begin) ends the process. A debug build also
// refuses misaligned records, so there up to three bytes remain behind the end.
class GuardedMemory
{
public:
    GuardedMemory(const void* bytes, size_t size, Against side = Against::PageBehind)
    {
#ifdef NDEBUG
        constexpr size_t kAlignment = 1;
#else
        constexpr size_t kAlignment = 4;
#endif
        constexpr size_t kPage = 4096;
        const size_t inner = (size / kPage + 1) * kPage;
        m_base = static_cast<BYTE*>(VirtualAlloc(nullptr, inner + 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(m_base + kPage, inner, MEM_COMMIT, PAGE_READWRITE);
        const size_t offset = side == Against::PageBefore ? 0 : (inner - size) / kAlignment * kAlignment;
        m_data = m_base + kPage + offset;
        std::memset(m_base + kPage, 0xCC, inner);
        if (size != 0)
        {
            std::memcpy(m_data, bytes, size);
        }
    }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;
    ~GuardedMemory()
    {
        VirtualFree(m_base, 0, MEM_RELEASE);
    }

    template <typename T = void>
    T* Get() const
    {
        return reinterpret_cast<T*>(m_data);
    }

private:
    BYTE* m_base;
    BYTE* m_data;
};

} // namespace tsypr::test

#endif
