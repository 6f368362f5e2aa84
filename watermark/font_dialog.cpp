#include "watermark/font_dialog.h"

#include <memory>
#include <type_traits>

namespace tsypr
{
namespace
{

struct LibraryDeleter
{
    void operator()(HMODULE library) const noexcept
    {
        FreeLibrary(library);
    }
};

} // namespace

BOOL ShowFontDialog(CHOOSEFONTW& options) noexcept
{
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryDeleter> library(
        LoadLibraryExW(L"comdlg32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
    if (library == nullptr)
    {
        return FALSE;
    }
    const auto chooseFont =
        reinterpret_cast<decltype(&ChooseFontW)>(reinterpret_cast<void*>(GetProcAddress(library.get(), "ChooseFontW")));
    return chooseFont != nullptr ? chooseFont(&options) : FALSE;
}

} // namespace tsypr
