#include "ptprovider/load_settings.h"

#include "printschema/automation.h"

namespace tsypr
{
namespace
{

constexpr wchar_t kProhibitDTD[] = L"ProhibitDTD";
constexpr wchar_t kMaxElementDepth[] = L"MaxElementDepth";
constexpr LONG kDepth = 256;

VARIANT BoolValue(VARIANT_BOOL flag) noexcept
{
    VARIANT value = {};
    value.vt = VT_BOOL;
    value.boolVal = flag;
    return value;
}

VARIANT LongValue(LONG number) noexcept
{
    VARIANT value = {};
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

// The document is still nobody else's.
HRESULT ApplySettings(IXMLDOMDocument2* doc)
{
    HRESULT result = doc->put_async(VARIANT_FALSE);
    if (SUCCEEDED(result))
    {
        result = doc->put_validateOnParse(VARIANT_FALSE);
    }
    if (SUCCEEDED(result))
    {
        result = doc->put_resolveExternals(VARIANT_FALSE);
    }
    if (SUCCEEDED(result))
    {
        result = doc->setProperty(Bstr(kProhibitDTD).Get(), BoolValue(VARIANT_TRUE));
    }
    if (SUCCEEDED(result))
    {
        // The default of this version already; older releases of it do not know the property.
        doc->setProperty(Bstr(kMaxElementDepth).Get(), LongValue(kDepth));
    }
    return result;
}

// Turns a setting off; returns whether it was on.
bool TurnOff(IXMLDOMDocument2* doc,
             HRESULT (STDMETHODCALLTYPE IXMLDOMDocument::*get)(VARIANT_BOOL*),
             HRESULT (STDMETHODCALLTYPE IXMLDOMDocument::*put)(VARIANT_BOOL)) noexcept
{
    VARIANT_BOOL value = VARIANT_FALSE;
    return (doc->*get)(&value) == S_OK && value != VARIANT_FALSE && SUCCEEDED((doc->*put)(VARIANT_FALSE));
}

} // namespace

HRESULT CreateDocument(IXMLDOMDocument2** doc)
{
    ComPtr<IXMLDOMDocument2> made;
    HRESULT result = CoCreateInstance(
        kClsidDomDocument60, nullptr, CLSCTX_ALL, kIidXmlDomDocument2, reinterpret_cast<void**>(made.GetAddressOf()));
    if (SUCCEEDED(result))
    {
        result = ApplySettings(made.Get());
    }
    *doc = SUCCEEDED(result) ? made.Detach() : nullptr;
    return result;
}

LoadSettings::LoadSettings(IXMLDOMDocument2* doc) : m_doc(doc)
{
    const Bstr prohibit(kProhibitDTD);
    Variant value;
    if (doc->getProperty(prohibit.Get(), value.Receive()) == S_OK && value.Get().vt == VT_BOOL &&
        value.Get().boolVal == VARIANT_FALSE)
    {
        m_documentTypes = SUCCEEDED(doc->setProperty(prohibit.Get(), BoolValue(VARIANT_TRUE)));
    }
    m_async = TurnOff(doc, &IXMLDOMDocument::get_async, &IXMLDOMDocument::put_async);
    m_validateOnParse = TurnOff(doc, &IXMLDOMDocument::get_validateOnParse, &IXMLDOMDocument::put_validateOnParse);
    m_resolveExternals = TurnOff(doc, &IXMLDOMDocument::get_resolveExternals, &IXMLDOMDocument::put_resolveExternals);
}

LoadSettings::~LoadSettings()
{
    if (m_async)
    {
        m_doc->put_async(VARIANT_TRUE);
    }
    if (m_validateOnParse)
    {
        m_doc->put_validateOnParse(VARIANT_TRUE);
    }
    if (m_resolveExternals)
    {
        m_doc->put_resolveExternals(VARIANT_TRUE);
    }
    if (m_documentTypes)
    {
        const BSTR prohibit = SysAllocString(kProhibitDTD);
        if (prohibit != nullptr)
        {
            m_doc->setProperty(prohibit, BoolValue(VARIANT_FALSE));
            SysFreeString(prohibit);
        }
    }
}

} // namespace tsypr
