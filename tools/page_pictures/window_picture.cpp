#include "tools/page_pictures/window_picture.h"

#include <cstddef>
#include <fstream>
#include <memory>
#include <type_traits>
#include <vector>

namespace tsypr::pictures
{
namespace
{

using MemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, decltype([](HDC dc) { DeleteDC(dc); })>;
using Bitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, decltype([](HBITMAP bitmap) { DeleteObject(bitmap); })>;

class WindowDc
{
public:
    explicit WindowDc(HWND window) : m_window(window), m_dc(GetWindowDC(window)) {}
    ~WindowDc()
    {
        ReleaseDC(m_window, m_dc);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;

    HDC Get() const
    {
        return m_dc;
    }

private:
    HWND m_window;
    HDC m_dc;
};

// Rows of a 24-bit picture are padded to four bytes.
DWORD PixelBytes(SIZE size)
{
    return static_cast<DWORD>((size.cx * 3 + 3) / 4 * 4 * size.cy);
}

BITMAPINFO PictureHeader(SIZE size)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size.cx;
    info.bmiHeader.biHeight = size.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    info.bmiHeader.biSizeImage = PixelBytes(size);
    return info;
}

bool WriteBitmapFile(const std::filesystem::path& file, const BITMAPINFO& info, const std::vector<std::byte>& pixels)
{
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42; // "BM"
    header.bfOffBits = sizeof(header) + sizeof(info.bmiHeader);
    header.bfSize = header.bfOffBits + static_cast<DWORD>(pixels.size());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(&header), sizeof(header));
    out.write(reinterpret_cast<const char*>(&info.bmiHeader), sizeof(info.bmiHeader));
    out.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
    out.flush();
    return out.good();
}

} // namespace

bool SaveWindowPicture(HWND window, const std::filesystem::path& file)
{
    RECT area{};
    if (GetWindowRect(window, &area) == FALSE)
    {
        return false;
    }
    const SIZE size{area.right - area.left, area.bottom - area.top};
    const WindowDc source(window);
    const MemoryDc copy(CreateCompatibleDC(source.Get()));
    const Bitmap bitmap(CreateCompatibleBitmap(source.Get(), size.cx, size.cy));
    if (bitmap == nullptr || copy == nullptr)
    {
        return false;
    }
    const HGDIOBJ previous = SelectObject(copy.get(), bitmap.get());
    const BOOL isCopied = BitBlt(copy.get(), 0, 0, size.cx, size.cy, source.Get(), 0, 0, SRCCOPY);
    SelectObject(copy.get(), previous);
    BITMAPINFO info = PictureHeader(size);
    std::vector<std::byte> pixels(PixelBytes(size));
    const auto rows = static_cast<UINT>(size.cy);
    return isCopied != FALSE &&
           GetDIBits(copy.get(), bitmap.get(), 0, rows, pixels.data(), &info, DIB_RGB_COLORS) == size.cy &&
           WriteBitmapFile(file, info, pixels);
}

} // namespace tsypr::pictures
