#include "tools/compstui/node.h"

#include "tools/compstui/com_prop_sheet.h"
#include "tools/compstui/contract.h"

#include <mutex>
#include <unordered_map>

namespace tsypr::compstui
{
namespace
{

struct Entry
{
    Node* node;
    DWORD thread;
};

// Handles are numbers that never come again, so that one kept too long is noticed.
class HandleTable
{
public:
    HANDLE Add(Node& node)
    {
        const std::lock_guard lock(m_mutex);
        const auto handle = reinterpret_cast<HANDLE>(m_next);
        m_entries.emplace(handle, Entry{&node, GetCurrentThreadId()});
        m_next += 4;
        return handle;
    }

    void Remove(HANDLE handle) noexcept
    {
        const std::lock_guard lock(m_mutex);
        m_entries.erase(handle);
    }

    Entry Find(HANDLE handle) noexcept
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_entries.find(handle);
        return found != m_entries.end() ? found->second : Entry{};
    }

private:
    std::mutex m_mutex;
    std::unordered_map<HANDLE, Entry> m_entries;
    uintptr_t m_next = 0x10000;
};

HandleTable& Handles()
{
    static HandleTable table;
    return table;
}

const char* ReasonName(WORD reason) noexcept
{
    switch (reason)
    {
    case PROPSHEETUI_REASON_INIT:
        return "PROPSHEETUI_REASON_INIT";
    case PROPSHEETUI_REASON_GET_INFO_HEADER:
        return "PROPSHEETUI_REASON_GET_INFO_HEADER";
    case PROPSHEETUI_REASON_DESTROY:
        return "PROPSHEETUI_REASON_DESTROY";
    case PROPSHEETUI_REASON_SET_RESULT:
        return "PROPSHEETUI_REASON_SET_RESULT";
    case PROPSHEETUI_REASON_GET_ICON:
        return "PROPSHEETUI_REASON_GET_ICON";
    default:
        return "PROPSHEETUI_REASON_BEFORE_INIT";
    }
}

// Only these two members are the function's own.
void RestoreInfo(PROPSHEETUI_INFO& info, const PROPSHEETUI_INFO& supplied) noexcept
{
    const bool same = info.cbSize == supplied.cbSize && info.Version == supplied.Version &&
                      info.Flags == supplied.Flags && info.Reason == supplied.Reason &&
                      info.hComPropSheet == supplied.hComPropSheet &&
                      info.pfnComPropSheet == supplied.pfnComPropSheet && info.lParamInit == supplied.lParamInit;
    if (same)
    {
        return;
    }
    ReportFault(ReasonName(supplied.Reason), "the function changed a member of PROPSHEETUI_INFO that is not its own");
    const PROPSHEETUI_INFO changed = info;
    info = supplied;
    info.UserData = changed.UserData;
    info.Result = changed.Result;
}

void AppendPages(Node& node, std::vector<Node*>& pages)
{
    if (!node.IsGroup())
    {
        pages.push_back(&node);
    }
    for (const auto& child : node.children)
    {
        AppendPages(*child, pages);
    }
}

} // namespace

Node::Node(Sheet& itsSheet, Node* itsParent) : sheet(itsSheet), parent(itsParent), handle(Handles().Add(*this)) {}

Node::~Node()
{
    children.clear();
    Handles().Remove(handle);
}

Node* FindNode(HANDLE handle, const char* function) noexcept
{
    const Entry entry = Handles().Find(handle);
    if (entry.node == nullptr)
    {
        ReportFault(function, "a handle is not one of an open property sheet");
        return nullptr;
    }
    if (entry.thread != GetCurrentThreadId())
    {
        ReportFault(function, "called on another thread than the property sheet's");
        return nullptr;
    }
    return entry.node;
}

void SetFunction(Node& group, PFNPROPSHEETUI address, LPARAM lParam, bool unicode)
{
    group.function = std::make_unique<PageFunction>();
    group.function->address = address;
    PROPSHEETUI_INFO& info = group.function->info;
    info.cbSize = sizeof(info);
    info.Version = PROPSHEETUI_INFO_VERSION;
    info.Flags = unicode ? PSUIINFO_UNICODE : 0;
    info.hComPropSheet = group.handle;
    info.pfnComPropSheet = ComPropSheet;
    info.lParamInit = lParam;
}

LONG CallFunction(Node& group, WORD reason, LPARAM lParam) noexcept
{
    PageFunction& function = *group.function;
    // A function that calls ComPropSheet may be called again before it has returned.
    const WORD outerReason = function.info.Reason;
    function.info.Reason = reason;
    const PROPSHEETUI_INFO supplied = function.info;
    ++function.running;
    const LONG answer = function.address(&function.info, lParam);
    --function.running;
    RestoreInfo(function.info, supplied);
    function.info.Reason = outerReason;
    return answer;
}

void CallDestroy(Node& node, LPARAM lParam) noexcept
{
    for (const auto& child : node.children)
    {
        CallDestroy(*child, lParam);
    }
    if (node.function != nullptr)
    {
        CallFunction(node, PROPSHEETUI_REASON_DESTROY, lParam);
    }
}

std::vector<Node*> PagesOf(Node& node)
{
    std::vector<Node*> pages;
    AppendPages(node, pages);
    return pages;
}

bool IsWithin(const Node& node, const Node& other) noexcept
{
    const Node* place = &node;
    while (place != nullptr && place != &other)
    {
        place = place->parent;
    }
    return place != nullptr;
}

} // namespace tsypr::compstui
