#include "tools/compstui/com_prop_sheet.h"

#include "tools/compstui/contract.h"

#include <array>

namespace tsypr::compstui
{
namespace
{

// Parameters that are documented as not used and zero.
enum class Unused
{
    None,
    Second,
    Both
};

struct Function
{
    const char* name;
    LONG_PTR (*handler)(const Call& call);
    Unused unused = Unused::None;
    LONG_PTR failure = 0;
};

LONG_PTR Unsupported(const Call& call)
{
    ReportUnsupported(call.name);
    return 0;
}

// By function code.
constexpr std::array<Function, MAX_CPSFUNC_INDEX + 1> kFunctions = {{
    {"CPSFUNC_ADD_HPROPSHEETPAGE", AddPageHandle, Unused::Second},
    {"CPSFUNC_ADD_PROPSHEETPAGEW", AddPageW, Unused::Second},
    {"CPSFUNC_ADD_PCOMPROPSHEETUIA", RefuseItemPages},
    {"CPSFUNC_ADD_PCOMPROPSHEETUIW", RefuseItemPages},
    {"CPSFUNC_ADD_PFNPROPSHEETUIA", AddFunctionA},
    {"CPSFUNC_ADD_PFNPROPSHEETUIW", AddFunctionW},
    {"CPSFUNC_DELETE_HCOMPROPSHEET", DeletePages, Unused::Second},
    {"CPSFUNC_SET_HSTARTPAGE", SetStartPage},
    {"CPSFUNC_GET_PAGECOUNT", CountPages, Unused::Both},
    {"CPSFUNC_SET_RESULT", SetResult, Unused::None, -1},
    {"CPSFUNC_GET_HPSUIPAGES", ListPages},
    {"CPSFUNC_LOAD_CPSUI_STRINGA", LoadCpsuiStringA},
    {"CPSFUNC_LOAD_CPSUI_STRINGW", LoadCpsuiStringW},
    {"CPSFUNC_LOAD_CPSUI_ICON", LoadCpsuiIcon},
    {"CPSFUNC_GET_PFNPROPSHEETUI_ICON", GetFunctionIcon},
    {"CPSFUNC_ADD_PROPSHEETPAGEA", AddPageA, Unused::Second},
    {"CPSFUNC_INSERT_PSUIPAGEA", InsertPagesA},
    {"CPSFUNC_INSERT_PSUIPAGEW", InsertPagesW},
    {"CPSFUNC_SET_PSUIPAGE_TITLEA", SetTitleA},
    {"CPSFUNC_SET_PSUIPAGE_TITLEW", SetTitleW},
    {"CPSFUNC_SET_PSUIPAGE_ICON", Unsupported},
    {"CPSFUNC_SET_DATABLOCK", SetDataBlock},
    {"CPSFUNC_QUERY_DATABLOCK", QueryDataBlock},
    {"CPSFUNC_SET_DMPUB_HIDEBITS", SetHiddenOptions, Unused::Second},
    {"CPSFUNC_IGNORE_CPSUI_PSN_APPLY", IgnoreApply},
    {"CPSFUNC_DO_APPLY_CPSUI", Unsupported},
    {"CPSFUNC_SET_FUSION_CONTEXT", SetActivationContext, Unused::Second},
}};

bool KeepsUnusedZero(const Function& function, LPARAM first, LPARAM second) noexcept
{
    const bool kept =
        (function.unused != Unused::Both || first == 0) && (function.unused == Unused::None || second == 0);
    if (!kept)
    {
        ReportFault(function.name, "a parameter that is not used is not zero");
    }
    return kept;
}

LONG_PTR CallHandler(const Function& function, Node& group, LPARAM first, LPARAM second) noexcept
{
    try
    {
        return function.handler({group, function.name, first, second});
    }
    catch (const std::exception&)
    {
        ReportUnsupported("not enough memory");
        return function.failure;
    }
}

} // namespace

Node* FindMember(const Call& call, LPARAM handle) noexcept
{
    Node* node = FindNode(reinterpret_cast<HANDLE>(handle), call.name);
    if (node != nullptr && !IsWithin(*node, call.group))
    {
        ReportFault(call.name, "the page does not belong to the group");
        return nullptr;
    }
    return node;
}

LONG_PTR CALLBACK ComPropSheet(HANDLE hComPropSheet, UINT function, LPARAM lParam1, LPARAM lParam2) noexcept
{
    if (function >= kFunctions.size())
    {
        ReportFault("ComPropSheet", "there is no such function code");
        return 0;
    }
    const Function& asked = kFunctions[function];
    Node* group = FindNode(hComPropSheet, asked.name);
    if (group == nullptr)
    {
        return asked.failure;
    }
    if (!group->IsGroup())
    {
        ReportFault(asked.name, "hComPropSheet is a page and not a group");
        return asked.failure;
    }
    return KeepsUnusedZero(asked, lParam1, lParam2) ? CallHandler(asked, *group, lParam1, lParam2) : asked.failure;
}

} // namespace tsypr::compstui
