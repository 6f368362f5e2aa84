#include "remote/devmode_merge.h"

#include "module/log.h"
#include "remote/device_capabilities.h"
#include "remote/devmode_copy.h"
#include "remote/devmode_header_keeper.h"
#include "remote/private_devmode.h"

#include <wingdi.h>

#include <algorithm>
#include <cwchar>

namespace tsypr
{
namespace
{

// One merge: what is asked for, where it goes, and the device mode as it stands.
class Merge
{
public:
    Merge(DEVMODEW* out, const DEVMODEW* in, const DEVMODEW* current) noexcept
        : m_out(out), m_in(in), m_current(current), m_inFields(DevModeField(in, &DEVMODEW::dmFields))
    {
        const PrivateDevMode* block = GetPrivateDevMode(out);
        m_locked = block != nullptr ? block->lockedSettings : 0;
    }

    void Public() const noexcept;
    void Private() const noexcept;

private:
    // Whether the input asks for the field: its bit is set and the field lies inside the input.
    template <typename Field>
    bool Asks(DWORD bit, Field DEVMODEW::*field) const noexcept
    {
        return (m_inFields & bit) != 0 && DevModeHolds(m_in, field);
    }

    template <typename Field>
    void Store(DWORD bit, Field DEVMODEW::*field, Field value) const noexcept
    {
        if (DevModeHolds(m_out, field) && DevModeHolds(m_out, &DEVMODEW::dmFields))
        {
            m_out->*field = value;
            m_out->dmFields |= bit;
        }
    }

    template <typename Field>
    void Copy(DWORD bit, Field DEVMODEW::*field) const noexcept
    {
        if (Asks(bit, field))
        {
            Store(bit, field, m_in->*field);
        }
    }

    bool Locked(uint32_t setting) const noexcept
    {
        return (m_locked & setting) != 0;
    }

    void PaperSize() const noexcept;
    void PaperDimensions(int16_t paperSize, uint32_t index) const noexcept;
    POINT ChosenDimensions(int16_t paperSize, uint32_t index) const noexcept;
    void FormName() const noexcept;
    void MediaType() const noexcept;
    FixedText<kPrinterNameChars> CurrentPrinter() const noexcept;

    DEVMODEW* m_out;
    const DEVMODEW* m_in;
    const DEVMODEW* m_current;
    DWORD m_inFields;
    uint32_t m_locked;
};

void Merge::Public() const noexcept
{
    Copy(DM_ORIENTATION, &DEVMODEW::dmOrientation);
    if (!Locked(kLockedDuplex))
    {
        Copy(DM_DUPLEX, &DEVMODEW::dmDuplex);
    }
    Copy(DM_DEFAULTSOURCE, &DEVMODEW::dmDefaultSource);
    PaperSize();
    FormName();
    MediaType();
    if (!Locked(kLockedColor))
    {
        Copy(DM_COLOR, &DEVMODEW::dmColor);
    }
    Copy(DM_PRINTQUALITY, &DEVMODEW::dmPrintQuality);
    Copy(DM_YRESOLUTION, &DEVMODEW::dmYResolution);
    Copy(DM_COPIES, &DEVMODEW::dmCopies);
    Copy(DM_COLLATE, &DEVMODEW::dmCollate);
    if (Asks(DM_SCALE, &DEVMODEW::dmScale))
    {
        LogVerbose("%s, replicate DM_SCALE.\n", "MergeAndCopyDM");
        Copy(DM_SCALE, &DEVMODEW::dmScale);
    }
}

FixedText<kPrinterNameChars> Merge::CurrentPrinter() const noexcept
{
    const PrivateDevMode* block = GetPrivateDevMode(m_current);
    return block != nullptr ? block->printerName.Read() : FixedText<kPrinterNameChars>{};
}

void Merge::PaperSize() const noexcept
{
    if (!Asks(DM_PAPERSIZE, &DEVMODEW::dmPaperSize))
    {
        return;
    }
    const int16_t paperSize = m_in->dmPaperSize;
    uint32_t index = kNoIndex;
    if (!GetMatchedPaperSizeIndex(&index, paperSize, m_current))
    {
        LogVerbose("%s, printer [%S] don't support paper size %d, use driver setting\n",
                   "MergeAndCopyDM",
                   CurrentPrinter().text,
                   paperSize);
        return;
    }
    Store(DM_PAPERSIZE, &DEVMODEW::dmPaperSize, paperSize);
    PaperDimensions(paperSize, index);
}

void Merge::PaperDimensions(int16_t paperSize, uint32_t index) const noexcept
{
    if (!Asks(DM_PAPERLENGTH, &DEVMODEW::dmPaperLength) || !Asks(DM_PAPERWIDTH, &DEVMODEW::dmPaperWidth))
    {
        if (DevModeHolds(m_out, &DEVMODEW::dmFields))
        {
            m_out->dmFields &= ~static_cast<DWORD>(DM_PAPERLENGTH | DM_PAPERWIDTH);
        }
        return;
    }
    const POINT dimensions = ChosenDimensions(paperSize, index);
    Store(DM_PAPERWIDTH, &DEVMODEW::dmPaperWidth, static_cast<short>(dimensions.x));
    Store(DM_PAPERLENGTH, &DEVMODEW::dmPaperLength, static_cast<short>(dimensions.y));
}

// A standard paper's dimensions come from the client printer, a user-defined one's from the application.
POINT Merge::ChosenDimensions(int16_t paperSize, uint32_t index) const noexcept
{
    POINT dimensions = {m_in->dmPaperWidth, m_in->dmPaperLength};
    if (paperSize != DMPAPER_USER && !GetPaperDimensionByIndex(index, m_current, &dimensions))
    {
        LogError("%s, printer [%S] failed to get width and length for paper size %d\n",
                 "MergeAndCopyDM",
                 CurrentPrinter().text,
                 paperSize);
    }
    return dimensions;
}

void Merge::FormName() const noexcept
{
    if (!Asks(DM_FORMNAME, &DEVMODEW::dmFormName) || !DevModeHolds(m_out, &DEVMODEW::dmFormName))
    {
        return;
    }
    const size_t length = wcsnlen(m_in->dmFormName, CCHFORMNAME - 1);
    std::wmemcpy(m_out->dmFormName, m_in->dmFormName, length);
    m_out->dmFormName[length] = L'\0';
    m_out->dmFields |= DM_FORMNAME;
}

void Merge::MediaType() const noexcept
{
    uint32_t index = kNoIndex;
    if (Asks(DM_MEDIATYPE, &DEVMODEW::dmMediaType) && GetMatchedMediaTypeIndex(&index, m_in->dmMediaType, m_current))
    {
        Copy(DM_MEDIATYPE, &DEVMODEW::dmMediaType);
    }
}

// The input's signature is deliberately not asked for, only its size; the locks of the output stay in force.
void Merge::Private() const noexcept
{
    const PrivateDevMode* in = PrivateDevModePlace(const_cast<DEVMODEW*>(m_in));
    PrivateDevMode* out = GetPrivateDevMode(m_out);
    if (in == nullptr || out == nullptr)
    {
        return;
    }
    const DevModeHeaderKeeper keeper(m_out);
    if (!Locked(kLockedCompressionLevel))
    {
        out->compression = in->compression;
    }
    out->printTargetChoice = in->printTargetChoice;
    out->isPrintAsImage = in->isPrintAsImage;
    out->isShowPreDlg = in->isShowPreDlg;
    out->featureBitmap = in->featureBitmap;
    out->reserved2 = in->reserved2;
    std::memcpy(out->watermark, in->watermark, sizeof(out->watermark));
    out->printerName.Terminate();
    if ((in->featureBitmap & kFeatureNup) != 0)
    {
        out->pagesPerSheet = in->pagesPerSheet;
        out->nupLayout.Write(in->nupLayout.Read().text);
    }
    if ((in->featureBitmap & kFeatureFinishing) != 0)
    {
        out->staple.Write(in->staple.Read().text);
        out->punch.Write(in->punch.Read().text);
    }
}

} // namespace

bool MergeAndCopyDM(DEVMODEW* dmOut, const DEVMODEW* dmIn, const DEVMODEW* dmCurrent, DWORD fMode) noexcept
{
    if (dmOut == nullptr || dmCurrent == nullptr)
    {
        LogError("%s, dmOut and dmCurrent cannot be NULL.\n", "MergeAndCopyDM");
        return false;
    }
    DevModeCopy in; // of our own: the caller may pass the same memory in and out
    if (dmIn != nullptr && (fMode & DM_IN_BUFFER) != 0)
    {
        in = CopyDevMode(dmIn);
        if (in == nullptr)
        {
            LogError("%s, failed to allocate temp DEVMODE\n", "MergeAndCopyDM");
            return false;
        }
    }
    if ((fMode & DM_OUT_BUFFER) != 0)
    {
        std::memmove(static_cast<void*>(dmOut), dmCurrent, DevModeTotalSize(dmCurrent));
    }
    if (in != nullptr)
    {
        const Merge merge(dmOut, in.get(), dmCurrent);
        merge.Public();
        merge.Private();
    }
    return true;
}

} // namespace tsypr
