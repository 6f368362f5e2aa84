// Print ticket to device mode.
#include "module/log.h"
#include "printschema/pt_parser.h"
#include "ptprovider/boundary.h"
#include "ptprovider/carried_settings.h"
#include "ptprovider/media_types.h"
#include "ptprovider/pt_provider.h"
#include "ptprovider/remote_query.h"
#include "ptprovider/xml_memory.h"
#include "remote/devmode_dump.h"
#include "remote/devmode_header_keeper.h"

#include <memory>

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "PTProvider::ConvertPrintTicketToDevMode";

struct LocalFreeDeleter
{
    void operator()(void* memory) const noexcept
    {
        LocalFree(memory);
    }
};
using LocalDevMode = std::unique_ptr<DEVMODEW, LocalFreeDeleter>;

// Whether a device mode of so many bytes is as long as it states: only then its parts can be reached.
bool IsWhole(const DEVMODEW* dm, uint32_t size) noexcept
{
    return size >= offsetof(DEVMODEW, dmFields) && DevModeTotalSize(dm) <= size;
}

void WritePrivateSettings(DEVMODEW* dm, const DriverOptions& options) noexcept
{
    if (PrivateDevMode* block = GetPrivateDevMode(dm))
    {
        const DevModeHeaderKeeper keeper(dm);
        RestoreSettings(*block, options);
    }
}

void WriteMediaTypeID(DEVMODEW* dm, const wchar_t* printerName, const std::wstring& mediaTypeName) noexcept
{
    uint32_t mediaType = 0;
    if (GetMediaTypeIDByName(printerName, mediaTypeName, dm, &mediaType) && DevModeHolds(dm, &DEVMODEW::dmMediaType))
    {
        dm->dmFields |= DM_MEDIATYPE;
        dm->dmMediaType = mediaType;
    }
}

} // namespace

HRESULT PTProvider::ConvertPrintTicketToDevMode(
    IXMLDOMDocument2* pPrintTicket, ULONG, PDEVMODEW, ULONG* pcbDevmodeOut, PDEVMODEW* ppDevmodeOut) noexcept
{
    if (pcbDevmodeOut == nullptr || ppDevmodeOut == nullptr)
    {
        LogError("%s, invalid parameters.\n", kFunction);
        return E_INVALIDARG;
    }
    return AtBoundary(kFunction, [&] { return TicketToDevMode(pPrintTicket, pcbDevmodeOut, ppDevmodeOut); });
}

HRESULT
PTProvider::TicketToDevMode(IXMLDOMDocument2* pPrintTicket, ULONG* pcbDevmodeOut, DEVMODEW** ppDevmodeOut)
{
    ComPtr<IXMLDOMDocument2> ticket; // released last
    const RemotePrinter printer(m_printerName.c_str());
    if (!printer.IsOpen())
    {
        LogError("%s, failed to open remote printer [%S].\n", kFunction, m_printerName.c_str());
        return E_FAIL;
    }
    ticket = pPrintTicket;
    XmlText input;
    DriverOptions options;
    std::optional<std::wstring> mediaTypeName;
    if (ticket != nullptr)
    {
        std::wstring dumpName = m_printerName + L"_PT2DM.xml";
        PTParser::DumpXMLDataIfEnabledInReg(ticket.Get(), dumpName);
        if (input.Take(ticket.Get()) != S_OK)
        {
            LogError("%s, failed to call IXML2Mem.\n", kFunction);
            return E_FAIL;
        }
        options = ReadOptions(ticket.Get());
        mediaTypeName = MediaTypeDisplayName(ticket.Get());
    }
    const RemoteQuery reply(printer, QueryKind::PT2DM, input.Data(), input.Size(), kFunction);
    input.Free();
    if (!reply.HasData())
    {
        return reply.Result();
    }
    *pcbDevmodeOut = reply.Size(); // and stays when there is no memory
    LocalDevMode devMode(static_cast<DEVMODEW*>(LocalAlloc(LMEM_ZEROINIT, reply.Size())));
    if (devMode == nullptr)
    {
        LogError("%s, failed to allocate DEVMODE\n", kFunction);
        return E_OUTOFMEMORY;
    }
    std::memcpy(static_cast<void*>(devMode.get()), reply.Data(), reply.Size());
    if (IsWhole(devMode.get(), reply.Size()))
    {
        WritePrivateSettings(devMode.get(), options);
        if (mediaTypeName)
        {
            WriteMediaTypeID(devMode.get(), m_printerName.c_str(), *mediaTypeName);
        }
        PrintUtils::DumpDevMode(devMode.get(), L"PT2DM, dmOut:");
    }
    else
    {
        // Handed on as it came, but not looked into.
        LogError("%s, the device mode returned is shorter than it states.\n", kFunction);
    }
    *ppDevmodeOut = devMode.release();
    return reply.Result();
}

// The display name of the ticket's media type, from the capabilities that go with the ticket.
std::optional<std::wstring> PTProvider::MediaTypeDisplayName(IXMLDOMDocument2* ticket)
{
    ComPtr<IXMLDOMDocument2> capabilities;
    if (FAILED(GetPrintCapabilities(ticket, capabilities.GetAddressOf())))
    {
        return std::nullopt;
    }
    std::wstring optionName;
    FeatureOptions displayNames;
    if (!PTParser::GetMediaTypeOption(ticket, optionName) ||
        !PTParser::GetMediaTypeOptions(capabilities.Get(), displayNames))
    {
        return std::nullopt;
    }
    const auto found = displayNames.find(optionName);
    return found != displayNames.end() ? std::optional(found->second) : std::nullopt;
}

} // namespace tsypr
