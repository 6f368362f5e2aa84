#include "tools/compstui/com_prop_sheet.h"
#include "tools/compstui/contract.h"
#include "tools/compstui/sheet.h"
#include "tools/compstui/sheet_window.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace tsypr::compstui
{
namespace
{

struct Text
{
    WORD id;
    const wchar_t* text;
};

// The words that drivers put on pages of their own.
constexpr Text kTexts[] = {
    {IDS_CPSUI_MORE, L"&More"},
    {IDS_CPSUI_OPTION, L"Option"},
    {IDS_CPSUI_PROPERTIES, L"Properties"},
    {IDS_CPSUI_DEFAULTDOCUMENT, L"Default Document"},
    {IDS_CPSUI_DOCUMENT, L"Document"},
    {IDS_CPSUI_PRINTER, L"Printer"},
    {IDS_CPSUI_GRAPHIC, L"Graphic"},
    {IDS_CPSUI_OPTIONS, L"Options"},
    {IDS_CPSUI_ADVANCED, L"Advanced"},
    {IDS_CPSUI_FALSE, L"False"},
    {IDS_CPSUI_TRUE, L"True"},
    {IDS_CPSUI_NO, L"No"},
    {IDS_CPSUI_YES, L"Yes"},
    {IDS_CPSUI_OFF, L"Off"},
    {IDS_CPSUI_ON, L"On"},
    {IDS_CPSUI_DEFAULT, L"Default"},
    {IDS_CPSUI_ERROR, L"Error"},
    {IDS_CPSUI_NONE, L"None"},
    {IDS_CPSUI_ORIENTATION, L"Orientation"},
    {IDS_CPSUI_SCALING, L"Scaling"},
    {IDS_CPSUI_SOURCE, L"Paper Source"},
    {IDS_CPSUI_PRINTQUALITY, L"Print Quality"},
    {IDS_CPSUI_RESOLUTION, L"Resolution"},
    {IDS_CPSUI_MEDIA, L"Media"},
    {IDS_CPSUI_PORTRAIT, L"Portrait"},
    {IDS_CPSUI_LANDSCAPE, L"Landscape"},
    {IDS_CPSUI_COLLATE, L"Collate"},
    {IDS_CPSUI_DRAFT, L"Draft"},
    {IDS_CPSUI_LOW, L"Low"},
    {IDS_CPSUI_MEDIUM, L"Medium"},
    {IDS_CPSUI_HIGH, L"High"},
    {IDS_CPSUI_COLOR, L"Color"},
    {IDS_CPSUI_GRAYSCALE, L"Grayscale"},
    {IDS_CPSUI_MONOCHROME, L"Monochrome"},
    {IDS_CPSUI_COPIES, L"Copies"},
    {IDS_CPSUI_WARNING, L"Warning"},
    {IDS_CPSUI_ABOUT, L"About"},
    {IDS_CPSUI_VERSION, L"Version"},
};

std::wstring FindText(WORD id)
{
    const auto* found = std::ranges::find(kTexts, id, &Text::id);
    return found != std::end(kTexts) ? found->text : L"";
}

std::string Narrow(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
}

// As LoadString does: cut where the buffer ends, terminated, and the length of what was copied.
template <typename Char>
LONG_PTR CopyText(const Call& call, const std::basic_string<Char>& text)
{
    const std::size_t room = LOWORD(call.second) / sizeof(Char);
    auto* buffer = reinterpret_cast<Char*>(call.first);
    if (buffer == nullptr || room == 0)
    {
        ReportFault(call.name, "there is no buffer");
        return -1;
    }
    const std::size_t length = std::min(text.size(), room - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = Char();
    return static_cast<LONG_PTR>(length);
}

} // namespace

LONG_PTR LoadCpsuiStringA(const Call& call)
{
    return CopyText(call, Narrow(FindText(HIWORD(call.second))));
}

LONG_PTR LoadCpsuiStringW(const Call& call)
{
    return CopyText(call, FindText(HIWORD(call.second)));
}

LONG_PTR LoadCpsuiIcon(const Call& call)
{
    const HICON icon = StandardIcon(static_cast<ULONG_PTR>(call.first), LOWORD(call.second), HIWORD(call.second));
    return reinterpret_cast<LONG_PTR>(icon);
}

LONG_PTR SetDataBlock(const Call& call)
{
    const auto* block = reinterpret_cast<const CPSUIDATABLOCK*>(call.first);
    if (block == nullptr || block->pbData == nullptr || block->cbData == 0)
    {
        ReportFault(call.name, "there is no data");
        return 0;
    }
    std::string& kept = call.group.sheet.DataBlocks()[static_cast<DWORD>(call.second)];
    kept.assign(reinterpret_cast<const char*>(block->pbData), block->cbData);
    return static_cast<LONG_PTR>(kept.size());
}

LONG_PTR QueryDataBlock(const Call& call)
{
    const auto& blocks = call.group.sheet.DataBlocks();
    const auto found = blocks.find(static_cast<DWORD>(call.second));
    if (found == blocks.end())
    {
        ReportFault(call.name, "there is no such data block");
        return 0;
    }
    const std::string& kept = found->second;
    const auto* block = reinterpret_cast<const CPSUIDATABLOCK*>(call.first);
    if (block == nullptr || block->pbData == nullptr || block->cbData == 0)
    {
        return static_cast<LONG_PTR>(kept.size());
    }
    const std::size_t size = std::min<std::size_t>(kept.size(), block->cbData);
    std::memcpy(block->pbData, kept.data(), size);
    return static_cast<LONG_PTR>(size);
}

} // namespace tsypr::compstui
