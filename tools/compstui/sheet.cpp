#include "tools/compstui/sheet.h"

#include "tools/compstui/contract.h"
#include "tools/compstui/sheet_window.h"

#include <algorithm>

namespace tsypr::compstui
{
namespace
{

thread_local Sheet* t_showing = nullptr;

// Makes a sheet the one that the thread shows, for a scope.
class ShowingScope
{
public:
    explicit ShowingScope(Sheet& sheet) noexcept : m_outer(t_showing)
    {
        t_showing = &sheet;
    }
    ~ShowingScope()
    {
        t_showing = m_outer;
    }
    ShowingScope(const ShowingScope&) = delete;
    ShowingScope& operator=(const ShowingScope&) = delete;

private:
    Sheet* m_outer;
};

} // namespace

Sheet::Sheet(HWND owner, PFNPROPSHEETUI function, LPARAM lParam, bool unicode)
    : m_owner(owner), m_lParam(lParam), m_root(std::make_unique<Node>(*this, nullptr))
{
    SetFunction(*m_root, function, lParam, unicode);
}

Sheet* Sheet::Showing() noexcept
{
    return t_showing;
}

DWORD Sheet::Result() const noexcept
{
    return static_cast<DWORD>(m_root->function->info.Result);
}

LONG Sheet::Run()
{
    CallFunction(*m_root, kReasonBeforeInit, m_lParam);
    const LONG described = Describe();
    const LONG answer = described == CPSUI_OK ? Show() : described;
    // The window's end is also that of its pages.
    if (m_state == State::Describing)
    {
        for (Node* page : PagesOf(*m_root))
        {
            DestroyPropertySheetPage(page->page);
        }
    }
    m_state = State::Ended;
    CallDestroy(*m_root, m_closedByUser ? 1 : 0);
    return answer;
}

LONG Sheet::Describe()
{
    if (CallFunction(*m_root, PROPSHEETUI_REASON_INIT, m_lParam) < 1)
    {
        return CPSUI_CANCEL;
    }
    if (PagesOf(*m_root).empty())
    {
        ReportFault("PROPSHEETUI_REASON_INIT", "the function succeeded and the property sheet has no page");
        return ERR_CPSUI_NO_PROPSHEETPAGE;
    }
    return CPSUI_OK;
}

bool Sheet::AskHeader(PROPSHEETUI_INFO_HEADER& header)
{
    header.cbSize = sizeof(header);
    header.Flags = PSUIHDRF_PROPTITLE;
    header.hWndParent = m_owner;
    return CallFunction(*m_root, PROPSHEETUI_REASON_GET_INFO_HEADER, reinterpret_cast<LPARAM>(&header)) >= 1;
}

LONG Sheet::Show()
{
    PROPSHEETUI_INFO_HEADER header = {};
    if (!AskHeader(header))
    {
        return CPSUI_CANCEL;
    }
    std::vector<HPROPSHEETPAGE> pages;
    for (const Node* page : PagesOf(*m_root))
    {
        pages.push_back(page->page);
    }
    const bool unicode = (m_root->function->info.Flags & PSUIINFO_UNICODE) != 0;
    m_state = State::Showing;
    const ShowingScope scope(*this);
    const INT_PTR closed = ShowSheetWindow(header, unicode, pages, StartIndex());
    m_window = nullptr;
    if (closed < 0)
    {
        return ERR_CPSUI_GETLASTERROR;
    }
    m_closedByUser = true;
    switch (closed)
    {
    case ID_PSREBOOTSYSTEM:
        return CPSUI_REBOOTSYSTEM;
    case ID_PSRESTARTWINDOWS:
        return CPSUI_RESTARTWINDOWS;
    default:
        return CPSUI_OK;
    }
}

int Sheet::IndexOf(const Node& page) noexcept
{
    const std::vector<Node*> pages = PagesOf(*m_root);
    const auto found = std::ranges::find(pages, &page);
    return found != pages.end() ? static_cast<int>(found - pages.begin()) : -1;
}

int Sheet::StartIndex() noexcept
{
    const std::vector<Node*> pages = PagesOf(*m_root);
    const auto found = std::ranges::find(pages, m_startPage, &Node::handle);
    return found != pages.end() ? static_cast<int>(found - pages.begin()) : 0;
}

std::size_t Sheet::Remove(Node& node)
{
    const std::vector<Node*> pages = PagesOf(node);
    for (Node* page : pages)
    {
        if (m_window != nullptr)
        {
            SendMessageW(
                m_window, PSM_REMOVEPAGE, static_cast<WPARAM>(IndexOf(*page)), reinterpret_cast<LPARAM>(page->page));
        }
        else
        {
            DestroyPropertySheetPage(page->page);
        }
        // Its neighbours have moved up; as a group without children it has no tab.
        page->page = nullptr;
    }
    CallDestroy(node, 0);
    auto& siblings = node.parent->children;
    std::erase_if(siblings, [&node](const auto& child) { return child.get() == &node; });
    return pages.size();
}

} // namespace tsypr::compstui
