#include "module/log.h"
#include "printschema/pt_parser.h"
#include "printschema/selection.h"

namespace tsypr
{
namespace
{

constexpr char kFunction[] = "PTParser::GetFeatureRootNode";

ComPtr<IXMLDOMElement> FirstElement(IXMLDOMDocument2* xmlDoc, const wchar_t* tagName)
{
    const Bstr tag(tagName);
    ComPtr<IXMLDOMNodeList> elements;
    if (xmlDoc->getElementsByTagName(tag.Get(), elements.GetAddressOf()) != S_OK || elements == nullptr)
    {
        return nullptr;
    }
    return ElementOf(ItemOf(elements.Get(), 0).Get());
}

// Lets XPath questions use "psf:" for what the document itself binds to it, so any version of the framework will do. A
// document that does not bind it is not asked any further here: its features are just not found.
void SelectNamespaceOf(IXMLDOMDocument2* xmlDoc, IXMLDOMNode* root)
{
    static constexpr wchar_t kLanguage[] = L"SelectionLanguage";
    static constexpr wchar_t kNamespaces[] = L"SelectionNamespaces";
    Variant uri;
    ReadAttribute(root, Bstr(L"xmlns:psf"), uri);
    const Bstr xpath(L"XPath");
    const Bstr namespaces({L"xmlns:psf='", uri.Text(), L"'"});
    xmlDoc->setProperty(Bstr(kLanguage).Get(), xpath.Borrow());
    xmlDoc->setProperty(Bstr(kNamespaces).Get(), namespaces.Borrow());
}

} // namespace

ComPtr<IXMLDOMNode> PTParser::GetFeatureRootNode(IXMLDOMDocument2* xmlDoc,
                                                 const wchar_t* rootElement,
                                                 FeatureNames featureNames)
{
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kFunction);
        return nullptr;
    }
    const ComPtr<IXMLDOMElement> root = FirstElement(xmlDoc, rootElement);
    if (root == nullptr)
    {
        LogError("%s, no \"%S\" element found\n", kFunction, rootElement);
        return nullptr;
    }
    SelectNamespaceOf(xmlDoc, root.Get());
    for (const wchar_t* name : featureNames)
    {
        ComPtr<IXMLDOMNode> feature = SelectNode(xmlDoc, Bstr({rootElement, L"/psf:Feature[@name='", name, L"']"}));
        if (feature != nullptr)
        {
            return feature;
        }
        LogVerbose("%s, can't find \"%S\" node.\n", kFunction, name);
    }
    return nullptr;
}

} // namespace tsypr
