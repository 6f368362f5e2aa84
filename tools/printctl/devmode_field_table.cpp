#include "tools/printctl/devmode_fields.h"

#include "remote/private_devmode.h"

#include <cstddef>

namespace tsypr::printctl
{

namespace
{

constexpr ValueName kOrientations[] = {{"portrait", DMORIENT_PORTRAIT}, {"landscape", DMORIENT_LANDSCAPE}};
constexpr ValueName kSources[] = {{"upper", DMBIN_UPPER},
                                  {"lower", DMBIN_LOWER},
                                  {"middle", DMBIN_MIDDLE},
                                  {"manual", DMBIN_MANUAL},
                                  {"envelope", DMBIN_ENVELOPE},
                                  {"envmanual", DMBIN_ENVMANUAL},
                                  {"auto", DMBIN_AUTO},
                                  {"tractor", DMBIN_TRACTOR},
                                  {"smallfmt", DMBIN_SMALLFMT},
                                  {"largefmt", DMBIN_LARGEFMT},
                                  {"largecapacity", DMBIN_LARGECAPACITY},
                                  {"cassette", DMBIN_CASSETTE},
                                  {"formsource", DMBIN_FORMSOURCE}};
constexpr ValueName kPapers[] = {{"letter", DMPAPER_LETTER},
                                 {"legal", DMPAPER_LEGAL},
                                 {"executive", DMPAPER_EXECUTIVE},
                                 {"a3", DMPAPER_A3},
                                 {"a4", DMPAPER_A4},
                                 {"a5", DMPAPER_A5},
                                 {"user", DMPAPER_USER}};
constexpr ValueName kQualities[] = {
    {"draft", DMRES_DRAFT}, {"low", DMRES_LOW}, {"medium", DMRES_MEDIUM}, {"high", DMRES_HIGH}};
constexpr ValueName kColors[] = {{"monochrome", DMCOLOR_MONOCHROME}, {"color", DMCOLOR_COLOR}};
constexpr ValueName kDuplexes[] = {
    {"simplex", DMDUP_SIMPLEX}, {"vertical", DMDUP_VERTICAL}, {"horizontal", DMDUP_HORIZONTAL}};
constexpr ValueName kTrueTypeOptions[] = {{"bitmap", DMTT_BITMAP},
                                          {"download", DMTT_DOWNLOAD},
                                          {"subdev", DMTT_SUBDEV},
                                          {"download_outline", DMTT_DOWNLOAD_OUTLINE}};
constexpr ValueName kBooleans[] = {{"false", 0}, {"true", 1}};
constexpr ValueName kNups[] = {{"system", DMNUP_SYSTEM}, {"oneup", DMNUP_ONEUP}};
constexpr ValueName kIcmMethods[] = {{"none", DMICMMETHOD_NONE},
                                     {"system", DMICMMETHOD_SYSTEM},
                                     {"driver", DMICMMETHOD_DRIVER},
                                     {"device", DMICMMETHOD_DEVICE}};
constexpr ValueName kIcmIntents[] = {{"saturate", DMICM_SATURATE},
                                     {"contrast", DMICM_CONTRAST},
                                     {"colorimetric", DMICM_COLORIMETRIC},
                                     {"abs_colorimetric", DMICM_ABS_COLORIMETRIC}};
constexpr ValueName kMediaTypes[] = {
    {"standard", DMMEDIA_STANDARD}, {"transparency", DMMEDIA_TRANSPARENCY}, {"glossy", DMMEDIA_GLOSSY}};
constexpr ValueName kFeatures[] = {{"NUP", kFeatureNup},
                                   {"PRINT_AS_IMAGE", kFeaturePrintAsImage},
                                   {"POPUP_PRE_DLG", kFeaturePopupPreDlg},
                                   {"COMPRESSION_ZLIB", kFeatureCompressionZlib},
                                   {"FINISHING", kFeatureFinishing}};
constexpr ValueName kLocks[] = {
    {"Duplex", kLockedDuplex}, {"Color", kLockedColor}, {"CompressionLevel", kLockedCompressionLevel}};

// Where the watermark block holds its parts.
constexpr size_t kWatermarkPoints = offsetof(PrivateDevMode, watermark) + 92;
constexpr size_t kWatermarkColor = offsetof(PrivateDevMode, watermark) + 96;
constexpr size_t kWatermarkText = offsetof(PrivateDevMode, watermark) + 100;
constexpr size_t kWatermarkPlacement = offsetof(PrivateDevMode, watermark) + 376;
constexpr size_t kWatermarkFlag = offsetof(PrivateDevMode, watermark) + 380;
constexpr size_t kWatermarkFace = offsetof(PrivateDevMode, watermark) + offsetof(LOGFONTW, lfFaceName);
static_assert(sizeof(LOGFONTW) == 92);

constexpr Field Number(const char* name,
                       DWORD bit,
                       size_t offset,
                       FieldType type,
                       std::span<const ValueName> values = {},
                       PrinterList list = PrinterList::None)
{
    return {name, FieldPlace::Public, bit, offset, type, 0, values, list, false, true};
}

constexpr Field Hidden(const char* name, size_t offset, FieldType type, std::span<const ValueName> values = {})
{
    return {name, FieldPlace::Private, 0, offset, type, 0, values, PrinterList::None, false, true};
}

constexpr Field HiddenText(const char* name, size_t offset, size_t chars, bool settable = true)
{
    return {name, FieldPlace::Private, 0, offset, FieldType::Text, chars, {}, PrinterList::None, false, settable};
}

constexpr Field HiddenFlags(const char* name, size_t offset, std::span<const ValueName> values)
{
    return {name, FieldPlace::Private, 0, offset, FieldType::Dword, 0, values, PrinterList::None, true, false};
}

constexpr Field kFields[] = {
    Number("orientation", DM_ORIENTATION, offsetof(DEVMODEW, dmOrientation), FieldType::Int16, kOrientations),
    Number("paper", DM_PAPERSIZE, offsetof(DEVMODEW, dmPaperSize), FieldType::Word, kPapers, PrinterList::Papers),
    Number("length", DM_PAPERLENGTH, offsetof(DEVMODEW, dmPaperLength), FieldType::Int16),
    Number("width", DM_PAPERWIDTH, offsetof(DEVMODEW, dmPaperWidth), FieldType::Int16),
    Number("scale", DM_SCALE, offsetof(DEVMODEW, dmScale), FieldType::Int16),
    Number("copies", DM_COPIES, offsetof(DEVMODEW, dmCopies), FieldType::Int16),
    Number(
        "source", DM_DEFAULTSOURCE, offsetof(DEVMODEW, dmDefaultSource), FieldType::Word, kSources, PrinterList::Bins),
    Number("quality", DM_PRINTQUALITY, offsetof(DEVMODEW, dmPrintQuality), FieldType::Int16, kQualities),
    Number("color", DM_COLOR, offsetof(DEVMODEW, dmColor), FieldType::Int16, kColors),
    Number("duplex", DM_DUPLEX, offsetof(DEVMODEW, dmDuplex), FieldType::Int16, kDuplexes),
    Number("yresolution", DM_YRESOLUTION, offsetof(DEVMODEW, dmYResolution), FieldType::Int16),
    Number("ttoption", DM_TTOPTION, offsetof(DEVMODEW, dmTTOption), FieldType::Int16, kTrueTypeOptions),
    Number("collate", DM_COLLATE, offsetof(DEVMODEW, dmCollate), FieldType::Int16, kBooleans),
    {"formname",
     FieldPlace::Public,
     DM_FORMNAME,
     offsetof(DEVMODEW, dmFormName),
     FieldType::Text,
     CCHFORMNAME,
     {},
     PrinterList::None,
     false,
     true},
    Number("nup", DM_NUP, offsetof(DEVMODEW, dmNup), FieldType::Dword, kNups),
    Number("icmmethod", DM_ICMMETHOD, offsetof(DEVMODEW, dmICMMethod), FieldType::Dword, kIcmMethods),
    Number("icmintent", DM_ICMINTENT, offsetof(DEVMODEW, dmICMIntent), FieldType::Dword, kIcmIntents),
    Number("mediatype",
           DM_MEDIATYPE,
           offsetof(DEVMODEW, dmMediaType),
           FieldType::Dword,
           kMediaTypes,
           PrinterList::MediaTypes),
    Hidden("compression", offsetof(PrivateDevMode, compression), FieldType::Dword),
    HiddenText("printerName", offsetof(PrivateDevMode, printerName), kPrinterNameChars, false),
    Hidden("printTargetChoice", offsetof(PrivateDevMode, printTargetChoice), FieldType::Dword),
    Hidden("printAsImage", offsetof(PrivateDevMode, isPrintAsImage), FieldType::Byte, kBooleans),
    Hidden("showPreDialog", offsetof(PrivateDevMode, isShowPreDlg), FieldType::Byte, kBooleans),
    HiddenFlags("featureBitmap", offsetof(PrivateDevMode, featureBitmap), kFeatures),
    Hidden("pagesPerSheet", offsetof(PrivateDevMode, pagesPerSheet), FieldType::Dword),
    HiddenText("nupLayout", offsetof(PrivateDevMode, nupLayout), kKeywordChars),
    HiddenText("staple", offsetof(PrivateDevMode, staple), kKeywordChars),
    HiddenText("punch", offsetof(PrivateDevMode, punch), kKeywordChars),
    HiddenFlags("lockedSettings", offsetof(PrivateDevMode, lockedSettings), kLocks),
    HiddenText("watermark", kWatermarkText, 128),
    HiddenText("watermarkFont", kWatermarkFace, LF_FACESIZE, false),
    Hidden("watermarkPoints", kWatermarkPoints, FieldType::Dword),
    Hidden("watermarkColor", kWatermarkColor, FieldType::Dword),
    Hidden("watermarkPlacement", kWatermarkPlacement, FieldType::Dword),
    Hidden("watermarkFlag", kWatermarkFlag, FieldType::Dword),
};

} // namespace

std::span<const Field> Fields()
{
    return kFields;
}

} // namespace tsypr::printctl
