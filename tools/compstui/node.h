// A property sheet as a tree: groups of pages, and the pages. Every group and page has a handle of its own.
#ifndef TESSARY_TOOLS_COMPSTUI_NODE_H
#define TESSARY_TOOLS_COMPSTUI_NODE_H

#include <windows.h>

#include <prsht.h>

#include <compstui.h>

#include <memory>
#include <vector>

namespace tsypr::compstui
{

// The first call of the function given to CommonPropertySheetUI; the mingw-w64 headers lack it.
constexpr WORD kReasonBeforeInit = 5;

class Sheet;

struct ReleaseActivationContext
{
    void operator()(void* context) const noexcept
    {
        ReleaseActCtx(context);
    }
};
using ActivationContext = std::unique_ptr<void, ReleaseActivationContext>;

// A function that describes a group of pages, and what it is told at each call.
struct PageFunction
{
    PFNPROPSHEETUI address = nullptr;
    PROPSHEETUI_INFO info = {};
    unsigned running = 0; // calls that have not returned
};

struct Node
{
    // Takes part in the handle table from here to its end.
    Node(Sheet& itsSheet, Node* itsParent);
    ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    bool IsGroup() const noexcept
    {
        return page == nullptr;
    }

    Sheet& sheet;
    Node* const parent; // null for the sheet's first group
    const HANDLE handle;
    HPROPSHEETPAGE page = nullptr;          // of a page only
    std::unique_ptr<PageFunction> function; // of a group that a function describes
    ActivationContext context;              // of a group: for its pages
    std::vector<std::unique_ptr<Node>> children;
};

// The node of a handle, if it belongs to a sheet of the calling thread. Otherwise null, and the fault of the function
// is reported.
Node* FindNode(HANDLE handle, const char* function) noexcept;

// Makes the node a group of the given function.
void SetFunction(Node& group, PFNPROPSHEETUI address, LPARAM lParam, bool unicode);

// Calls the group's function and returns its answer. What the function may not change is checked afterwards.
LONG CallFunction(Node& group, WORD reason, LPARAM lParam) noexcept;

// Tells the functions of the group, the inner ones first, that it is all over.
void CallDestroy(Node& node, LPARAM lParam) noexcept;

// The pages under the node in the order of their tabs.
std::vector<Node*> PagesOf(Node& node);

// Whether the node is the other one or somewhere under it.
bool IsWithin(const Node& node, const Node& other) noexcept;

} // namespace tsypr::compstui

#endif
