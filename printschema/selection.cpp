#include "printschema/selection.h"

namespace tsypr
{

// A failing question leaves the receiving pointer as it was, which is null here.

ComPtr<IXMLDOMNode> SelectNode(IXMLDOMNode* from, const Bstr& query) noexcept
{
    ComPtr<IXMLDOMNode> node;
    return from->selectSingleNode(query.Get(), node.GetAddressOf()) == S_OK ? node : nullptr;
}

ComPtr<IXMLDOMNodeList> SelectNodes(IXMLDOMNode* from, const Bstr& query) noexcept
{
    ComPtr<IXMLDOMNodeList> nodes;
    return from->selectNodes(query.Get(), nodes.GetAddressOf()) == S_OK ? nodes : nullptr;
}

bool ReadAttribute(IXMLDOMNode* node, const Bstr& name, Variant& value) noexcept
{
    const ComPtr<IXMLDOMElement> element = ElementOf(node);
    return element != nullptr && element->getAttribute(name.Get(), value.Receive()) == S_OK && value.IsText();
}

} // namespace tsypr
