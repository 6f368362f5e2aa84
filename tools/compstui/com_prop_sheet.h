// The function through which describers of pages and the pages themselves talk to their property sheet.
#ifndef TESSARY_TOOLS_COMPSTUI_COM_PROP_SHEET_H
#define TESSARY_TOOLS_COMPSTUI_COM_PROP_SHEET_H

#include "tools/compstui/node.h"

namespace tsypr::compstui
{

// As Microsoft documents PFNCOMPROPSHEET and its function codes. A caller's fault is reported and answered with the
// failure that is documented for the code.
LONG_PTR CALLBACK ComPropSheet(HANDLE hComPropSheet, UINT function, LPARAM lParam1, LPARAM lParam2) noexcept;

// One call of it, the group found.
struct Call
{
    Node& group;
    const char* name; // of the function code
    LPARAM first;
    LPARAM second;
};

// The node of a handle given as a parameter, if it is in the group. Otherwise null, and the fault is reported.
Node* FindMember(const Call& call, LPARAM handle) noexcept;

// Adding and removing pages (page_functions.cpp).
LONG_PTR AddPageHandle(const Call& call);
LONG_PTR AddPageA(const Call& call);
LONG_PTR AddPageW(const Call& call);
LONG_PTR AddFunctionA(const Call& call);
LONG_PTR AddFunctionW(const Call& call);
LONG_PTR RefuseItemPages(const Call& call);
LONG_PTR InsertPagesA(const Call& call);
LONG_PTR InsertPagesW(const Call& call);
LONG_PTR DeletePages(const Call& call);

// Asking about the sheet and changing it (sheet_functions.cpp).
LONG_PTR SetStartPage(const Call& call);
LONG_PTR CountPages(const Call& call);
LONG_PTR ListPages(const Call& call);
LONG_PTR SetResult(const Call& call);
LONG_PTR SetTitleA(const Call& call);
LONG_PTR SetTitleW(const Call& call);
LONG_PTR GetFunctionIcon(const Call& call);
LONG_PTR SetActivationContext(const Call& call);
LONG_PTR IgnoreApply(const Call& call);
LONG_PTR SetHiddenOptions(const Call& call);

// What the interface keeps for its callers (resource_functions.cpp).
LONG_PTR LoadCpsuiStringA(const Call& call);
LONG_PTR LoadCpsuiStringW(const Call& call);
LONG_PTR LoadCpsuiIcon(const Call& call);
LONG_PTR SetDataBlock(const Call& call);
LONG_PTR QueryDataBlock(const Call& call);

} // namespace tsypr::compstui

#endif
