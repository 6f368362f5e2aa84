#include "bench/straight_dom.h"

#include <combaseapi.h>
#include <shlwapi.h>

#include <cwchar>
#include <deque>
#include <stdexcept>
#include <string>

namespace tsypr::bench
{
namespace
{

void Check(HRESULT result, const char* what)
{
    if (result != S_OK)
    {
        throw std::runtime_error(std::string("print schema documents cannot be measured: ") + what);
    }
}

VARIANT TextValue(BSTR text)
{
    VARIANT value = {};
    value.vt = VT_BSTR;
    value.bstrVal = text;
    return value;
}

const StraightFeature& NupOfTickets()
{
    static const StraightFeature s_nup(L"psf:PrintTicket", {L"psk:JobNUpAllDocumentsContiguously", L"psk:DocumentNUp"});
    return s_nup;
}

void RemoveStraight(IXMLDOMDocument2* doc, BSTR tag, const wchar_t* wanted)
{
    static const BSTR s_name = KeptText(L"name");
    ComPtr<IXMLDOMNodeList> list;
    doc->getElementsByTagName(tag, list.GetAddressOf());
    const long count = LengthOf(list.Get());
    for (long i = 0; i < count; ++i)
    {
        const ComPtr<IXMLDOMElement> element = ElementOf(ItemOf(list.Get(), i).Get());
        Variant name;
        element->getAttribute(s_name, name.Receive());
        if (name.IsText() && _wcsicmp(name.Get().bstrVal, wanted) == 0)
        {
            ComPtr<IXMLDOMNode> parent;
            element->get_parentNode(parent.GetAddressOf());
            parent->removeChild(element.Get(), nullptr);
            return;
        }
    }
}

} // namespace

void LoadStraight(IXMLDOMDocument2* doc, const void* bytes, UINT size)
{
    ComPtr<IStream> stream;
    Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()), "no stream");
    Check(IStream_Write(stream.Get(), bytes, size), "no memory");
    Check(IStream_Reset(stream.Get()), "no begin");
    VARIANT source = {};
    source.vt = VT_UNKNOWN;
    source.punkVal = stream.Get();
    VARIANT_BOOL loaded = VARIANT_FALSE;
    Check(doc->load(source, &loaded), "a document does not load");
}

std::vector<BYTE> SaveStraight(IXMLDOMDocument2* doc)
{
    ComPtr<IStream> stream;
    Check(doc->QueryInterface(IID_IStream, reinterpret_cast<void**>(stream.GetAddressOf())), "no stream");
    ULARGE_INTEGER size = {};
    Check(IStream_Size(stream.Get(), &size), "no size");
    std::vector<BYTE> bytes(size.LowPart);
    Check(IStream_Read(stream.Get(), bytes.data(), size.LowPart), "no text");
    return bytes;
}

ComPtr<IXMLDOMDocument2> NewDocument()
{
    ComPtr<IXMLDOMDocument2> doc;
    Check(CoCreateInstance(kClsidDomDocument60,
                           nullptr,
                           CLSCTX_ALL,
                           kIidXmlDomDocument2,
                           reinterpret_cast<void**>(doc.GetAddressOf())),
          "no document");
    return doc;
}

BSTR KeptText(const wchar_t* text)
{
    static std::deque<Bstr> s_texts;
    return s_texts.emplace_back(text).Get();
}

ComPtr<IXMLDOMNode> SelectStraight(IXMLDOMNode* from, BSTR query)
{
    ComPtr<IXMLDOMNode> node;
    from->selectSingleNode(query, node.GetAddressOf());
    return node;
}

size_t OptionNames(IXMLDOMNode* feature)
{
    static const BSTR s_option = KeptText(L"psf:Option");
    static const BSTR s_name = KeptText(L"name");
    ComPtr<IXMLDOMNodeList> options;
    feature->selectNodes(s_option, options.GetAddressOf());
    size_t found = 0;
    const long count = LengthOf(options.Get());
    for (long i = 0; i < count; ++i)
    {
        Variant name;
        ElementOf(ItemOf(options.Get(), i).Get())->getAttribute(s_name, name.Receive());
        found += name.IsText() ? 1U : 0U;
    }
    return found;
}

StraightFeature::StraightFeature(const wchar_t* root, std::initializer_list<const wchar_t*> names)
    : m_root(KeptText(root))
{
    for (const wchar_t* name : names)
    {
        m_queries.push_back(KeptText((root + (L"/psf:Feature[@name='" + std::wstring(name)) + L"']").c_str()));
    }
}

ComPtr<IXMLDOMNode> StraightFeature::Find(IXMLDOMDocument2* doc) const
{
    static const BSTR s_binding = KeptText(L"xmlns:psf");
    static const BSTR s_language = KeptText(L"SelectionLanguage");
    static const BSTR s_namespaces = KeptText(L"SelectionNamespaces");
    static const BSTR s_xpath = KeptText(L"XPath");
    ComPtr<IXMLDOMNodeList> roots;
    doc->getElementsByTagName(m_root, roots.GetAddressOf());
    Variant uri;
    ElementOf(ItemOf(roots.Get(), 0).Get())->getAttribute(s_binding, uri.Receive());
    const Bstr namespaces({L"xmlns:psf='", uri.Text(), L"'"});
    doc->setProperty(s_language, TextValue(s_xpath));
    doc->setProperty(s_namespaces, namespaces.Borrow());
    ComPtr<IXMLDOMNode> feature;
    for (const BSTR query : m_queries)
    {
        feature = SelectStraight(doc, query);
        if (feature != nullptr)
        {
            break;
        }
    }
    return feature;
}

void StraightFeature::Option(IXMLDOMDocument2* ticket, BSTR newName) const
{
    static const BSTR s_option = KeptText(L"psf:Option");
    static const BSTR s_name = KeptText(L"name");
    const ComPtr<IXMLDOMElement> option = ElementOf(SelectStraight(Find(ticket).Get(), s_option).Get());
    if (newName != nullptr)
    {
        option->setAttribute(s_name, TextValue(newName));
        return;
    }
    Variant name;
    option->getAttribute(s_name, name.Receive());
}

void StraightFeature::Options(IXMLDOMDocument2* capabilities) const
{
    static const BSTR s_option = KeptText(L"psf:Option");
    static const BSTR s_name = KeptText(L"name");
    static const BSTR s_displayName = KeptText(L"psf:Property[@name='psk:DisplayName']/psf:Value");
    ComPtr<IXMLDOMNodeList> options;
    Find(capabilities)->selectNodes(s_option, options.GetAddressOf());
    const long count = LengthOf(options.Get());
    for (long i = 0; i < count; ++i)
    {
        const ComPtr<IXMLDOMNode> option = ItemOf(options.Get(), i);
        Variant name;
        ReceivedBstr displayName;
        ElementOf(option.Get())->getAttribute(s_name, name.Receive());
        SelectStraight(option.Get(), s_displayName)->get_text(displayName.Receive());
    }
}

void StraightNup(IXMLDOMDocument2* ticket, int pages, BSTR newDirection)
{
    static const BSTR s_value = KeptText(L"psf:Option/psf:ScoredProperty[@name='psk:PagesPerSheet']/psf:Value");
    static const BSTR s_option = KeptText(L"psf:Feature[@name='psk:PresentationDirection']/psf:Option");
    static const BSTR s_name = KeptText(L"name");
    const ComPtr<IXMLDOMNode> feature = NupOfTickets().Find(ticket);
    const ComPtr<IXMLDOMNode> value = SelectStraight(feature.Get(), s_value);
    const ComPtr<IXMLDOMElement> option = ElementOf(SelectStraight(feature.Get(), s_option).Get());
    Variant read;
    if (newDirection == nullptr)
    {
        value->get_nodeTypedValue(read.Receive());
        option->getAttribute(s_name, read.Receive());
        return;
    }
    VARIANT number = {};
    number.vt = VT_INT;
    number.intVal = pages;
    value->put_nodeTypedValue(number);
    option->setAttribute(s_name, TextValue(newDirection));
}

size_t StraightNupCapability(IXMLDOMDocument2* capabilities)
{
    static const StraightFeature s_nup(L"psf:PrintCapabilities",
                                       {L"psk:JobNUpAllDocumentsContiguously", L"psk:DocumentNUp"});
    static const BSTR s_option = KeptText(L"psf:Option");
    static const BSTR s_value = KeptText(L"psf:ScoredProperty[@name='psk:PagesPerSheet']/psf:Value");
    static const BSTR s_direction = KeptText(L"psf:Feature[@name='psk:PresentationDirection']");
    const ComPtr<IXMLDOMNode> feature = s_nup.Find(capabilities);
    ComPtr<IXMLDOMNodeList> options;
    feature->selectNodes(s_option, options.GetAddressOf());
    size_t found = 0;
    const long count = LengthOf(options.Get());
    for (long i = 0; i < count; ++i)
    {
        Variant text;
        SelectStraight(ItemOf(options.Get(), i).Get(), s_value)->get_nodeTypedValue(text.Receive());
        found += text.IsText() ? 1U : 0U;
    }
    return found + OptionNames(SelectStraight(feature.Get(), s_direction).Get());
}

void RemoveScalingStraight(IXMLDOMDocument2* doc)
{
    static const BSTR s_feature = KeptText(L"psf:Feature");
    static const BSTR s_parameter = KeptText(L"psf:ParameterDef");
    RemoveStraight(doc, s_feature, L"psk:PageScaling");
    RemoveStraight(doc, s_parameter, L"psk:PageScalingScale");
}

} // namespace tsypr::bench
