#ifndef TESSARY_SERVICE_TICKET_XML_ELEMENT_H
#define TESSARY_SERVICE_TICKET_XML_ELEMENT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tsypr::service
{

// A name with its namespace resolved; prefixes play no part in comparing names.
struct QName
{
    std::string uri;
    std::string local;

    bool operator==(const QName&) const = default;
};

struct XmlAttribute
{
    QName name;
    std::string value;
    // The name that the value stands for, when it is a qualified name with a declared prefix.
    std::optional<QName> qualified;
};

// One `xmlns` declaration; the prefix is empty for the default namespace.
struct XmlDeclaration
{
    std::string prefix;
    std::string uri;
};

// An element of a document held in memory. Texts are UTF-8. Comments and processing instructions are not kept.
struct XmlElement
{
    QName tag;
    std::vector<XmlAttribute> attributes;
    std::vector<XmlDeclaration> declarations;
    std::vector<XmlElement> children;
    std::string text; // all the text directly inside, without the white space around it
    std::optional<QName> qualifiedText;

    // Null when there is none.
    const XmlAttribute* FindAttribute(const QName& name) const;

    // The value of the attribute `name`, resolved; nothing when it is missing or its prefix is not declared.
    const std::optional<QName>& Name() const;

    bool IsNamed(const QName& tagName, const QName& name) const;

    // The first child with this tag, or with this tag and `name` attribute; null when there is none.
    const XmlElement* FindChild(const QName& tagName) const;
    const XmlElement* FindChild(const QName& tagName, const QName& name) const;

    // Appends a child and returns it; the reference holds until the next child is added.
    XmlElement& Add(XmlElement child);
};

} // namespace tsypr::service

#endif
