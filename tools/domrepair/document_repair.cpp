#include "tools/domrepair/document_repair.h"

#include "tools/domrepair/saved_text.h"

#include <mutex>
#include <set>
#include <string>
#include <string_view>

namespace tsypr::domrepair
{
namespace
{

using Document = IXMLDOMDocument2;

// Wine's own functions.
IXMLDOMDocument2Vtbl g_document;
IXMLDOMElementVtbl g_element;

// The documents whose program allowed document types.
std::mutex g_lock;
std::set<const void*> g_allowing;

// For one call; the stream is borrowed.
VARIANT StreamValue(IStream* stream) noexcept
{
    VARIANT value = {};
    value.vt = VT_UNKNOWN;
    value.punkVal = reinterpret_cast<IUnknown*>(stream);
    return value;
}

BSTR NewText(std::wstring_view text) noexcept
{
    return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

bool HasDocumentType(Document* document) noexcept
{
    IXMLDOMDocumentType* type = nullptr;
    document->lpVtbl->get_doctype(document, &type);
    if (type == nullptr)
    {
        return false;
    }
    type->lpVtbl->Release(type);
    const std::scoped_lock guard(g_lock);
    return !g_allowing.contains(document);
}

void LoadText(Document* document, std::wstring_view text) noexcept
{
    const BSTR bstr = NewText(text);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    g_document.loadXML(document, bstr, &loaded);
    SysFreeString(bstr);
}

// Leaves an empty document and a parse error.
void Empty(Document* document) noexcept
{
    LoadText(document, L"<e/>");
    IXMLDOMElement* root = nullptr;
    if (document->lpVtbl->get_documentElement(document, &root) == S_OK)
    {
        document->lpVtbl->removeChild(document, reinterpret_cast<IXMLDOMNode*>(root), nullptr);
        root->lpVtbl->Release(root);
    }
    LoadText(document, L"<");
}

// What has not been loaded leaves an empty document, VARIANT_FALSE and S_FALSE. A document with a document type is not
// loaded.
HRESULT AfterLoad(Document* document, HRESULT result, VARIANT_BOOL* loaded) noexcept
{
    const bool parsed = result == S_OK;
    if ((result != E_FAIL && result != S_FALSE && !parsed) || (parsed && !HasDocumentType(document)))
    {
        return result;
    }
    Empty(document);
    if (loaded != nullptr)
    {
        *loaded = VARIANT_FALSE;
    }
    return S_FALSE;
}

// The bytes of a stream from where it stands; UTF-16 gets the mark by which the parser knows it in any case.
SAFEARRAY* RestOf(IStream* stream)
{
    std::string bytes = ReadRest(stream);
    if (bytes.starts_with(std::string_view("<\0", 2)))
    {
        bytes.insert(0, "\xFF\xFE");
    }
    SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    if (array != nullptr)
    {
        bytes.copy(static_cast<char*>(array->pvData), bytes.size());
    }
    return array;
}

HRESULT WINAPI Load(Document* document, VARIANT source, VARIANT_BOOL* loaded)
{
    IStream* stream = nullptr;
    if (source.vt == VT_UNKNOWN && source.punkVal != nullptr)
    {
        source.punkVal->lpVtbl->QueryInterface(source.punkVal, IID_IStream, reinterpret_cast<void**>(&stream));
    }
    if (stream == nullptr)
    {
        return AfterLoad(document, g_document.load(document, source, loaded), loaded);
    }
    // Wine copies a stream in small pieces into memory that it moves each time: a large one takes minutes.
    VARIANT bytes = {};
    bytes.vt = VT_ARRAY | VT_UI1;
    bytes.parray = RestOf(stream);
    stream->lpVtbl->Release(stream);
    const HRESULT result =
        bytes.parray == nullptr ? E_OUTOFMEMORY : AfterLoad(document, g_document.load(document, bytes, loaded), loaded);
    VariantClear(&bytes);
    return result;
}

HRESULT WINAPI LoadXML(Document* document, BSTR text, VARIANT_BOOL* loaded) noexcept
{
    return AfterLoad(document, g_document.loadXML(document, text, loaded), loaded);
}

// Whole names, prefix included, in document order.
template <class Node>
bool SelectByName(Node* node, const wchar_t* name, IXMLDOMNodeList** list)
{
    if (name == nullptr || std::wstring_view(name).find_first_of(L"*'") != std::wstring_view::npos)
    {
        return false;
    }
    const BSTR query = NewText(L"descendant::*[name()='" + std::wstring(name) + L"']");
    const HRESULT result = node->lpVtbl->selectNodes(node, query, list);
    SysFreeString(query);
    return result == S_OK;
}

HRESULT WINAPI DocumentElementsByName(Document* document, BSTR name, IXMLDOMNodeList** list)
{
    return SelectByName(document, name, list) ? S_OK : g_document.getElementsByTagName(document, name, list);
}

HRESULT WINAPI ElementElementsByName(IXMLDOMElement* element, BSTR name, IXMLDOMNodeList** list)
{
    return SelectByName(element, name, list) ? S_OK : g_element.getElementsByTagName(element, name, list);
}

// Wine takes a text for markup.
HRESULT WINAPI PutTypedValue(IXMLDOMElement* element, VARIANT value) noexcept
{
    return value.vt == VT_BSTR ? g_element.put_text(element, value.bstrVal)
                               : g_element.put_nodeTypedValue(element, value);
}

// Wine writes UTF-8 whatever the document declares.
HRESULT WINAPI Save(Document* document, VARIANT destination)
{
    const bool known = destination.vt == VT_BSTR || destination.vt == VT_UNKNOWN;
    IStream* stream = known && destination.punkVal != nullptr ? NewStream() : nullptr;
    if (stream == nullptr)
    {
        return g_document.save(document, destination);
    }
    HRESULT result = g_document.save(document, StreamValue(stream));
    if (SUCCEEDED(result) && Rewind(stream))
    {
        result = WriteTo(destination, EncodedAsDeclared(ReadRest(stream)));
    }
    stream->lpVtbl->Release(stream);
    return result;
}

// Wine's documents are no streams.
HRESULT WINAPI Query(Document* document, REFIID iid, void** object)
{
    if (iid != IID_IStream)
    {
        return g_document.QueryInterface(document, iid, object);
    }
    *object = nullptr;
    IStream* stream = NewStream();
    if (stream == nullptr)
    {
        return E_OUTOFMEMORY;
    }
    const HRESULT result = Save(document, StreamValue(stream));
    if (SUCCEEDED(result) && Rewind(stream))
    {
        *object = stream;
        return S_OK;
    }
    stream->lpVtbl->Release(stream);
    return FAILED(result) ? result : E_FAIL;
}

HRESULT WINAPI SetProperty(Document* document, BSTR name, VARIANT value)
{
    const std::wstring_view property = name != nullptr ? name : L"";
    if (property == L"MaxElementDepth" || property == L"MaxXMLSize")
    {
        return S_OK; // Wine's parser has a limit of its own
    }
    const HRESULT result = g_document.setProperty(document, name, value);
    if (result == S_OK && property == L"ProhibitDTD" && value.vt == VT_BOOL)
    {
        const std::scoped_lock guard(g_lock);
        value.boolVal == VARIANT_FALSE ? (void)g_allowing.insert(document) : (void)g_allowing.erase(document);
    }
    return result;
}

HRESULT WINAPI GetProperty(Document* document, BSTR name, VARIANT* value)
{
    const std::wstring_view property = name != nullptr ? name : L"";
    if (value == nullptr || (property != L"ProhibitDTD" && property != L"MaxElementDepth"))
    {
        return g_document.getProperty(document, name, value);
    }
    if (property == L"MaxElementDepth")
    {
        value->vt = VT_I4;
        value->lVal = 256;
        return S_OK;
    }
    const std::scoped_lock guard(g_lock);
    value->vt = VT_BOOL;
    value->boolVal = g_allowing.contains(document) ? VARIANT_FALSE : VARIANT_TRUE;
    return S_OK;
}

ULONG WINAPI Release(Document* document) noexcept
{
    const ULONG left = g_document.Release(document);
    if (left == 0)
    {
        const std::scoped_lock guard(g_lock);
        g_allowing.erase(document);
    }
    return left;
}

// Keeps the functions of a table in `original` and lets `change` exchange some.
template <class Table, class Change>
bool ChangeTable(const Table* constTable, Table& original, Change change) noexcept
{
    auto* table = const_cast<Table*>(constTable);
    DWORD protection = 0;
    if (VirtualProtect(table, sizeof(Table), PAGE_EXECUTE_READWRITE, &protection) == FALSE)
    {
        return false;
    }
    original = *table;
    change(*table);
    VirtualProtect(table, sizeof(Table), protection, &protection);
    return true;
}

bool ChangeTables(Document* document, IXMLDOMElement* element) noexcept
{
    return ChangeTable(element->lpVtbl,
                       g_element,
                       [](IXMLDOMElementVtbl& table)
                       {
                           table.put_nodeTypedValue = PutTypedValue;
                           table.getElementsByTagName = ElementElementsByName;
                       }) &&
           ChangeTable(document->lpVtbl,
                       g_document,
                       [](IXMLDOMDocument2Vtbl& table)
                       {
                           table.QueryInterface = Query;
                           table.Release = Release;
                           table.getElementsByTagName = DocumentElementsByName;
                           table.load = Load;
                           table.loadXML = LoadXML;
                           table.save = Save;
                           table.setProperty = SetProperty;
                           table.getProperty = GetProperty;
                       });
}

} // namespace

HRESULT RepairDocuments(IClassFactory* factory) noexcept
{
    static std::once_flag s_once;
    static HRESULT s_result = E_FAIL;
    std::call_once(s_once,
                   [factory]
                   {
                       Document* document = nullptr;
                       IXMLDOMElement* element = nullptr;
                       const BSTR name = NewText(L"e");
                       if (factory->lpVtbl->CreateInstance(
                               factory, nullptr, kIidXmlDomDocument2, reinterpret_cast<void**>(&document)) == S_OK &&
                           document->lpVtbl->createElement(document, name, &element) == S_OK)
                       {
                           s_result = ChangeTables(document, element) ? S_OK : E_FAIL;
                           element->lpVtbl->Release(element);
                       }
                       SysFreeString(name);
                       if (document != nullptr)
                       {
                           document->lpVtbl->Release(document);
                       }
                   });
    return s_result;
}

} // namespace tsypr::domrepair
