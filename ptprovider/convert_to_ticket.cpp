// Device mode to print ticket.
#include "module/log.h"
#include "printschema/pt_parser.h"
#include "ptprovider/boundary.h"
#include "ptprovider/carried_settings.h"
#include "ptprovider/media_types.h"
#include "ptprovider/page_scaling.h"
#include "ptprovider/pt_provider.h"
#include "ptprovider/remote_query.h"
#include "ptprovider/xml_memory.h"
#include "remote/devmode_dump.h"

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "PTProvider::ConvertDevModeToPrintTicket";

std::wstring MediaTypeName(const wchar_t* printerName, const DEVMODEW* dm)
{
    const bool isSet = (DevModeField(dm, &DEVMODEW::dmFields) & DM_MEDIATYPE) != 0;
    return isSet ? GetMediaTypeNameByID(printerName, DevModeField(dm, &DEVMODEW::dmMediaType), dm) : std::wstring();
}

// What the device mode says besides what the client printer makes of it.
struct Asked
{
    DriverOptions options;
    std::wstring mediaTypeName; // empty when the media type is not set or has no name
};

// Takes what no ticket can carry into CarriedPrivateSettings, and the rest out for the ticket. A device mode without
// private settings has nothing to carry and leaves what is carried.
Asked TakeSettings(DEVMODEW* devMode, const wchar_t* printerName)
{
    Asked asked;
    if (devMode == nullptr)
    {
        // The bits that are carried still decide what is written.
        asked.options.hasNup = (CarriedPrivateSettings.featureBitmap & kFeatureNup) != 0;
        asked.options.hasFinishing = (CarriedPrivateSettings.featureBitmap & kFeatureFinishing) != 0;
        return asked;
    }
    PrintUtils::DumpDevMode(devMode, L"DM2PT, dmIn:");
    const PrivateDevMode* block = GetPrivateDevMode(devMode);
    if (block != nullptr)
    {
        CarrySettings(*block);
        asked.options = OptionsOf(*block);
    }
    asked.mediaTypeName = MediaTypeName(printerName, devMode);
    if (block != nullptr)
    {
        CarryWatermark(*block);
    }
    return asked;
}

} // namespace

HRESULT PTProvider::ConvertDevModeToPrintTicket(ULONG, PDEVMODEW pDevmode, IXMLDOMDocument2* pPrintTicket) noexcept
{
    if (pPrintTicket == nullptr)
    {
        LogError("%s, invalid parameters.\n", kFunction);
        return E_INVALIDARG;
    }
    return AtBoundary(kFunction, [&] { return DevModeToTicket(pDevmode, pPrintTicket); });
}

HRESULT PTProvider::DevModeToTicket(DEVMODEW* devMode, IXMLDOMDocument2* pPrintTicket)
{
    RemotePrinter printer(m_printerName.c_str());
    if (!printer.IsOpen())
    {
        LogError("%s, failed to open remote printer [%S].\n", kFunction, m_printerName.c_str());
        return E_FAIL;
    }
    const Asked asked = TakeSettings(devMode, m_printerName.c_str());
    const auto size = devMode != nullptr ? static_cast<uint32_t>(DevModeTotalSize(devMode)) : 0;
    RemoteQuery reply(printer, QueryKind::DM2PT, devMode, size, kFunction);
    HRESULT result = reply.Result();
    if (reply.Data() != nullptr && static_cast<int32_t>(reply.Size()) > 0)
    {
        ComPtr<IXMLDOMDocument2> ticket(pPrintTicket);
        IXMLDOMDocument2* target = ticket.Get();
        if (Mem2IXML(&target, reply.Data(), reply.Size()) == S_OK)
        {
            CorrectTicket(target, asked.options, asked.mediaTypeName);
        }
        else
        {
            LogError("%s, failed to call Mem2IXML.\n", kFunction);
            result = E_FAIL;
        }
        std::wstring dumpName = m_printerName + L"_DM2PT.xml";
        PTParser::DumpXMLDataIfEnabledInReg(target, dumpName);
    }
    reply.Release();
    printer.Close();
    LogVerbose("%s, return %d.\n", kFunction, static_cast<int>(result));
    return result;
}

// The driver differs from the client printer: it does not scale pages and has settings of its own.
void PTProvider::CorrectTicket(IXMLDOMDocument2* ticket,
                               const DriverOptions& options,
                               const std::wstring& mediaTypeName)
{
    RemovePageScaling(ticket);
    WriteOptions(ticket, options);
    ComPtr<IXMLDOMDocument2> capabilities;
    if (FAILED(GetPrintCapabilities(ticket, capabilities.GetAddressOf())) || mediaTypeName.empty())
    {
        return;
    }
    FeatureOptions displayNames;
    PTParser::GetMediaTypeOptions(capabilities.Get(), displayNames);
    for (const auto& [optionName, displayName] : displayNames)
    {
        if (displayName == mediaTypeName)
        {
            PTParser::SetMediaTypeOption(ticket, optionName);
            return;
        }
    }
}

} // namespace tsypr
