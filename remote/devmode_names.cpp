#include "remote/devmode_names.h"

#include "lib/string/format.h"
#include "remote/name_buffers.h"
#include "remote/private_devmode.h"

#include <wingdi.h>

#include <array>
#include <span>

namespace tsypr
{
namespace
{

struct ValueName
{
    DWORD value;
    const char* name;
};

constexpr const char* kNoMemory = "?";

// Values of 16-bit fields come in sign-extended, so that the quality names' negative values keep their bits.
const char* NumberText(DWORD value, ValueBuffer which) noexcept
{
    NameBuffers* buffers = ThreadNameBuffers();
    if (buffers == nullptr)
    {
        return kNoMemory;
    }
    char(&buffer)[kValueBufferChars] = buffers->values[static_cast<size_t>(which)];
    FormatFixed(buffer, sizeof(buffer), "%lu", static_cast<unsigned long>(value));
    return buffer;
}

const char* NameOf(DWORD value, std::span<const ValueName> names, ValueBuffer which) noexcept
{
    for (const ValueName& entry : names)
    {
        if (entry.value == value)
        {
            return entry.name;
        }
    }
    return NumberText(value, which);
}

template <size_t Size>
const char* FlagNames(DWORD flags, std::span<const ValueName> names, char (NameBuffers::*member)[Size]) noexcept
{
    NameBuffers* buffers = ThreadNameBuffers();
    if (buffers == nullptr)
    {
        return kNoMemory;
    }
    char(&buffer)[Size] = buffers->*member;
    buffer[0] = '\0';
    size_t length = 0;
    for (const ValueName& entry : names)
    {
        if ((flags & entry.value) != 0)
        {
            length += FormatFixed(buffer + length, Size - length, "%s%s", length != 0 ? ", " : "", entry.name);
            flags &= ~entry.value;
        }
    }
    if (flags != 0)
    {
        FormatFixed(buffer + length, Size - length, "%s0x%x", length != 0 ? ", " : "", static_cast<unsigned>(flags));
    }
    return buffer;
}

// DMPAPER_LETTER (1) and on.
constexpr std::array kPaperNames = {"LETTER",
                                    "LETTERSMALL",
                                    "TABLOID",
                                    "LEDGER",
                                    "LEGAL",
                                    "STATEMENT",
                                    "EXECUTIVE",
                                    "A3",
                                    "A4",
                                    "A4SMALL",
                                    "A5",
                                    "B4",
                                    "B5",
                                    "FOLIO",
                                    "QUARTO",
                                    "10X14",
                                    "11X17",
                                    "NOTE",
                                    "ENV_9",
                                    "ENV_10",
                                    "ENV_11",
                                    "ENV_12",
                                    "ENV_14",
                                    "CSHEET",
                                    "DSHEET",
                                    "ESHEET",
                                    "ENV_DL",
                                    "ENV_C5",
                                    "ENV_C3",
                                    "ENV_C4",
                                    "ENV_C6",
                                    "ENV_C65",
                                    "ENV_B4",
                                    "ENV_B5",
                                    "ENV_B6",
                                    "ENV_ITALY",
                                    "ENV_MONARCH",
                                    "ENV_PERSONAL",
                                    "FANFOLD_US",
                                    "FANFOLD_STD_GERMAN",
                                    "FANFOLD_LGL_GERMAN",
                                    "ISO_B4",
                                    "JAPANESE_POSTCARD",
                                    "9X11",
                                    "10X11",
                                    "15X11",
                                    "ENV_INVITE",
                                    "RESERVED_48",
                                    "RESERVED_49",
                                    "LETTER_EXTRA",
                                    "LEGAL_EXTRA",
                                    "TABLOID_EXTRA",
                                    "A4_EXTRA",
                                    "LETTER_TRANSVERSE",
                                    "A4_TRANSVERSE",
                                    "LETTER_EXTRA_TRANSVERSE",
                                    "A_PLUS",
                                    "B_PLUS",
                                    "LETTER_PLUS",
                                    "A4_PLUS",
                                    "A5_TRANSVERSE",
                                    "B5_TRANSVERSE",
                                    "A3_EXTRA",
                                    "A5_EXTRA",
                                    "B5_EXTRA",
                                    "A2",
                                    "A3_TRANSVERSE",
                                    "A3_EXTRA_TRANSVERSE",
                                    "DBL_JAPANESE_POSTCARD",
                                    "A6",
                                    "JENV_KAKU2",
                                    "JENV_KAKU3",
                                    "JENV_CHOU3",
                                    "JENV_CHOU4",
                                    "LETTER_ROTATED",
                                    "A3_ROTATED",
                                    "A4_ROTATED",
                                    "A5_ROTATED",
                                    "B4_JIS_ROTATED",
                                    "B5_JIS_ROTATED",
                                    "JAPANESE_POSTCARD_ROTATED",
                                    "DBL_JAPANESE_POSTCARD_ROTATED",
                                    "A6_ROTATED",
                                    "JENV_KAKU2_ROTATED",
                                    "JENV_KAKU3_ROTATED",
                                    "JENV_CHOU3_ROTATED",
                                    "JENV_CHOU4_ROTATED",
                                    "B6_JIS",
                                    "B6_JIS_ROTATED",
                                    "12X11",
                                    "JENV_YOU4",
                                    "JENV_YOU4_ROTATED",
                                    "P16K",
                                    "P32K",
                                    "P32KBIG",
                                    "PENV_1",
                                    "PENV_2",
                                    "PENV_3",
                                    "PENV_4",
                                    "PENV_5",
                                    "PENV_6",
                                    "PENV_7",
                                    "PENV_8",
                                    "PENV_9",
                                    "PENV_10",
                                    "P16K_ROTATED",
                                    "P32K_ROTATED",
                                    "P32KBIG_ROTATED",
                                    "PENV_1_ROTATED",
                                    "PENV_2_ROTATED",
                                    "PENV_3_ROTATED",
                                    "PENV_4_ROTATED",
                                    "PENV_5_ROTATED",
                                    "PENV_6_ROTATED",
                                    "PENV_7_ROTATED",
                                    "PENV_8_ROTATED",
                                    "PENV_9_ROTATED",
                                    "PENV_10_ROTATED"};

constexpr ValueName kOrientations[] = {{DMORIENT_PORTRAIT, "PORTRAIT"}, {DMORIENT_LANDSCAPE, "LANDSCAPE"}};

constexpr ValueName kSources[] = {{DMBIN_UPPER, "UPPER"},
                                  {DMBIN_LOWER, "LOWER"},
                                  {DMBIN_MIDDLE, "MIDDLE"},
                                  {DMBIN_MANUAL, "MANUAL"},
                                  {DMBIN_ENVELOPE, "ENVELOPE"},
                                  {DMBIN_ENVMANUAL, "ENVMANUAL"},
                                  {DMBIN_AUTO, "AUTO"},
                                  {DMBIN_TRACTOR, "TRACTOR"},
                                  {DMBIN_SMALLFMT, "SMALLFMT"},
                                  {DMBIN_LARGEFMT, "LARGEFMT"},
                                  {DMBIN_LARGECAPACITY, "LARGECAPACITY"},
                                  {DMBIN_CASSETTE, "CASSETTE"},
                                  {DMBIN_FORMSOURCE, "FORMSOURCE"}};

constexpr ValueName kQualities[] = {{static_cast<DWORD>(DMRES_DRAFT), "DRAFT"},
                                    {static_cast<DWORD>(DMRES_LOW), "LOW"},
                                    {static_cast<DWORD>(DMRES_MEDIUM), "MEDIUM"},
                                    {static_cast<DWORD>(DMRES_HIGH), "HIGH"}};

constexpr ValueName kColors[] = {{DMCOLOR_MONOCHROME, "MONOCHROME"}, {DMCOLOR_COLOR, "COLOR"}};

constexpr ValueName kDuplexes[] = {
    {DMDUP_SIMPLEX, "SIMPLEX"}, {DMDUP_VERTICAL, "VERTICAL"}, {DMDUP_HORIZONTAL, "HORIZONTAL"}};

constexpr ValueName kTTOptions[] = {{DMTT_BITMAP, "BITMAP"},
                                    {DMTT_DOWNLOAD, "DOWNLOAD"},
                                    {DMTT_SUBDEV, "SUBDEV"},
                                    {DMTT_DOWNLOAD_OUTLINE, "DOWNLOAD_OUTLINE"}};

constexpr ValueName kCollates[] = {{DMCOLLATE_FALSE, "FALSE"}, {DMCOLLATE_TRUE, "TRUE"}};

constexpr ValueName kNups[] = {{DMNUP_SYSTEM, "SYSTEM"}, {DMNUP_ONEUP, "ONEUP"}};

constexpr ValueName kICMMethods[] = {{DMICMMETHOD_NONE, "NONE"},
                                     {DMICMMETHOD_SYSTEM, "SYSTEM"},
                                     {DMICMMETHOD_DRIVER, "DRIVER"},
                                     {DMICMMETHOD_DEVICE, "DEVICE"}};

constexpr ValueName kICMIntents[] = {{DMICM_SATURATE, "SATURATE"},
                                     {DMICM_CONTRAST, "CONTRAST"},
                                     {DMICM_COLORIMETRIC, "COLORIMETRIC"},
                                     {DMICM_ABS_COLORIMETRIC, "ABS_COLORIMETRIC"}};

constexpr ValueName kMediaTypes[] = {
    {DMMEDIA_STANDARD, "STANDARD"}, {DMMEDIA_TRANSPARENCY, "TRANSPARENCY"}, {DMMEDIA_GLOSSY, "GLOSSY"}};

constexpr ValueName kDitherTypes[] = {{DMDITHER_NONE, "NONE"},
                                      {DMDITHER_COARSE, "COARSE"},
                                      {DMDITHER_FINE, "FINE"},
                                      {DMDITHER_LINEART, "LINEART"},
                                      {DMDITHER_ERRORDIFFUSION, "ERRORDIFFUSION"},
                                      {DMDITHER_RESERVED6, "RESERVED6"},
                                      {DMDITHER_RESERVED7, "RESERVED7"},
                                      {DMDITHER_RESERVED8, "RESERVED8"},
                                      {DMDITHER_RESERVED9, "RESERVED9"},
                                      {DMDITHER_GRAYSCALE, "GRAYSCALE"}};

constexpr ValueName kFixedOutputs[] = {
    {DMDFO_DEFAULT, "DEFAULT"}, {DMDFO_STRETCH, "STRETCH"}, {DMDFO_CENTER, "CENTER"}};

constexpr ValueName kDisplayOrientations[] = {{DMDO_DEFAULT, "DEFAULT"}};

constexpr ValueName kDisplayFlags[] = {{0x1, "GRAYSCALE"}, {0x2, "INTERLACED"}, {0x4, "TEXTMODE"}};

// DM_NUP has no name here and shows in the hexadecimal rest.
constexpr ValueName kFields[] = {{DM_ORIENTATION, "ORIENTATION"},
                                 {DM_PAPERSIZE, "PAPERSIZE"},
                                 {DM_PAPERLENGTH, "PAPERLENGTH"},
                                 {DM_PAPERWIDTH, "PAPERWIDTH"},
                                 {DM_SCALE, "SCALE"},
                                 {DM_POSITION, "POSITION"},
                                 {DM_DISPLAYORIENTATION, "DISPLAYORIENTATION"},
                                 {DM_COPIES, "COPIES"},
                                 {DM_DEFAULTSOURCE, "DEFAULTSOURCE"},
                                 {DM_PRINTQUALITY, "PRINTQUALITY"},
                                 {DM_COLOR, "COLOR"},
                                 {DM_DUPLEX, "DUPLEX"},
                                 {DM_YRESOLUTION, "YRESOLUTION"},
                                 {DM_TTOPTION, "TTOPTION"},
                                 {DM_COLLATE, "COLLATE"},
                                 {DM_FORMNAME, "FORMNAME"},
                                 {DM_LOGPIXELS, "LOGPIXELS"},
                                 {DM_BITSPERPEL, "BITSPERPEL"},
                                 {DM_PELSWIDTH, "PELSWIDTH"},
                                 {DM_PELSHEIGHT, "PELSHEIGHT"},
                                 {DM_DISPLAYFLAGS, "DISPLAYFLAGS"},
                                 {DM_DISPLAYFREQUENCY, "DISPLAYFREQUENCY"},
                                 {DM_ICMMETHOD, "ICMMETHOD"},
                                 {DM_ICMINTENT, "ICMINTENT"},
                                 {DM_MEDIATYPE, "MEDIATYPE"},
                                 {DM_DITHERTYPE, "DITHERTYPE"},
                                 {DM_PANNINGWIDTH, "PANNINGWIDTH"},
                                 {DM_PANNINGHEIGHT, "PANNINGHEIGHT"},
                                 {DM_DISPLAYFIXEDOUTPUT, "DISPLAYFIXEDOUTPUT"}};

constexpr ValueName kFeatures[] = {{kFeatureNup, "NUP"},
                                   {kFeaturePrintAsImage, "PRINT_AS_IMAGE"},
                                   {kFeaturePopupPreDlg, "POPUP_PRE_DLG"},
                                   {kFeatureCompressionZlib, "COMPRESSION_ZLIB"},
                                   {kFeatureFinishing, "FINISHING"}};

constexpr ValueName kLocks[] = {
    {kLockedDuplex, "Duplex"}, {kLockedColor, "Color"}, {kLockedCompressionLevel, "CompressionLevel"}};

} // namespace

namespace PrintUtils
{

const char* OrientationName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kOrientations, ValueBuffer::Orientation);
}

const char* PaperSizeName(int value) noexcept
{
    if (value >= 1 && static_cast<size_t>(value) <= kPaperNames.size())
    {
        return kPaperNames[static_cast<size_t>(value) - 1];
    }
    return value == DMPAPER_USER ? "USER" : NumberText(static_cast<DWORD>(value), ValueBuffer::PaperSize);
}

const char* SourceName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kSources, ValueBuffer::Source);
}

const char* PrintQualityName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kQualities, ValueBuffer::PrintQuality);
}

const char* ColorName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kColors, ValueBuffer::Color);
}

const char* DuplexName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kDuplexes, ValueBuffer::Duplex);
}

const char* TTOptionName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kTTOptions, ValueBuffer::TTOption);
}

const char* CollateName(int value) noexcept
{
    return NameOf(static_cast<DWORD>(value), kCollates, ValueBuffer::Collate);
}

const char* NupName(DWORD value) noexcept
{
    return NameOf(value, kNups, ValueBuffer::Nup);
}

const char* ICMMethodName(DWORD value) noexcept
{
    return NameOf(value, kICMMethods, ValueBuffer::ICMMethod);
}

const char* ICMIntentName(DWORD value) noexcept
{
    return NameOf(value, kICMIntents, ValueBuffer::ICMIntent);
}

const char* MediaTypeName(DWORD value) noexcept
{
    return NameOf(value, kMediaTypes, ValueBuffer::MediaType);
}

const char* DitherTypeName(DWORD value) noexcept
{
    return NameOf(value, kDitherTypes, ValueBuffer::DitherType);
}

const char* DisplayFixedOutputName(DWORD value) noexcept
{
    return NameOf(value, kFixedOutputs, ValueBuffer::DisplayFixedOutput);
}

const char* DisplayOrientationName(DWORD value) noexcept
{
    return NameOf(value, kDisplayOrientations, ValueBuffer::DisplayOrientation);
}

const char* FieldsNames(DWORD flags) noexcept
{
    return FlagNames(flags, kFields, &NameBuffers::fields);
}

const char* DisplayFlagsNames(DWORD flags) noexcept
{
    return FlagNames(flags, kDisplayFlags, &NameBuffers::displayFlags);
}

const char* FeatureNames(uint32_t flags) noexcept
{
    return FlagNames(flags, kFeatures, &NameBuffers::features);
}

const char* LockedNames(uint32_t flags) noexcept
{
    return FlagNames(flags, kLocks, &NameBuffers::locks);
}

void ReleaseNameBuffers() noexcept
{
    ReleaseThreadNameBuffers();
}

} // namespace PrintUtils
} // namespace tsypr
