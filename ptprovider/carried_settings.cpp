#include "ptprovider/carried_settings.h"

#include "module/log.h"
#include "printschema/pt_parser.h"

#include <cstring>

namespace tsypr
{

PrivateSettings CarriedPrivateSettings = {};

namespace
{

// A name that does not fit is refused, not cut: the field becomes empty.
void WriteName(WideField<kKeywordChars>& field, const std::wstring& name) noexcept
{
    const bool fits = name.size() < kKeywordChars;
    if (!fits)
    {
        LogError("%s, option name '%S' is too long.\n", "PTProvider::ConvertPrintTicketToDevMode", name.c_str());
    }
    field.Write(fits ? name.c_str() : L"");
}

void SetFeature(PrivateDevMode& block, uint32_t bit, bool on) noexcept
{
    const uint32_t others = block.featureBitmap & ~bit;
    block.featureBitmap = on ? others | bit : others;
}

} // namespace

DriverOptions OptionsOf(const PrivateDevMode& block)
{
    return {(block.featureBitmap & kFeatureNup) != 0,
            (block.featureBitmap & kFeatureFinishing) != 0,
            block.pagesPerSheet,
            block.nupLayout.Read().text,
            block.staple.Read().text,
            block.punch.Read().text};
}

void CarrySettings(const PrivateDevMode& block) noexcept
{
    PrivateSettings& carried = CarriedPrivateSettings;
    carried.compression = block.compression;
    carried.printTargetChoice = block.printTargetChoice;
    carried.isPrintAsImage = block.isPrintAsImage;
    carried.isShowPreDlg = block.isShowPreDlg;
    carried.featureBitmap = block.featureBitmap | uint64_t{block.reserved2} << 32;
    carried.lockedSettings = block.lockedSettings;
}

void CarryWatermark(const PrivateDevMode& block) noexcept
{
    std::memcpy(CarriedPrivateSettings.watermark, block.watermark, sizeof(block.watermark));
}

void RestoreSettings(PrivateDevMode& block, const DriverOptions& options) noexcept
{
    const PrivateSettings& carried = CarriedPrivateSettings;
    block.compression = carried.compression;
    block.printTargetChoice = carried.printTargetChoice;
    block.isPrintAsImage = carried.isPrintAsImage;
    block.isShowPreDlg = carried.isShowPreDlg;
    const uint64_t features = carried.featureBitmap;
    block.featureBitmap = static_cast<uint32_t>(features);
    block.reserved2 = static_cast<uint32_t>(features >> 32);
    block.lockedSettings = carried.lockedSettings;
    std::memcpy(block.watermark, carried.watermark, sizeof(block.watermark));
    block.pagesPerSheet = options.pagesPerSheet;
    WriteName(block.nupLayout, options.nupLayout);
    WriteName(block.staple, options.staple);
    WriteName(block.punch, options.punch);
    SetFeature(block, kFeatureNup, options.hasNup);
    SetFeature(block, kFeatureFinishing, options.hasFinishing);
}

DriverOptions ReadOptions(IXMLDOMDocument2* ticket)
{
    DriverOptions options;
    options.hasNup = PTParser::GetNupOption(ticket, options.pagesPerSheet, options.nupLayout);
    const bool hasStaple = PTParser::GetStapleOption(ticket, options.staple);
    const bool hasPunch = PTParser::GetPunchOption(ticket, options.punch);
    options.hasFinishing = hasStaple || hasPunch;
    return options;
}

void WriteOptions(IXMLDOMDocument2* ticket, const DriverOptions& options)
{
    if (options.hasNup)
    {
        PTParser::SetNupOption(ticket, options.pagesPerSheet, options.nupLayout);
    }
    if (!options.hasFinishing)
    {
        return;
    }
    if (!options.staple.empty())
    {
        PTParser::SetStapleOption(ticket, options.staple);
    }
    if (!options.punch.empty())
    {
        PTParser::SetPunchOption(ticket, options.punch);
    }
}

} // namespace tsypr
