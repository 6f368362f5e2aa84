// Owners of the GDI objects that drawing and showing a watermark takes.
#ifndef TESSARY_WATERMARK_GDI_OWNERS_H
#define TESSARY_WATERMARK_GDI_OWNERS_H

#include <windows.h>

#include <memory>
#include <type_traits>

namespace tsypr
{

struct GdiObjectDeleter
{
    void operator()(HGDIOBJ object) const noexcept
    {
        DeleteObject(object);
    }
};

struct MemoryDcDeleter
{
    void operator()(HDC dc) const noexcept
    {
        DeleteDC(dc);
    }
};

using BitmapOwner = std::unique_ptr<std::remove_pointer_t<HBITMAP>, GdiObjectDeleter>;
using FontOwner = std::unique_ptr<std::remove_pointer_t<HFONT>, GdiObjectDeleter>;
using MemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, MemoryDcDeleter>;

// A window's device context, fetched when it is needed.
class WindowDc
{
public:
    WindowDc() = default;
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    ~WindowDc()
    {
        if (m_dc != nullptr)
        {
            ReleaseDC(m_window, m_dc);
        }
    }

    // To be called once. Null when the window, or the screen for a null window, has none to give.
    HDC Fetch(HWND window) noexcept
    {
        m_window = window;
        m_dc = GetDC(window);
        return m_dc;
    }

private:
    HWND m_window = nullptr;
    HDC m_dc = nullptr;
};

// At its end selects an object into a device context; nothing when no object was ever remembered.
class SelectAtEnd
{
public:
    SelectAtEnd() = default;
    SelectAtEnd(const SelectAtEnd&) = delete;
    SelectAtEnd& operator=(const SelectAtEnd&) = delete;
    ~SelectAtEnd()
    {
        if (m_object != nullptr)
        {
            SelectObject(m_dc, m_object);
        }
    }

    void Remember(HDC dc, HGDIOBJ object) noexcept
    {
        m_dc = dc;
        m_object = object;
    }

private:
    HDC m_dc = nullptr;
    HGDIOBJ m_object = nullptr;
};

} // namespace tsypr

#endif
