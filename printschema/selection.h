// XPath questions, put together from pieces.
#ifndef TESSARY_PRINTSCHEMA_SELECTION_H
#define TESSARY_PRINTSCHEMA_SELECTION_H

#include "printschema/automation.h"

namespace tsypr
{

// The first node that matches; empty when there is none or the question fails.
ComPtr<IXMLDOMNode> SelectNode(IXMLDOMNode* from, const Bstr& query) noexcept;

// The nodes that match; empty when the question fails.
ComPtr<IXMLDOMNodeList> SelectNodes(IXMLDOMNode* from, const Bstr& query) noexcept;

// Reads an attribute. False unless the node is an element and has the attribute as a text.
bool ReadAttribute(IXMLDOMNode* node, const Bstr& name, Variant& value) noexcept;

} // namespace tsypr

#endif
