// Does what a user would do in the property sheet that another program shows, step by step, for scripts/demo.sh:
// preferences_user STEP ...
//   page=N          the page with this position, from 1
//   picture=FILE    a bitmap file of the whole window
//   choose=ID:TEXT  the entry with this text in the page's list ID
//   click=ID        the page's button, choice or check box ID
//   press=ID        the sheet's button ID: 1 for OK, 2 for Cancel; waits until the sheet is gone
#include "tools/page_pictures/window_picture.h"
#include "tools/preferences_user/sheet_user.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>

namespace
{

using namespace tsypr::preferences_user;

// Until a window has drawn what has changed.
constexpr std::chrono::milliseconds kDrawing{300};

bool TakePicture(HWND sheet, const std::wstring& file)
{
    std::this_thread::sleep_for(kDrawing);
    return tsypr::pictures::SaveWindowPicture(sheet, file);
}

bool Do(HWND sheet, std::wstring_view verb, const std::wstring& object)
{
    const auto number = static_cast<int>(wcstol(object.c_str(), nullptr, 10));
    if (verb == L"page")
    {
        return ShowPage(sheet, number - 1);
    }
    if (verb == L"picture")
    {
        return TakePicture(sheet, object);
    }
    if (verb == L"choose")
    {
        const size_t colon = object.find(L':');
        return colon != std::wstring::npos && Choose(PageControl(sheet, number), object.substr(colon + 1));
    }
    if (verb == L"click")
    {
        return Click(PageControl(sheet, number));
    }
    return verb == L"press" && CloseWith(sheet, number);
}

} // namespace

int wmain(int count, wchar_t** arguments)
{
    HWND sheet = nullptr;
    if (!WaitUntil([&sheet] { return (sheet = FindSheet()) != nullptr; }))
    {
        std::fputs("preferences_user: no property sheet\n", stderr);
        return 2;
    }
    for (int i = 1; i < count; ++i)
    {
        const std::wstring step = arguments[i];
        const size_t equals = std::min(step.find(L'='), step.size());
        if (!Do(sheet, step.substr(0, equals), equals < step.size() ? step.substr(equals + 1) : L""))
        {
            std::fprintf(stderr, "preferences_user: cannot do %ls\n", arguments[i]);
            return 1;
        }
    }
    return 0;
}
