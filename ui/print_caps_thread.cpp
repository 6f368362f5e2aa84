#include "ui/print_caps_thread.h"

#include "module/log.h"
#include "printschema/pt_parser.h"
#include "ptprovider/boundary.h"
#include "ptprovider/print_caps_doc.h"
#include "remote/private_devmode.h"
#include "ui/capability_maps.h"

#include <objbase.h>

#include <utility>

namespace tsypr
{

CapabilityMap<NupCapability> NupCapabilities;
CapabilityMap<FinishingCapability> FinishingCapabilities;

namespace
{

constexpr char kFunction[] = "InitPrintCapsThreadProc";

void ReadNup(IXMLDOMDocument2* document, const wchar_t* printerName)
{
    NupCapability capability;
    if (!PTParser::GetNupCapability(document, capability))
    {
        LogError("%s, GetNupCapability failed\n", kFunction);
        return;
    }
    LogVerbose("%s, GetNupCapability succeed\n", kFunction);
    NupCapabilities.Store(printerName, std::move(capability));
}

void ReadFinishing(IXMLDOMDocument2* document, const wchar_t* printerName)
{
    FinishingCapability capability;
    if (!PTParser::GetFinishingCapability(document, capability))
    {
        LogError("%s, GetFinishingCapability failed\n", kFunction);
        return;
    }
    LogVerbose("%s, GetFinishingCapability succeed\n", kFunction);
    FinishingCapabilities.Store(printerName, std::move(capability));
}

void ReadPrintCaps(const DEVMODEW* devMode)
{
    const PrivateDevMode* block = GetPrivateDevMode(devMode);
    if (block == nullptr)
    {
        return;
    }
    const auto printerName = block->printerName.Read();
    ComPtr<IXMLDOMDocument2> document;
    if (!GetPrintCapsXmlDoc(printerName.text, devMode, document.GetAddressOf()))
    {
        LogError("%s, GetPrintCapsXmlDoc failed\n", kFunction);
        return;
    }
    LogVerbose("%s, GetPrintCapsXmlDoc succeed\n", kFunction);
    if ((block->featureBitmap & kFeatureNup) != 0)
    {
        ReadNup(document.Get(), printerName.text);
    }
    if ((block->featureBitmap & kFeatureFinishing) != 0)
    {
        ReadFinishing(document.Get(), printerName.text);
    }
}

} // namespace

DWORD WINAPI InitPrintCapsThreadProc(void* parameter) noexcept
{
    const HRESULT initialised = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (initialised != S_OK)
    {
        LogError("%s, COM library is not initialized successfully, ret = 0x%x\n",
                 kFunction,
                 static_cast<unsigned>(initialised));
        return 1;
    }
    try
    {
        ReadPrintCaps(static_cast<const DEVMODEW*>(parameter));
    }
    catch (...)
    {
        ResultOfException(kFunction);
    }
    CoUninitialize();
    return 0;
}

} // namespace tsypr
