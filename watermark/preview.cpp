#include "watermark/preview.h"

#include "language/resource_ids.h"
#include "module/interface_dll.h"
#include "watermark/gdi_owners.h"
#include "watermark/watermarker.h"

#include <atomic>

namespace tsypr
{
namespace
{

// One for all pages: a page that is opened takes the picture away from one that is still open.
constinit std::atomic<HBITMAP> g_preview{nullptr};

void Keep(HBITMAP preview) noexcept
{
    const BitmapOwner previous(g_preview.exchange(preview));
}

// A control for pictures takes the size of each picture that it is given, so the size it began with is remembered.
void RememberSize(HWND control) noexcept
{
    RECT area = {};
    GetClientRect(control, &area);
    SetWindowLongPtrW(control, GWLP_USERDATA, MAKELONG(area.right, area.bottom));
}

// At the control's size, so that the text on it needs no scaling.
BitmapOwner LoadBlankPage(HWND control) noexcept
{
    if (ResourceModule == nullptr)
    {
        return nullptr;
    }
    const LONG_PTR size = GetWindowLongPtrW(control, GWLP_USERDATA);
    return BitmapOwner(static_cast<HBITMAP>(LoadImageW(
        ResourceModule, MAKEINTRESOURCEW(IDB_BLANK_PAGE), IMAGE_BITMAP, LOWORD(size), HIWORD(size), LR_DEFAULTCOLOR)));
}

void Show(HWND control, BitmapOwner blankPage, WatermarkBlock& block) noexcept
{
    // The renderer deletes the page unless no watermark is wanted.
    HBITMAP source = Watermarker::IsWanted(block) ? blankPage.release() : blankPage.get();
    HBITMAP preview = Watermarker::CreateBMPPreview(control, source, block);
    Keep(preview);
    SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(preview));
}

} // namespace

void ShowFirstPreview(HWND page, WatermarkBlock& block) noexcept
{
    HWND control = GetDlgItem(page, IDC_WATERMARK_PREVIEW);
    RememberSize(control);
    BitmapOwner blankPage = LoadBlankPage(control);
    Keep(nullptr);
    Show(control, std::move(blankPage), block);
}

void RenewPreview(HWND page, WatermarkBlock& block) noexcept
{
    HWND control = GetDlgItem(page, IDC_WATERMARK_PREVIEW);
    Keep(nullptr);
    Show(control, LoadBlankPage(control), block);
}

void ReleasePreview() noexcept
{
    Keep(nullptr);
}

} // namespace tsypr
