#include "watermark/font_dialog.h"

#include "module/log.h"

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
    const auto chooseFont = library != nullptr ? reinterpret_cast<decltype(&ChooseFontW)>(reinterpret_cast<void*>(
                                                     GetProcAddress(library.get(), "ChooseFontW")))
                                               : nullptr;
    if (chooseFont == nullptr)
    {
        LogError("%s, there is no font dialog: %d.\n", "ShowFontDialog", static_cast<int>(GetLastError()));
        return FALSE;
    }
    return chooseFont(&options);
}

} // namespace tsypr
