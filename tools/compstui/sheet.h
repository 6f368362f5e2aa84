// One property sheet, from the first call of the function that describes it to the last.
#ifndef TESSARY_TOOLS_COMPSTUI_SHEET_H
#define TESSARY_TOOLS_COMPSTUI_SHEET_H

#include "tools/compstui/node.h"

#include <cstddef>
#include <map>
#include <string>

namespace tsypr::compstui
{

// As many pages as the common controls take.
constexpr std::size_t kMaxPages = MAXPROPPAGES;

class Sheet
{
public:
    // The sheet's owner, its first function with that function's parameter, and whether both speak Unicode.
    Sheet(HWND owner, PFNPROPSHEETUI function, LPARAM lParam, bool unicode);

    // Lets the functions describe the pages, shows the sheet until the user closes it, and ends all functions. Returns
    // what CommonPropertySheetUI returns.
    LONG Run();

    // The value that the first function has left.
    DWORD Result() const noexcept;

    // Whether the user saw the sheet and closed it.
    bool WasShown() const noexcept
    {
        return m_closedByUser;
    }

    // The result that was last reported to the first function, whatever that made of it.
    LRESULT Reported() const noexcept
    {
        return m_reported;
    }
    void SetReported(LRESULT result) noexcept
    {
        m_reported = result;
    }

    Node& Root() noexcept
    {
        return *m_root;
    }

    // The window, while pages can be added to it, removed and chosen; otherwise null.
    HWND Window() const noexcept
    {
        return m_window;
    }

    // Whether pages can be added: until the window is being made, and once it is there.
    bool TakesPages() const noexcept
    {
        return m_state == State::Describing || m_window != nullptr;
    }

    // The tab of a page, or -1.
    int IndexOf(const Node& page) noexcept;

    // Takes the window's page away with everything under the node, and the node out of the tree. Functions under it are
    // told. Returns the number of pages that are gone.
    std::size_t Remove(Node& node);

    // The page on top when the sheet opens. It may be gone by then.
    void SetStartPage(const Node& page) noexcept
    {
        m_startPage = page.handle;
    }

    std::map<DWORD, std::string>& DataBlocks() noexcept
    {
        return m_dataBlocks;
    }

    void SetWindow(HWND window) noexcept
    {
        m_window = window;
    }

    // The sheet whose window the calling thread is showing, the innermost where one opened another, or null.
    static Sheet* Showing() noexcept;

private:
    enum class State
    {
        Describing,
        Showing,
        Ended
    };

    LONG Describe();
    LONG Show();
    bool AskHeader(PROPSHEETUI_INFO_HEADER& header);
    int StartIndex() noexcept;

    HWND m_owner;
    LPARAM m_lParam;
    std::unique_ptr<Node> m_root;
    HANDLE m_startPage = nullptr;
    HWND m_window = nullptr;
    State m_state = State::Describing;
    bool m_closedByUser = false;
    LRESULT m_reported = CPSUI_CANCEL;
    std::map<DWORD, std::string> m_dataBlocks;
};

} // namespace tsypr::compstui

#endif
