#include "remote/devmode_dump.h"

#include "module/log.h"
#include "remote/devmode_names.h"
#include "remote/private_devmode.h"

#include <wingdi.h>

#include <algorithm>
#include <cwchar>

namespace tsypr::PrintUtils
{
namespace
{

// What is said of a field: its value, or zero when the device mode does not reach that far, and whether it is set.
class FieldReader
{
public:
    explicit FieldReader(const DEVMODEW* dm) noexcept : m_dm(dm), m_fields(DevModeField(dm, &DEVMODEW::dmFields)) {}

    template <typename Field>
    Field Value(Field DEVMODEW::*field) const noexcept
    {
        return DevModeField(m_dm, field);
    }
    bool IsSet(DWORD bit) const noexcept
    {
        return (m_fields & bit) != 0;
    }
    const char* Suffix(DWORD bit) const noexcept
    {
        return IsSet(bit) ? " (set)" : "";
    }
    DWORD Fields() const noexcept
    {
        return m_fields;
    }

private:
    const DEVMODEW* m_dm;
    DWORD m_fields;
};

// A name field as far as the device mode reaches, terminated.
struct NameText
{
    wchar_t text[CCHDEVICENAME + 1] = {};

    NameText(const DEVMODEW* dm, const wchar_t (&field)[CCHDEVICENAME]) noexcept
    {
        const auto offset =
            static_cast<size_t>(reinterpret_cast<const char*>(field) - reinterpret_cast<const char*>(dm));
        const size_t inside = dm->dmSize > offset ? (dm->dmSize - offset) / sizeof(wchar_t) : 0;
        std::wmemcpy(text, field, std::min<size_t>(inside, CCHDEVICENAME));
    }
};
static_assert(CCHDEVICENAME == CCHFORMNAME);

void DumpHeader(const DEVMODEW* dm, const FieldReader& field) noexcept
{
    LogVerbose("   pDevMode.dmDeviceName = \"%S\"\n", NameText(dm, dm->dmDeviceName).text);
    LogVerbose("   pDevMode.dmSpecVersion = 0x%x\n", static_cast<unsigned>(field.Value(&DEVMODEW::dmSpecVersion)));
    LogVerbose("   pDevMode.dmSize = %d\n", dm->dmSize);
    LogVerbose("   pDevMode.dmDriverExtra = %d\n", dm->dmDriverExtra);
    LogVerbose("   pDevMode.dmFields = %s\n", FieldsNames(field.Fields()));
}

void DumpPaper(const FieldReader& field) noexcept
{
    LogVerbose("   pDevMode.dmOrientation = %s%s\n",
               OrientationName(field.Value(&DEVMODEW::dmOrientation)),
               field.Suffix(DM_ORIENTATION));
    LogVerbose("   pDevMode.dmPaperSize = %s%s\n",
               PaperSizeName(field.Value(&DEVMODEW::dmPaperSize)),
               field.Suffix(DM_PAPERSIZE));
    LogVerbose(
        "   pDevMode.dmPaperLength = %d%s\n", field.Value(&DEVMODEW::dmPaperLength), field.Suffix(DM_PAPERLENGTH));
    LogVerbose("   pDevMode.dmPaperWidth = %d%s\n", field.Value(&DEVMODEW::dmPaperWidth), field.Suffix(DM_PAPERWIDTH));
    LogVerbose("   pDevMode.dmScale = %d%s\n", field.Value(&DEVMODEW::dmScale), field.Suffix(DM_SCALE));
    LogVerbose("   pDevMode.dmCopies = %d%s\n", field.Value(&DEVMODEW::dmCopies), field.Suffix(DM_COPIES));
    LogVerbose("   pDevMode.dmDefaultSource = %s%s\n",
               SourceName(field.Value(&DEVMODEW::dmDefaultSource)),
               field.Suffix(DM_DEFAULTSOURCE));
}

void DumpQuality(const FieldReader& field) noexcept
{
    LogVerbose("   pDevMode.dmPrintQuality = %s%s\n",
               PrintQualityName(field.Value(&DEVMODEW::dmPrintQuality)),
               field.Suffix(DM_PRINTQUALITY));
    LogVerbose("   pDevMode.dmColor = %s%s\n", ColorName(field.Value(&DEVMODEW::dmColor)), field.Suffix(DM_COLOR));
    LogVerbose("   pDevMode.dmDuplex = %s%s\n", DuplexName(field.Value(&DEVMODEW::dmDuplex)), field.Suffix(DM_DUPLEX));
    LogVerbose(
        "   pDevMode.dmYResolution = %d%s\n", field.Value(&DEVMODEW::dmYResolution), field.Suffix(DM_YRESOLUTION));
    LogVerbose(
        "   pDevMode.dmTTOption = %s%s\n", TTOptionName(field.Value(&DEVMODEW::dmTTOption)), field.Suffix(DM_TTOPTION));
    LogVerbose(
        "   pDevMode.dmCollate = %s%s\n", CollateName(field.Value(&DEVMODEW::dmCollate)), field.Suffix(DM_COLLATE));
}

void DumpFormAndColorManagement(const DEVMODEW* dm, const FieldReader& field) noexcept
{
    LogVerbose("   pDevMode.dmFormName = \"%S\"%s\n", NameText(dm, dm->dmFormName).text, field.Suffix(DM_FORMNAME));
    LogVerbose("   pDevMode.dmNup = %s%s\n", NupName(field.Value(&DEVMODEW::dmNup)), field.Suffix(DM_NUP));
    LogVerbose("   pDevMode.dmICMMethod = %s%s\n",
               ICMMethodName(field.Value(&DEVMODEW::dmICMMethod)),
               field.Suffix(DM_ICMMETHOD));
    LogVerbose("   pDevMode.dmICMIntent = %s%s\n",
               ICMIntentName(field.Value(&DEVMODEW::dmICMIntent)),
               field.Suffix(DM_ICMINTENT));
    LogVerbose("   pDevMode.dmMediaType = %s%s\n",
               MediaTypeName(field.Value(&DEVMODEW::dmMediaType)),
               field.Suffix(DM_MEDIATYPE));
}

void DumpPrivate(const PrivateDevMode* block) noexcept
{
    LogVerbose("   pDevMode.compression(hidden) = %d\n", static_cast<int>(block->compression));
    LogVerbose("   pDevMode.printTargetChoice(hidden) = %d\n", static_cast<int>(block->printTargetChoice));
    LogVerbose("   pDevMode.isPrintAsImage(hidden) = %d\n", block->isPrintAsImage);
    LogVerbose("   pDevMode.isShowPreDlg(hidden) = %d\n", block->isShowPreDlg);
    LogVerbose("   pDevMode.pagesPerSheet(hidden) = %d\n", static_cast<int>(block->pagesPerSheet));
    LogVerbose("   pDevMode.nupLayout(hidden) = %S\n", block->nupLayout.Read().text);
    LogVerbose("   pDevMode.staple(hidden) = %S\n", block->staple.Read().text);
    LogVerbose("   pDevMode.punch(hidden) = %S\n", block->punch.Read().text);
    LogVerbose("   pDevMode.featureBitmap(hidden) = %s\n", FeatureNames(block->featureBitmap));
    LogVerbose("   pDevMode.lockedSettings(hidden) = %s\n", LockedNames(block->lockedSettings));
}

void DumpNumberIfSet(const FieldReader& field, DWORD bit, const char* name, DWORD value) noexcept
{
    if (field.IsSet(bit))
    {
        LogVerbose("   pDevMode.%s = %d%s\n", name, static_cast<int>(value), field.Suffix(bit));
    }
}

void DumpNameIfSet(const FieldReader& field, DWORD bit, const char* name, const char* value) noexcept
{
    if (field.IsSet(bit))
    {
        LogVerbose("   pDevMode.%s = %s%s\n", name, value, field.Suffix(bit));
    }
}

void DumpReserved(const char* name, DWORD value) noexcept
{
    if (value != 0)
    {
        LogVerbose("   pDevMode.%s = %d(0x%x)\n", name, static_cast<int>(value), static_cast<unsigned>(value));
    }
}

void DumpDisplay(const FieldReader& field) noexcept
{
    if (field.IsSet(DM_POSITION))
    {
        const POINTL position = field.Value(&DEVMODEW::dmPosition);
        LogVerbose("   pDevMode.dmPosition = %d,%d%s\n",
                   static_cast<int>(position.x),
                   static_cast<int>(position.y),
                   field.Suffix(DM_POSITION));
    }
    DumpNameIfSet(field,
                  DM_DISPLAYORIENTATION,
                  "dmDisplayOrientation",
                  DisplayOrientationName(field.Value(&DEVMODEW::dmDisplayOrientation)));
    DumpNameIfSet(field,
                  DM_DISPLAYFIXEDOUTPUT,
                  "dmDisplayFixedOutput",
                  DisplayFixedOutputName(field.Value(&DEVMODEW::dmDisplayFixedOutput)));
    DumpNumberIfSet(field, DM_LOGPIXELS, "dmLogPixels", field.Value(&DEVMODEW::dmLogPixels));
    DumpNumberIfSet(field, DM_BITSPERPEL, "dmBitsPerPel", field.Value(&DEVMODEW::dmBitsPerPel));
    DumpNumberIfSet(field, DM_PELSWIDTH, "dmPelsWidth", field.Value(&DEVMODEW::dmPelsWidth));
    DumpNumberIfSet(field, DM_PELSHEIGHT, "dmPelsHeight", field.Value(&DEVMODEW::dmPelsHeight));
    DumpNameIfSet(field, DM_DISPLAYFLAGS, "dmDisplayFlags", DisplayFlagsNames(field.Value(&DEVMODEW::dmDisplayFlags)));
    DumpNumberIfSet(field, DM_DISPLAYFREQUENCY, "dmDisplayFrequency", field.Value(&DEVMODEW::dmDisplayFrequency));
    DumpNameIfSet(field, DM_DITHERTYPE, "dmDitherType", DitherTypeName(field.Value(&DEVMODEW::dmDitherType)));
    DumpNumberIfSet(field, DM_PANNINGWIDTH, "dmPanningWidth", field.Value(&DEVMODEW::dmPanningWidth));
    DumpNumberIfSet(field, DM_PANNINGHEIGHT, "dmPanningHeight", field.Value(&DEVMODEW::dmPanningHeight));
    DumpReserved("dmReserved1", field.Value(&DEVMODEW::dmReserved1));
    DumpReserved("dmReserved2", field.Value(&DEVMODEW::dmReserved2));
}

} // namespace

void DumpDevMode(DEVMODEW* dm, const wchar_t* title) noexcept
{
    if (dm == nullptr)
    {
        return;
    }
    PrivateDevMode* block = GetPrivateDevMode(dm);
    if (block != nullptr)
    {
        // Intended, also when nothing is logged: later readers may trust the terminators.
        block->nupLayout.Terminate();
        block->staple.Terminate();
        block->punch.Terminate();
    }
    if (!LogEnabled(kLogVerboseLevel))
    {
        return;
    }
    if (title != nullptr)
    {
        LogVerbose("%s(): %S\n", "PrintUtils::DumpDevMode", title);
    }
    const FieldReader field(dm);
    DumpHeader(dm, field);
    DumpPaper(field);
    DumpQuality(field);
    DumpFormAndColorManagement(dm, field);
    if (block != nullptr)
    {
        DumpPrivate(block);
    }
    DumpDisplay(field);
}

} // namespace tsypr::PrintUtils
