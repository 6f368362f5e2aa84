// Reading and writing the settings of a print ticket.
#include "module/log.h"
#include "printschema/pt_parser.h"
#include "printschema/selection.h"

#include <cwchar>

namespace tsypr
{
namespace
{

constexpr char kNup[] = "PTParser::GetOrSetNupOption";
constexpr char kString[] = "PTParser::GetOrSetStringOption";

bool ReadPages(IXMLDOMNode* valueNode, uint32_t& pagesPerSheet)
{
    Variant value;
    if (FAILED(valueNode->get_nodeTypedValue(value.Receive())) || !value.IsText())
    {
        LogError("%s, failed to get value for node.\n", kNup);
        return false;
    }
    pagesPerSheet = value.Text().empty() ? 0 : static_cast<uint32_t>(_wtoi(value.Get().bstrVal));
    return true;
}

// Written as a number although it is read as a text: this is on purpose.
bool WritePages(IXMLDOMNode* valueNode, uint32_t pagesPerSheet)
{
    VARIANT value = {};
    value.vt = VT_INT;
    value.intVal = static_cast<INT>(pagesPerSheet);
    if (FAILED(valueNode->put_nodeTypedValue(value)))
    {
        LogError("%s, failed to set value for node.\n", kNup);
        return false;
    }
    return true;
}

// Reads or writes the name of an option on behalf of `function`.
bool GetOrSetName(IXMLDOMElement* option, bool set, std::wstring& name, const char* function)
{
    const Bstr nameAttribute(L"name");
    if (set)
    {
        const Bstr text(name);
        if (FAILED(option->setAttribute(nameAttribute.Get(), text.Borrow())))
        {
            LogError("%s, failed to set value for node.\n", function);
            return false;
        }
        return true;
    }
    Variant value;
    if (!ReadAttribute(option, nameAttribute, value))
    {
        LogError("%s, failed to get value for node.\n", function);
        return false;
    }
    name = value.Text();
    return true;
}

} // namespace

bool PTParser::GetOrSetNupOption(IXMLDOMDocument2* xmlDoc, bool set, uint32_t& pagesPerSheet, std::wstring& direction)
{
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kNup);
        return false;
    }
    const ComPtr<IXMLDOMNode> root = GetFeatureRootNode(xmlDoc, kPrintTicket, kNupFeatureNames);
    if (root == nullptr)
    {
        return false;
    }
    const ComPtr<IXMLDOMNode> valueNode =
        SelectNode(root.Get(), Bstr({L"psf:Option/psf:ScoredProperty[@name='", kPagesPerSheet, L"']/psf:Value"}));
    if (valueNode == nullptr)
    {
        LogError("%s, failed to get value node for nup option.\n", kNup);
        return false;
    }
    if (!(set ? WritePages(valueNode.Get(), pagesPerSheet) : ReadPages(valueNode.Get(), pagesPerSheet)))
    {
        return false;
    }
    const ComPtr<IXMLDOMElement> option = ElementOf(
        SelectNode(root.Get(), Bstr({L"psf:Feature[@name='", kPresentationDirection, L"']/psf:Option"})).Get());
    if (option == nullptr)
    {
        LogVerbose("%s, no Nup Layout node in print ticket.\n", kNup); // ordinary
        return false;
    }
    return GetOrSetName(option.Get(), set, direction, kNup);
}

bool PTParser::GetOrSetStringOption(IXMLDOMDocument2* xmlDoc, FeatureNames featureNames, bool set, std::wstring& value)
{
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kString);
        return false;
    }
    const ComPtr<IXMLDOMNode> root = GetFeatureRootNode(xmlDoc, kPrintTicket, featureNames);
    if (root == nullptr)
    {
        return false;
    }
    const ComPtr<IXMLDOMElement> option = ElementOf(SelectNode(root.Get(), Bstr(L"psf:Option")).Get());
    if (option == nullptr)
    {
        LogError("%s, no \"%S\" found in print ticket.\n", kString, L"psf:Option");
        return false;
    }
    return GetOrSetName(option.Get(), set, value, kString);
}

} // namespace tsypr
