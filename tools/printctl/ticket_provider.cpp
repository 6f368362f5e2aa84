#include "tools/printctl/ticket_provider.h"

#include "remote/private_devmode.h"
#include "service/ticket/result_codes.h"
#include "tools/printctl/errors.h"
#include "tools/printctl/files.h"
#include "tools/printctl/text.h"

#include <shlwapi.h>

#include <memory>

namespace tsypr::printctl
{

namespace
{

using service::kConflictResolved;

std::string Hexadecimal(HRESULT result)
{
    char text[16];
    snprintf(text, sizeof(text), "0x%08lx", static_cast<unsigned long>(result));
    return text;
}

void Check(HRESULT result, const std::string& call)
{
    if (FAILED(result))
    {
        throw Failure(ExitCode::System, call + " failed with " + Hexadecimal(result));
    }
}

VARIANT Borrowed(IUnknown* object)
{
    VARIANT value{};
    value.vt = VT_UNKNOWN;
    value.punkVal = object;
    return value;
}

// A document that loads at once and fetches nothing from elsewhere.
ComPtr<IXMLDOMDocument2> NewDocument()
{
    ComPtr<IXMLDOMDocument2> document;
    Check(CoCreateInstance(kClsidDomDocument60,
                           nullptr,
                           CLSCTX_INPROC_SERVER,
                           kIidXmlDomDocument2,
                           reinterpret_cast<void**>(document.GetAddressOf())),
          "creating an XML document");
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    document->put_resolveExternals(VARIANT_FALSE);
    return document;
}

ComPtr<IXMLDOMDocument2> Load(const std::string& xml)
{
    ComPtr<IXMLDOMDocument2> document = NewDocument();
    ComPtr<IStream> stream;
    stream.Attach(SHCreateMemStream(reinterpret_cast<const BYTE*>(xml.data()), static_cast<UINT>(xml.size())));
    VARIANT_BOOL isLoaded = VARIANT_FALSE;
    if (stream.Get() == nullptr || document->load(Borrowed(stream.Get()), &isLoaded) != S_OK ||
        isLoaded == VARIANT_FALSE)
    {
        throw Failure(ExitCode::BadFile, "the print ticket is no XML document that can be loaded");
    }
    return document;
}

std::string Save(IXMLDOMDocument2* document)
{
    ComPtr<IStream> stream;
    stream.Attach(SHCreateMemStream(nullptr, 0));
    if (stream.Get() == nullptr)
    {
        throw std::bad_alloc();
    }
    Check(document->save(Borrowed(stream.Get())), "saving an XML document");
    STATSTG state{};
    Check(stream->Stat(&state, STATFLAG_NONAME), "saving an XML document");
    Check(stream->Seek({}, STREAM_SEEK_SET, nullptr), "saving an XML document");
    std::string text(static_cast<size_t>(state.cbSize.QuadPart), '\0');
    ULONG count = 0;
    Check(stream->Read(text.data(), static_cast<ULONG>(text.size()), &count), "saving an XML document");
    text.resize(count);
    return text;
}

struct LocalFreer
{
    void operator()(void* memory) const noexcept
    {
        LocalFree(memory);
    }
};

// Takes the provider's steps before a first conversion in the services' order.
void Bind(IPrintTicketProvider& provider, const PrinterHandle& printer, const std::string& name)
{
    INT* versions = nullptr;
    INT count = 0;
    Check(provider.GetSupportedVersions(printer.Get(), &versions, &count), "GetSupportedVersions for " + name);
    const INT version = count > 0 ? versions[0] : 0;
    CoTaskMemFree(versions);
    SHIMOPTS options = PTSHIM_DEFAULT;
    DWORD fields = 0;
    INT namespaceCount = 0;
    BSTR* namespaces = nullptr;
    Check(provider.BindPrinter(printer.Get(), version, &options, &fields, &namespaceCount, &namespaces),
          "BindPrinter for " + name);
    for (INT i = 0; namespaces != nullptr && i < namespaceCount; ++i)
    {
        SysFreeString(namespaces[i]);
    }
    CoTaskMemFree(namespaces);
}

} // namespace

ComApartment::ComApartment()
{
    Check(CoInitializeEx(nullptr, COINIT_MULTITHREADED), "CoInitializeEx");
}

ComApartment::~ComApartment()
{
    CoUninitialize();
}

TicketProvider::TicketProvider(const PrinterHandle& printer, const std::wstring& name)
    : m_printer(name), m_library(LoadLibraryWithExports(DriverOf(printer, name).configFile, {"DllGetClassObject"}))
{
    using Function = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    const auto getClassObject =
        reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_library.get(), "DllGetClassObject")));
    ComPtr<IClassFactory> factory;
    Check(getClassObject(kClsidPTProvider, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf())),
          CallName("DllGetClassObject"));
    Check(
        factory->CreateInstance(nullptr, kIidPrintTicketProvider, reinterpret_cast<void**>(m_provider.GetAddressOf())),
        CallName("IClassFactory::CreateInstance"));
    Bind(*m_provider.Get(), printer, Quoted(name));
}

std::string TicketProvider::CallName(const char* method) const
{
    return std::string(method) + " for " + Quoted(m_printer);
}

std::string TicketProvider::FromDevMode(const DevModeBuffer& deviceMode) const
{
    const ComPtr<IXMLDOMDocument2> ticket = NewDocument();
    DevModeBuffer input = deviceMode;
    const auto size = static_cast<ULONG>(input.Get()->dmSize + input.Get()->dmDriverExtra);
    Check(m_provider->ConvertDevModeToPrintTicket(size, input.Get(), ticket.Get()),
          CallName("ConvertDevModeToPrintTicket"));
    return Save(ticket.Get());
}

DevModeBuffer TicketProvider::ToDevMode(const std::string& ticket, bool& isConflictResolved) const
{
    const ComPtr<IXMLDOMDocument2> document = Load(ticket);
    ULONG size = 0;
    DEVMODEW* output = nullptr;
    const HRESULT result = m_provider->ConvertPrintTicketToDevMode(document.Get(), 0, nullptr, &size, &output);
    const std::unique_ptr<DEVMODEW, LocalFreer> owner(output);
    const std::string call = CallName("ConvertPrintTicketToDevMode");
    Check(result, call);
    if (output == nullptr || size < sizeof(DEVMODEW) || size < DevModeTotalSize(output))
    {
        throw Failure(ExitCode::System, call + " gave no device mode");
    }
    isConflictResolved = result == kConflictResolved;
    return DevModeBuffer::CopyOf(output);
}

std::string TicketProvider::Capabilities(const std::optional<std::string>& ticket) const
{
    const ComPtr<IXMLDOMDocument2> document = ticket ? Load(*ticket) : nullptr;
    ComPtr<IXMLDOMDocument2> capabilities;
    const std::string call = CallName("GetPrintCapabilities");
    Check(m_provider->GetPrintCapabilities(document.Get(), capabilities.GetAddressOf()), call);
    if (capabilities.Get() == nullptr)
    {
        throw Failure(ExitCode::System, call + " gave no document");
    }
    return Save(capabilities.Get());
}

TicketProvider::Answer TicketProvider::Validate(const std::string& ticket) const
{
    const ComPtr<IXMLDOMDocument2> document = Load(ticket);
    const HRESULT result = m_provider->ValidatePrintTicket(document.Get());
    Check(result, CallName("ValidatePrintTicket"));
    return {Save(document.Get()), result == kConflictResolved};
}

} // namespace tsypr::printctl
