#include "ptprovider/xml_memory.h"

#include "module/log.h"
#include "printschema/automation.h"
#include "ptprovider/load_settings.h"

#include <shlwapi.h>

#include <cwchar>
#include <optional>

namespace tsypr
{
namespace
{

constexpr char kToDocument[] = "Mem2IXML";
constexpr char kToMemory[] = "IXML2Mem";
constexpr char kRemove[] = "RemoveXmlNode";

// A stream over a copy of the bytes, at its begin.
HRESULT MakeStream(const BYTE* data, UINT size, ComPtr<IStream>& stream) noexcept
{
    HRESULT result = CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf());
    if (FAILED(result))
    {
        LogError("%s, failed to create data stream.\n", kToDocument);
        return result;
    }
    result = IStream_Write(stream.Get(), data, size);
    if (FAILED(result))
    {
        LogError("%s, failed to write data into stream.\n", kToDocument);
        return result;
    }
    result = IStream_Reset(stream.Get());
    if (FAILED(result))
    {
        LogError("%s, failed to move the seek position.\n", kToDocument);
    }
    return result;
}

HRESULT LoadStream(IXMLDOMDocument2* doc, IStream* stream, UINT size) noexcept
{
    VARIANT source = {};
    source.vt = VT_UNKNOWN;
    source.punkVal = stream;
    stream->AddRef();
    VARIANT_BOOL loaded = VARIANT_FALSE;
    const HRESULT result = doc->load(source, &loaded);
    VariantClear(&source);
    if (loaded == VARIANT_TRUE)
    {
        LogVerbose("%s, succeeded to load xml doc from memory with %d bytes.\n", kToDocument, static_cast<int>(size));
    }
    else
    {
        LogError("%s, failed to load xml doc from stream, error %d.\n", kToDocument, static_cast<int>(result));
    }
    return result; // S_FALSE for a text that is no document
}

// Reads the whole stream into new memory.
HRESULT ReadStream(IStream* stream, MallocPtr<BYTE>& data, UINT& size) noexcept
{
    ULARGE_INTEGER length = {};
    HRESULT result = IStream_Size(stream, &length);
    if (FAILED(result))
    {
        LogError("%s, failed to get stream size.\n", kToMemory);
        return result;
    }
    size = length.LowPart;
    LogVerbose("%s, stream size %d\n", kToMemory, static_cast<int>(size));
    data.reset(static_cast<BYTE*>(std::malloc(size)));
    if (data == nullptr)
    {
        LogError("%s, failed to allocate memory.\n", kToMemory);
        return E_OUTOFMEMORY;
    }
    result = IStream_Read(stream, data.get(), size);
    if (FAILED(result))
    {
        LogError("%s, failed to read stream data.\n", kToMemory);
    }
    return result;
}

// The first element of the list whose attribute has the value.
ComPtr<IXMLDOMElement> FindElement(IXMLDOMNodeList* list,
                                   long count,
                                   const Bstr& attributeName,
                                   const std::wstring& attributeValue)
{
    Variant value;
    for (long i = 0; i < count; ++i)
    {
        ComPtr<IXMLDOMElement> element = ElementOf(ItemOf(list, i).Get());
        if (element != nullptr && element->getAttribute(attributeName.Get(), value.Receive()) == S_OK &&
            value.IsText() && value.Get().bstrVal != nullptr &&
            _wcsicmp(value.Get().bstrVal, attributeValue.c_str()) == 0)
        {
            return element;
        }
    }
    return nullptr;
}

bool RemoveFromParent(IXMLDOMElement* element) noexcept
{
    ComPtr<IXMLDOMNode> parent;
    if (element->get_parentNode(parent.GetAddressOf()) != S_OK || parent == nullptr)
    {
        return false;
    }
    const HRESULT result = parent->removeChild(element, nullptr);
    if (result != S_OK)
    {
        LogError("%s, removeChild returned %d.\n", kRemove, static_cast<int>(result));
        return false;
    }
    return true;
}

} // namespace

HRESULT Mem2IXML(IXMLDOMDocument2** doc, const BYTE* data, UINT size)
{
    std::optional<LoadSettings> settings; // a document of our own has them for good
    if (*doc == nullptr)
    {
        LogVerbose("%s, create instance for xml doc.\n", kToDocument);
        const HRESULT result = CreateDocument(doc);
        if (FAILED(result))
        {
            LogError("%s, failed to create xml doc instance.\n", kToDocument);
            return result;
        }
    }
    else
    {
        settings.emplace(*doc);
    }
    ComPtr<IStream> stream;
    const HRESULT result = MakeStream(data, size, stream);
    return FAILED(result) ? result : LoadStream(*doc, stream.Get(), size);
}

HRESULT IXML2Mem(BYTE** data, UINT* size, IXMLDOMDocument2** doc) noexcept
{
    *data = nullptr;
    *size = 0;
    ComPtr<IStream> stream;
    HRESULT result = (*doc)->QueryInterface(IID_IStream, reinterpret_cast<void**>(stream.GetAddressOf()));
    if (FAILED(result))
    {
        LogError("%s, failed to query IStream interface.\n", kToMemory);
        return result;
    }
    MallocPtr<BYTE> bytes;
    UINT length = 0;
    result = ReadStream(stream.Get(), bytes, length);
    if (SUCCEEDED(result))
    {
        *data = bytes.release();
        *size = length;
    }
    return result;
}

bool RemoveXmlNode(IXMLDOMDocument2** doc,
                   const std::wstring& tagName,
                   const std::wstring& attributeName,
                   const std::wstring& attributeValue)
{
    const Bstr tag(tagName);
    ComPtr<IXMLDOMNodeList> list;
    const HRESULT result = (*doc)->getElementsByTagName(tag.Get(), list.GetAddressOf());
    if (list == nullptr)
    {
        LogError("%s, getElementsByTagName(%S) returned %d.\n", kRemove, tagName.c_str(), static_cast<int>(result));
        return false;
    }
    const long count = LengthOf(list.Get());
    const ComPtr<IXMLDOMElement> element =
        count < 1 ? nullptr : FindElement(list.Get(), count, Bstr(attributeName), attributeValue);
    if (element == nullptr)
    {
        LogError("%s, failed to locate target node.\n", kRemove);
        return false;
    }
    return RemoveFromParent(element.Get());
}

} // namespace tsypr
