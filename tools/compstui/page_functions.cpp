#include "tools/compstui/com_prop_sheet.h"
#include "tools/compstui/contract.h"
#include "tools/compstui/sheet.h"

#include <algorithm>
#include <cstring>

namespace tsypr::compstui
{
namespace
{

// Where a new node goes among the children of a group.
struct Place
{
    Node* group;
    std::size_t position;
};

Place LastOf(Node& group) noexcept
{
    return {&group, group.children.size()};
}

LONG_PTR HandleValue(const Node& node) noexcept
{
    return reinterpret_cast<LONG_PTR>(node.handle);
}

Node& Attach(Place place)
{
    auto child = std::make_unique<Node>(place.group->sheet, place.group);
    Node& node = *child;
    const auto position = static_cast<std::ptrdiff_t>(place.position);
    place.group->children.insert(place.group->children.begin() + position, std::move(child));
    return node;
}

LONG_PTR AttachPage(const Call& call, Place place, HPROPSHEETPAGE page)
{
    Sheet& sheet = call.group.sheet;
    if (PagesOf(sheet.Root()).size() >= kMaxPages)
    {
        ReportFault(call.name, "a property sheet takes no more than 100 pages");
        return 0;
    }
    Node& node = Attach(place);
    node.page = page;
    if (sheet.Window() != nullptr)
    {
        SendMessageW(
            sheet.Window(), PSM_INSERTPAGE, static_cast<WPARAM>(sheet.IndexOf(node)), reinterpret_cast<LPARAM>(page));
    }
    return HandleValue(node);
}

LONG_PTR AddCreatedPage(const Call& call, Place place, LPARAM page)
{
    if (page == 0)
    {
        ReportFault(call.name, "there is no page");
        return 0;
    }
    return call.group.sheet.TakesPages() ? AttachPage(call, place, reinterpret_cast<HPROPSHEETPAGE>(page)) : 0;
}

bool HasTemplate(const PROPSHEETPAGEW& page, bool unicode) noexcept
{
    if ((page.dwFlags & PSP_DLGINDIRECT) != 0)
    {
        return page.pResource != nullptr;
    }
    // A name that is a number means the same in both forms.
    const bool wide = unicode || IS_INTRESOURCE(page.pszTemplate);
    const auto* narrowName = reinterpret_cast<const char*>(page.pszTemplate);
    return page.pszTemplate != nullptr &&
           (wide ? FindResourceW(page.hInstance, page.pszTemplate, reinterpret_cast<LPCWSTR>(RT_DIALOG))
                 : FindResourceA(page.hInstance, narrowName, reinterpret_cast<LPCSTR>(RT_DIALOG))) != nullptr;
}

const char* FaultOf(const PROPSHEETPAGEW* page, bool unicode) noexcept
{
    if (page == nullptr)
    {
        return "there is no PROPSHEETPAGE";
    }
    if (page->dwSize < PROPSHEETPAGEW_V1_SIZE)
    {
        return "dwSize of PROPSHEETPAGE is too small";
    }
    if (page->pfnDlgProc == nullptr)
    {
        return "the page has no dialog procedure";
    }
    return HasTemplate(*page, unicode) ? nullptr : "the page's dialog template does not exist";
}

HANDLE ContextFor(const Node& group) noexcept
{
    const Node* place = &group;
    while (place != nullptr && place->context == nullptr)
    {
        place = place->parent;
    }
    return place != nullptr ? place->context.get() : nullptr;
}

HPROPSHEETPAGE CreateFrom(const PROPSHEETPAGEW& page, bool unicode) noexcept
{
    // The two forms of the record differ in what their texts point to only.
    return unicode ? CreatePropertySheetPageW(&page)
                   : CreatePropertySheetPageA(reinterpret_cast<const PROPSHEETPAGEA*>(&page));
}

HPROPSHEETPAGE CreatePage(const PROPSHEETPAGEW& page, bool unicode, HANDLE context)
{
    if (context == nullptr || (page.dwFlags & PSP_USEFUSIONCONTEXT) != 0)
    {
        return CreateFrom(page, unicode);
    }
    std::vector<BYTE> bytes(std::max<std::size_t>(page.dwSize, sizeof(page)));
    std::memcpy(bytes.data(), &page, page.dwSize);
    auto& copy = *reinterpret_cast<PROPSHEETPAGEW*>(bytes.data());
    copy.dwSize = static_cast<DWORD>(bytes.size());
    copy.dwFlags |= PSP_USEFUSIONCONTEXT;
    copy.hActCtx = context;
    return CreateFrom(copy, unicode);
}

LONG_PTR AddPage(const Call& call, Place place, LPARAM given, bool unicode)
{
    const auto* page = reinterpret_cast<const PROPSHEETPAGEW*>(given);
    if (const char* fault = FaultOf(page, unicode))
    {
        ReportFault(call.name, fault);
        return 0;
    }
    if (!call.group.sheet.TakesPages())
    {
        return 0;
    }
    const HPROPSHEETPAGE created = CreatePage(*page, unicode, ContextFor(*place.group));
    if (created == nullptr)
    {
        ReportFault(call.name, "the common controls refuse the page");
        return 0;
    }
    const LONG_PTR handle = AttachPage(call, place, created);
    if (handle == 0)
    {
        DestroyPropertySheetPage(created);
    }
    return handle;
}

LONG_PTR AddFunction(const Call& call, Place place, LPARAM given, LPARAM lParam, bool unicode)
{
    const auto function = reinterpret_cast<PFNPROPSHEETUI>(given);
    if (function == nullptr)
    {
        ReportFault(call.name, "there is no function");
        return 0;
    }
    Node& node = Attach(place);
    SetFunction(node, function, lParam, unicode);
    const LONG answer = CallFunction(node, PROPSHEETUI_REASON_INIT, lParam);
    const bool empty = PagesOf(node).empty();
    if (answer >= 1 && !empty)
    {
        return HandleValue(node);
    }
    if (answer >= 1)
    {
        ReportFault("PROPSHEETUI_REASON_INIT", "the function succeeded and added no page");
    }
    call.group.sheet.Remove(node);
    return 0;
}

bool FindPlace(const Call& call, const INSERTPSUIPAGE_INFO& info, Place& place)
{
    place = LastOf(call.group);
    switch (info.Mode)
    {
    case INSPSUIPAGE_MODE_FIRST_CHILD:
        place.position = 0;
        return true;
    case INSPSUIPAGE_MODE_LAST_CHILD:
        return true;
    case INSPSUIPAGE_MODE_INDEX:
        place.position = std::min<std::size_t>(LOWORD(call.first), place.position);
        return true;
    case INSPSUIPAGE_MODE_BEFORE:
    case INSPSUIPAGE_MODE_AFTER:
        break;
    default:
        ReportFault(call.name, "there is no such Mode");
        return false;
    }
    const Node* neighbour = FindMember(call, call.first);
    if (neighbour == nullptr || neighbour->parent == nullptr)
    {
        return false;
    }
    const auto& siblings = neighbour->parent->children;
    const auto found = std::ranges::find(siblings, neighbour, &std::unique_ptr<Node>::get);
    place = {neighbour->parent, static_cast<std::size_t>(found - siblings.begin())};
    place.position += info.Mode == INSPSUIPAGE_MODE_AFTER ? 1 : 0;
    return true;
}

LONG_PTR InsertPages(const Call& call, bool unicode)
{
    const auto* info = reinterpret_cast<const INSERTPSUIPAGE_INFO*>(call.second);
    if (info == nullptr || info->cbSize != sizeof(*info))
    {
        ReportFault(call.name, "there is no INSERTPSUIPAGE_INFO, or its cbSize is wrong");
        return 0;
    }
    Place place = {};
    if (!FindPlace(call, *info, place))
    {
        return 0;
    }
    const auto data1 = static_cast<LPARAM>(info->dwData1);
    switch (info->Type)
    {
    case PSUIPAGEINSERT_GROUP_PARENT:
        return HandleValue(Attach(place));
    case PSUIPAGEINSERT_PFNPROPSHEETUI:
        return AddFunction(call, place, data1, static_cast<LPARAM>(info->dwData2), unicode);
    case PSUIPAGEINSERT_PROPSHEETPAGE:
        return AddPage(call, place, data1, unicode);
    case PSUIPAGEINSERT_HPROPSHEETPAGE:
        return AddCreatedPage(call, place, data1);
    default:
        ReportUnsupported(call.name);
        return 0;
    }
}

// A function cannot be taken away while it runs.
bool IsRunning(const Node& node) noexcept
{
    return (node.function != nullptr && node.function->running > 0) ||
           std::ranges::any_of(node.children, [](const auto& child) { return IsRunning(*child); });
}

} // namespace

LONG_PTR AddPageHandle(const Call& call)
{
    return AddCreatedPage(call, LastOf(call.group), call.first);
}

LONG_PTR AddPageA(const Call& call)
{
    return AddPage(call, LastOf(call.group), call.first, false);
}

LONG_PTR AddPageW(const Call& call)
{
    return AddPage(call, LastOf(call.group), call.first, true);
}

LONG_PTR AddFunctionA(const Call& call)
{
    return AddFunction(call, LastOf(call.group), call.first, call.second, false);
}

LONG_PTR AddFunctionW(const Call& call)
{
    return AddFunction(call, LastOf(call.group), call.first, call.second, true);
}

LONG_PTR RefuseItemPages(const Call& call)
{
    ReportUnsupported(call.name);
    if (call.second != 0)
    {
        *reinterpret_cast<LONG*>(call.second) = ERR_CPSUI_FUNCTION_NOT_IMPLEMENTED;
    }
    return 0;
}

LONG_PTR InsertPagesA(const Call& call)
{
    return InsertPages(call, false);
}

LONG_PTR InsertPagesW(const Call& call)
{
    return InsertPages(call, true);
}

LONG_PTR DeletePages(const Call& call)
{
    Node* node = FindMember(call, call.first);
    if (node == nullptr)
    {
        return 0;
    }
    if (node->parent == nullptr || IsRunning(*node))
    {
        ReportFault(call.name, "a group cannot be deleted while its function runs");
        return 0;
    }
    return static_cast<LONG_PTR>(node->sheet.Remove(*node));
}

} // namespace tsypr::compstui
