#include "tools/compstui/com_prop_sheet.h"
#include "tools/compstui/contract.h"
#include "tools/compstui/sheet.h"
#include "tools/compstui/sheet_window.h"

#include <commctrl.h>

#include <algorithm>

namespace tsypr::compstui
{
namespace
{

// The page that a handle means: itself, or the one at the index in a group.
Node* PageAt(const Call& call, Node& node)
{
    const std::vector<Node*> pages = PagesOf(node);
    const auto index = node.IsGroup() ? static_cast<std::size_t>(call.second) : 0;
    if (index >= pages.size())
    {
        ReportFault(call.name, "the group has no page of that index");
        return nullptr;
    }
    return pages[index];
}

LONG_PTR SetTitle(const Call& call, const std::wstring& title)
{
    const Node* page = FindMember(call, call.first);
    if (page == nullptr || page->IsGroup() || page->sheet.Window() == nullptr)
    {
        return 0;
    }
    const auto tabs = reinterpret_cast<HWND>(SendMessageW(page->sheet.Window(), PSM_GETTABCONTROL, 0, 0));
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = const_cast<wchar_t*>(title.c_str());
    const auto index = static_cast<WPARAM>(page->sheet.IndexOf(*page));
    return SendMessageW(tabs, TCM_SETITEMW, index, reinterpret_cast<LPARAM>(&item)) != FALSE ? 1 : 0;
}

bool HasTitle(const Call& call) noexcept
{
    if (call.second == 0)
    {
        ReportFault(call.name, "there is no title");
    }
    return call.second != 0;
}

} // namespace

LONG_PTR SetStartPage(const Call& call)
{
    Node* node = FindMember(call, call.first);
    const Node* page = node != nullptr ? PageAt(call, *node) : nullptr;
    if (page == nullptr)
    {
        return 0;
    }
    Sheet& sheet = call.group.sheet;
    sheet.SetStartPage(*page);
    if (sheet.Window() != nullptr)
    {
        SendMessageW(sheet.Window(), PSM_SETCURSEL, static_cast<WPARAM>(sheet.IndexOf(*page)), 0);
    }
    return call.first;
}

LONG_PTR CountPages(const Call& call)
{
    return static_cast<LONG_PTR>(PagesOf(call.group).size());
}

LONG_PTR ListPages(const Call& call)
{
    auto* handles = reinterpret_cast<HANDLE*>(call.first);
    if (handles == nullptr || call.second < 0)
    {
        ReportFault(call.name, "there is no array");
        return 0;
    }
    const std::vector<Node*> pages = PagesOf(call.group);
    const std::size_t count = std::min(pages.size(), static_cast<std::size_t>(call.second));
    std::transform(pages.begin(),
                   pages.begin() + static_cast<std::ptrdiff_t>(count),
                   handles,
                   [](const Node* page) { return page->handle; });
    return static_cast<LONG_PTR>(count);
}

LONG_PTR SetResult(const Call& call)
{
    Node* node = &call.group;
    if (call.first != 0)
    {
        node = FindNode(reinterpret_cast<HANDLE>(call.first), call.name);
        if (node != nullptr && &node->sheet != &call.group.sheet)
        {
            ReportFault(call.name, "the page belongs to another property sheet");
            node = nullptr;
        }
    }
    if (node == nullptr)
    {
        return -1;
    }
    // The functions share one record, so that each can change the result that the next receives.
    SETRESULT_INFO info = {};
    info.cbSize = sizeof(info);
    info.hSetResult = node->handle;
    info.Result = call.second;
    LONG_PTR count = 0;
    LONG answer = 1;
    for (; node != nullptr && answer >= 1; node = node->parent)
    {
        if (node->function != nullptr)
        {
            ++count;
            if (node == &node->sheet.Root())
            {
                node->sheet.SetReported(info.Result);
            }
            answer = CallFunction(*node, PROPSHEETUI_REASON_SET_RESULT, reinterpret_cast<LPARAM>(&info));
        }
    }
    return count;
}

LONG_PTR SetTitleA(const Call& call)
{
    return HasTitle(call) ? SetTitle(call, Widen(reinterpret_cast<const char*>(call.second))) : 0;
}

LONG_PTR SetTitleW(const Call& call)
{
    return HasTitle(call) ? SetTitle(call, reinterpret_cast<const wchar_t*>(call.second)) : 0;
}

LONG_PTR GetFunctionIcon(const Call& call)
{
    Node* node = FindMember(call, call.first);
    if (node == nullptr)
    {
        return 0;
    }
    if (node->function == nullptr)
    {
        ReportFault(call.name, "no function describes these pages");
        return 0;
    }
    PROPSHEETUI_GETICON_INFO info = {};
    info.cbSize = sizeof(info);
    info.cxIcon = LOWORD(call.second);
    info.cyIcon = HIWORD(call.second);
    info.cxIcon = info.cxIcon != 0 ? info.cxIcon : static_cast<WORD>(GetSystemMetrics(SM_CXICON));
    info.cyIcon = info.cyIcon != 0 ? info.cyIcon : static_cast<WORD>(GetSystemMetrics(SM_CYICON));
    const LONG answer = CallFunction(*node, PROPSHEETUI_REASON_GET_ICON, reinterpret_cast<LPARAM>(&info));
    return answer >= 1 ? reinterpret_cast<LONG_PTR>(info.hIcon) : 0;
}

LONG_PTR SetActivationContext(const Call& call)
{
    const auto context = reinterpret_cast<HANDLE>(call.first);
    if (context == nullptr || context == INVALID_HANDLE_VALUE)
    {
        ReportFault(call.name, "there is no activation context");
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    AddRefActCtx(context);
    call.group.context.reset(context);
    return 1;
}

// The interface itself does nothing at PSN_APPLY with the kinds of pages that it takes here.
LONG_PTR IgnoreApply(const Call& call)
{
    return FindMember(call, call.first) != nullptr ? 1 : 0;
}

// The options are those of COMPROPSHEETUI pages, which are not taken here: none of them is ever seen.
LONG_PTR SetHiddenOptions(const Call& call)
{
    if (call.first == 0)
    {
        ReportFault(call.name, "there is no bit array");
    }
    return call.first;
}

} // namespace tsypr::compstui
