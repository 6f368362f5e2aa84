#include "ui/paper_lists.h"

#include "language/resource_ids.h"
#include "module/log.h"
#include "module/reg_utils.h"
#include "module/registry_keys.h"
#include "remote/capability_list.h"
#include "remote/driver_exports.h"
#include "ui/page_controls.h"
#include "ui/page_texts.h"

#include <cstdio>
#include <optional>

namespace tsypr
{
namespace
{

constexpr PageText kBlackWhite = {IDS_BLACK_WHITE, L"Black/White"};
constexpr PageText kColor = {IDS_COLOR, L"Color"};

// In the order of the DMRES_ values, from -1 downwards.
constexpr PageText kQualityTexts[] = {{IDS_QUALITY_DRAFT, L"DRAFT"},
                                      {IDS_QUALITY_LOW, L"LOW"},
                                      {IDS_QUALITY_MEDIUM, L"MEDIUM"},
                                      {IDS_QUALITY_HIGH, L"HIGH"}};
constexpr DWORD kQualityLevels = 4;

bool HasField(const DEVMODEW* dm, DWORD flag) noexcept
{
    return (DevModeField(dm, &DEVMODEW::dmFields) & flag) != 0;
}

// A list of names as the printer gives it; a name that fills its place has no terminator.
template <size_t Chars>
class NameList
{
public:
    NameList(const UIContext& context, uint16_t capability, const DEVMODEW* dm) noexcept
        : m_names(context.printerName, capability, dm, Chars * sizeof(wchar_t))
    {
    }

    // Puts the names into the list. Returns false, with the list disabled, when there are none; a failure is logged.
    bool Fill(const DropDownList& list, const char* function, const char* capability) const noexcept
    {
        if (!m_names.Read())
        {
            LogError("%s, failed to retrieve capabilities for %s.\n", function, capability);
        }
        if (m_names.Count() == 0)
        {
            list.Disable();
            return false;
        }
        for (size_t i = 0; i < m_names.Count(); ++i)
        {
            FixedText<Chars + 1> name = {};
            std::memcpy(name.text, m_names.template At<FixedText<Chars>>(i).text, Chars * sizeof(wchar_t));
            list.Add(name.text);
        }
        list.Enable();
        return true;
    }

private:
    CapabilityList m_names;
};

// The position of the context's paper source in the printer's bins; empty when they cannot be read.
std::optional<size_t> GetMatchedPaperSourceIndex(const UIContext& context, const DEVMODEW* dm) noexcept
{
    constexpr char kFunction[] = "GetMatchedPaperSourceIndex";
    const CapabilityList bins(context.printerName, DC_BINS, dm, sizeof(int16_t));
    if (!bins.Read())
    {
        LogError("%s, failed to retrieve capabilities for DC_BINS.\n", kFunction);
        return std::nullopt;
    }
    for (size_t i = 0; i < bins.Count(); ++i)
    {
        if (bins.At<int16_t>(i) == context.paperSource)
        {
            return i;
        }
    }
    LogVerbose("%s, no matched value in provided paper source: %d.\n", kFunction, context.paperSource);
    return 0;
}

bool IsColorLocked(const DEVMODEW* dm) noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(dm);
    return HasField(dm, DM_COLOR) && block != nullptr && (block->lockedSettings & kLockedColor) != 0;
}

// How many quality levels the administrator offers, from the poorest on.
DWORD OfferedQualityLevels() noexcept
{
    DWORD levels = kQualityLevels;
    if (RegUtils::ReadGPODwordValue("MaxDPILevel", kQualityLevels, &levels) && (levels == 0 || levels > kQualityLevels))
    {
        LogError("%s, invalid max DPI level GPO\n", "PopulateDPIs");
        levels = kQualityLevels;
    }
    return levels;
}

void FillQualityLevels(const DropDownList& list, const DEVMODEW* dm) noexcept
{
    const DWORD levels = OfferedQualityLevels();
    for (DWORD i = 0; i < levels; ++i)
    {
        list.Add(LoadPageText(kQualityTexts[i]).text);
    }
    list.Enable();
    const auto level = static_cast<DWORD>(-dm->dmPrintQuality);
    list.Select(std::min(level, levels) - 1);
}

// The first resolution that is the context's; the first of all when there is none.
size_t MatchedResolution(const CapabilityList& resolutions, const DEVMODEW* dm, const UIContext& context) noexcept
{
    const bool hasY = HasField(dm, DM_YRESOLUTION);
    for (size_t i = 0; HasField(dm, DM_PRINTQUALITY) && i < resolutions.Count(); ++i)
    {
        const auto one = resolutions.At<Resolution>(i);
        if (one.x == context.printQuality && (!hasY || one.y == context.yResolution))
        {
            return i;
        }
    }
    return 0;
}

void FillResolutions(const DropDownList& list, const DEVMODEW* dm, UIContext& context) noexcept
{
    const CapabilityList resolutions(context.printerName, DC_ENUMRESOLUTIONS, dm, sizeof(Resolution));
    if (!resolutions.Read())
    {
        LogError("%s, failed to retrieve capabilities for DC_ENUMRESOLUTIONS.\n", "PopulateDPIs");
    }
    if (resolutions.Count() == 0)
    {
        list.Disable();
        return;
    }
    for (size_t i = 0; i < resolutions.Count(); ++i)
    {
        const auto one = resolutions.At<Resolution>(i);
        wchar_t text[32];
        std::swprintf(text, std::size(text), L"%d x %d", one.x, one.y);
        list.Add(text);
    }
    list.Enable();
    const size_t selected = MatchedResolution(resolutions, dm, context);
    list.Select(selected);
    context.printQuality = resolutions.At<Resolution>(selected).x;
    context.yResolution = resolutions.At<Resolution>(selected).y;
}

} // namespace

bool HoldsQualityLevel(const DEVMODEW* dm) noexcept
{
    const int quality = DevModeField(dm, &DEVMODEW::dmPrintQuality);
    return HasField(dm, DM_PRINTQUALITY) && quality >= DMRES_HIGH && quality <= DMRES_DRAFT;
}

void PopulatePaperSource(HWND dialog, DEVMODEW* dm, UIContext& context) noexcept
{
    constexpr char kFunction[] = "PopulatePaperSource";
    const DropDownList list(dialog, IDC_PAPER_SOURCE);
    list.Clear();
    const NameList<kBinNameChars> names(context, DC_BINNAMES, dm);
    if (!names.Fill(list, kFunction, "DC_BINNAMES"))
    {
        return;
    }
    if (DevModeHolds(dm, &DEVMODEW::dmFields))
    {
        dm->dmFields |= DM_DEFAULTSOURCE;
    }
    if (const auto position = GetMatchedPaperSourceIndex(context, dm))
    {
        LogVerbose("%s - context-paperSource: %u\n", kFunction, static_cast<unsigned>(context.paperSource));
        list.Select(*position);
    }
}

void PopulatePapers(HWND dialog, const DEVMODEW* dm, UIContext& context) noexcept
{
    const DropDownList list(dialog, IDC_PAPER_SIZE);
    list.Clear();
    const NameList<kPaperNameChars> names(context, DC_PAPERNAMES, dm);
    uint32_t position = 0;
    if (names.Fill(list, "PopulatePapers", "DC_PAPERNAMES") &&
        GetMatchedPaperSizeIndex(&position, context.paperSize, dm))
    {
        list.Select(position);
    }
}

void PopulateMediaTypes(HWND dialog, const DEVMODEW* dm, UIContext& context) noexcept
{
    constexpr char kFunction[] = "PopulateMediaTypes";
    DWORD offered = 0;
    RegUtils::ReadDwordValue(HKEY_LOCAL_MACHINE, kDriverKey, "EnableMediaTypeOnUPD", 0, &offered);
    const HWND combo = GetDlgItem(dialog, IDC_MEDIACOMBO);
    const HWND label = GetDlgItem(dialog, IDC_MEDIALABEL);
    if (combo == nullptr)
    {
        LogError("%s, can't get handle of IDC_MEDIACOMBO\n", kFunction);
        return;
    }
    if (label == nullptr)
    {
        LogError("%s, can't get handle of IDC_MEDIALABEL\n", kFunction);
        return;
    }
    if (offered == 0)
    {
        ShowWindow(combo, SW_HIDE);
        ShowWindow(label, SW_HIDE);
        return;
    }
    const DropDownList list(dialog, IDC_MEDIACOMBO);
    list.Clear();
    const NameList<kPaperNameChars> names(context, DC_MEDIATYPENAMES, dm);
    if (names.Fill(list, kFunction, "DC_MEDIATYPENAMES"))
    {
        uint32_t position = 0;
        list.Select(GetMatchedMediaTypeIndex(&position, context.mediaType, dm) ? position : 0);
    }
}

void PopulateColors(HWND dialog, DEVMODEW* dm, UIContext& context) noexcept
{
    const DropDownList list(dialog, IDC_COLOR);
    list.Enable();
    list.Clear();
    const int color = DevModeField(dm, &DEVMODEW::dmColor);
    if (IsColorLocked(dm))
    {
        if (color == DMCOLOR_MONOCHROME || color == DMCOLOR_COLOR)
        {
            list.Add(LoadPageText(color == DMCOLOR_MONOCHROME ? kBlackWhite : kColor).text);
        }
        list.Select(0);
        list.Disable();
        return;
    }
    list.Add(LoadPageText(kBlackWhite).text);
    if (DrvDeviceCapabilities(nullptr, context.printerName, DC_COLORDEVICE, nullptr, dm) == 0)
    {
        list.Select(0);
        list.Disable();
        return;
    }
    list.Add(LoadPageText(kColor).text);
    list.Select(color != DMCOLOR_MONOCHROME ? 1 : 0);
}

void PopulateDPIs(HWND dialog, const DEVMODEW* dm, UIContext& context) noexcept
{
    const DropDownList list(dialog, IDC_PRINT_QUALITY);
    list.Clear();
    if (HoldsQualityLevel(dm))
    {
        FillQualityLevels(list, dm);
    }
    else
    {
        FillResolutions(list, dm, context);
    }
}

} // namespace tsypr
