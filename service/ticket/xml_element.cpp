#include "service/ticket/xml_element.h"

#include <algorithm>
#include <utility>

namespace tsypr::service
{

const XmlAttribute* XmlElement::FindAttribute(const QName& name) const
{
    const auto found = std::ranges::find(attributes, name, &XmlAttribute::name);
    return found == attributes.end() ? nullptr : &*found;
}

const std::optional<QName>& XmlElement::Name() const
{
    static const std::optional<QName> kNone;
    const XmlAttribute* name = FindAttribute({"", "name"});
    return name == nullptr ? kNone : name->qualified;
}

bool XmlElement::IsNamed(const QName& tagName, const QName& name) const
{
    return tag == tagName && Name() == name;
}

const XmlElement* XmlElement::FindChild(const QName& tagName) const
{
    const auto found = std::ranges::find(children, tagName, &XmlElement::tag);
    return found == children.end() ? nullptr : &*found;
}

const XmlElement* XmlElement::FindChild(const QName& tagName, const QName& name) const
{
    const auto found =
        std::ranges::find_if(children, [&](const XmlElement& child) { return child.IsNamed(tagName, name); });
    return found == children.end() ? nullptr : &*found;
}

XmlElement& XmlElement::Add(XmlElement child)
{
    return children.emplace_back(std::move(child));
}

} // namespace tsypr::service
