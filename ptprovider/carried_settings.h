// The driver's own settings on their way between device modes and print tickets.
#ifndef TESSARY_PTPROVIDER_CARRIED_SETTINGS_H
#define TESSARY_PTPROVIDER_CARRIED_SETTINGS_H

#include "printschema/msxml.h"
#include "remote/private_devmode.h"

#include <string>

namespace tsypr
{

// The private fields that no print ticket can express.
struct PrivateSettings
{
    uint32_t compression;
    uint32_t printTargetChoice;
    uint8_t isPrintAsImage;
    uint8_t isShowPreDlg;
    uint64_t featureBitmap; // the reserved bytes behind the field travel with it
    uint32_t lockedSettings;
    uint8_t watermark[kWatermarkBytes];
};

// Those of the device mode that was last converted to a ticket, for the tickets that are converted back; at first
// zeros. Shared by the whole process without a lock: conversions on several threads may mix theirs, which is accepted.
extern PrivateSettings CarriedPrivateSettings;

// The private fields that a print ticket does express. Texts are option names.
struct DriverOptions
{
    bool hasNup = false;
    bool hasFinishing = false;
    uint32_t pagesPerSheet = 0;
    std::wstring nupLayout;
    std::wstring staple;
    std::wstring punch;
};

// The options of a private block, as its feature bits say.
DriverOptions OptionsOf(const PrivateDevMode& block);

// Puts the block's fields into CarriedPrivateSettings, except for the watermark, which follows by its own function.
void CarrySettings(const PrivateDevMode& block) noexcept;
void CarryWatermark(const PrivateDevMode& block) noexcept;

// Writes the carried settings and the ticket's options into a block.
void RestoreSettings(PrivateDevMode& block, const DriverOptions& options) noexcept;

// Reads the driver's options from a print ticket, and writes them into one as far as it has their features.
DriverOptions ReadOptions(IXMLDOMDocument2* ticket);
void WriteOptions(IXMLDOMDocument2* ticket, const DriverOptions& options);

} // namespace tsypr

#endif
