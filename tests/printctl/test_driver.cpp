// A small printer driver with fixed answers, so that the program can be tried without the product's own libraries. The
// same file serves as UI library, as remote printer service and as language library.
#include "remote/private_devmode.h"
#include "ui/document_property_header.h"

#include <windows.h>

#include <compstui.h>
#include <winspool.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <string_view>

namespace
{

using namespace tsypr;

constexpr WORD kLeadingExtra = 8;
constexpr LONG kTotalSize = sizeof(DEVMODEW) + kLeadingExtra + sizeof(PrivateDevMode);

constexpr WORD kPapers[] = {9, 1, 300};
constexpr POINT kPaperSizes[] = {{2100, 2970}, {2159, 2794}, {1055, 2415}};
constexpr const wchar_t* kPaperNames[] = {L"A4", L"Letter", L"Umschlag gro\u00df"};
constexpr WORD kBins[] = {7, 2};
constexpr const wchar_t* kBinNames[] = {L"Automatically Select", L"Tray 2"};
constexpr DWORD kMediaTypes[] = {1, 0x80000005};
constexpr const wchar_t* kMediaTypeNames[] = {L"Plain", L"Glossy Photo"};
constexpr LONG kResolutions[][2] = {{600, 600}, {1200, 1200}};
constexpr DWORD kPagesPerSheet[] = {1, 2, 4};

// A printer of this name gives no device mode, one named Chatty writes more bin names than it announces.
bool IsNamed(const wchar_t* printer, std::wstring_view name)
{
    return printer != nullptr && std::wstring_view(printer) == name;
}

void MakeDefault(DEVMODEW* dm)
{
    std::memset(dm, 0, kTotalSize);
    wcscpy(dm->dmDeviceName, L"Test Driver");
    dm->dmSpecVersion = 0x401;
    dm->dmSize = sizeof(DEVMODEW);
    dm->dmDriverExtra = kLeadingExtra + sizeof(PrivateDevMode);
    dm->dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_DUPLEX | DM_PRINTQUALITY | DM_MEDIATYPE;
    dm->dmOrientation = DMORIENT_PORTRAIT;
    dm->dmPaperSize = DMPAPER_A4;
    dm->dmCopies = 1;
    dm->dmDuplex = DMDUP_SIMPLEX;
    dm->dmPrintQuality = 600;
    dm->dmMediaType = 0x80000005;
    auto* block =
        reinterpret_cast<PrivateDevMode*>(reinterpret_cast<unsigned char*>(dm) + kTotalSize - sizeof(PrivateDevMode));
    block->signature = kPrivateDevModeSignature;
    block->pagesPerSheet = 1;
    block->featureBitmap = kFeatureNup | kFeatureFinishing;
    block->lockedSettings = kLockedDuplex;
    block->nupLayout.Write(L"psk:RightBottom");
}

// Takes over what this driver knows; duplex is locked, and only listed papers are accepted.
void Merge(DEVMODEW* out, const DEVMODEW* in)
{
    if ((in->dmFields & DM_ORIENTATION) != 0)
    {
        out->dmOrientation = in->dmOrientation;
    }
    if ((in->dmFields & DM_COPIES) != 0)
    {
        out->dmCopies = in->dmCopies;
    }
    const auto paper = static_cast<WORD>(in->dmPaperSize);
    if ((in->dmFields & DM_PAPERSIZE) != 0 &&
        std::find(std::begin(kPapers), std::end(kPapers), paper) != std::end(kPapers))
    {
        out->dmPaperSize = in->dmPaperSize;
    }
    const PrivateDevMode* asked = GetPrivateDevMode(in);
    PrivateDevMode* block = GetPrivateDevMode(out);
    if (asked != nullptr && block != nullptr)
    {
        block->compression = asked->compression;
        block->pagesPerSheet = asked->pagesPerSheet;
        std::memcpy(block->watermark, asked->watermark, sizeof(block->watermark));
    }
}

template <typename Element, size_t Count>
DWORD GiveList(const Element (&list)[Count], void* output)
{
    if (output != nullptr)
    {
        std::memcpy(output, list, sizeof(list));
    }
    return static_cast<DWORD>(Count);
}

template <size_t Count>
DWORD GiveNames(const wchar_t* const (&names)[Count], size_t chars, void* output)
{
    for (size_t i = 0; output != nullptr && i < Count; ++i)
    {
        wcsncpy(static_cast<wchar_t*>(output) + i * chars, names[i], chars);
    }
    return static_cast<DWORD>(Count);
}

DWORD GiveBinNames(const wchar_t* printer, void* output)
{
    if (output != nullptr && IsNamed(printer, L"Chatty"))
    {
        wcscpy(static_cast<wchar_t*>(output) + std::size(kBinNames) * 24, L"One too many");
    }
    return GiveNames(kBinNames, 24, output);
}

} // namespace

#define TEST_EXPORT extern "C" __declspec(dllexport)

TEST_EXPORT DWORD WINAPI
DrvDeviceCapabilities(HANDLE, const wchar_t* printer, WORD index, void* output, const DEVMODEW* dm)
{
    return index == DC_PAPERS            ? GiveList(kPapers, output)
           : index == DC_PAPERSIZE       ? GiveList(kPaperSizes, output)
           : index == DC_PAPERNAMES      ? GiveNames(kPaperNames, 64, output)
           : index == DC_BINS            ? GiveList(kBins, output)
           : index == DC_BINNAMES        ? GiveBinNames(printer, output)
           : index == DC_MEDIATYPES      ? GiveList(kMediaTypes, output)
           : index == DC_MEDIATYPENAMES  ? GiveNames(kMediaTypeNames, 64, output)
           : index == DC_ENUMRESOLUTIONS ? GiveList(kResolutions, output)
           : index == DC_NUP             ? GiveList(kPagesPerSheet, output)
           : index == DC_MAXEXTENT       ? static_cast<DWORD>(MAKELONG(2159, 3556))
           : index == DC_COPIES          ? (dm == nullptr ? 99 : static_cast<DWORD>(dm->dmCopies))
           : index == DC_DUPLEX          ? 1
                                         : static_cast<DWORD>(-1);
}

TEST_EXPORT LONG WINAPI DrvDocumentPropertySheets(PROPSHEETUI_INFO*, LPARAM parameter)
{
    auto* header = reinterpret_cast<const DOCUMENTPROPERTYHEADER*>(parameter);
    if (IsNamed(header->pszPrinterName, L"Silent"))
    {
        return -1;
    }
    if (header->fMode == 0 || header->pdmOut == nullptr)
    {
        return kTotalSize;
    }
    DEVMODEW* out = header->pdmOut;
    MakeDefault(out);
    if (header->pdmIn != nullptr && (header->fMode & DM_IN_BUFFER) != 0)
    {
        Merge(out, header->pdmIn);
    }
    return 1;
}

TEST_EXPORT BOOL WINAPI
DrvConvertDevMode(const wchar_t* printer, const DEVMODEW* in, DEVMODEW* out, LONG* needed, DWORD mode)
{
    if (IsNamed(printer, L"Silent"))
    {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    if (mode == 1 && in != nullptr && out != nullptr)
    {
        out->dmOrientation = in->dmOrientation;
        out->dmCopies = in->dmCopies;
        return TRUE;
    }
    *needed = kTotalSize;
    if (out == nullptr)
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    MakeDefault(out);
    return TRUE;
}

#define TEST_SERVICE_FUNCTION(name)                                                                                    \
    TEST_EXPORT void name() {}
TEST_SERVICE_FUNCTION(VpOpenRemotePrinter)
TEST_SERVICE_FUNCTION(VpCloseRemotePrinter)
TEST_SERVICE_FUNCTION(VpGetDevMode)
TEST_SERVICE_FUNCTION(VpFreeDevMode)
TEST_SERVICE_FUNCTION(VpGetDeviceCapabilities)
TEST_SERVICE_FUNCTION(VpFreeDeviceCapabilities)
TEST_SERVICE_FUNCTION(VpMakePTQuery)
TEST_SERVICE_FUNCTION(VpFreePTData)
