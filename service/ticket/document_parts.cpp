#include "service/ticket/document_parts.h"

#include <utility>

#include "service/ticket/keywords.h"

namespace tsypr::service
{

namespace
{

XmlElement MakeValue(const QName& type)
{
    XmlElement value = MakeElement("Value");
    value.attributes.push_back({TypeAttribute(), "", type});
    return value;
}

} // namespace

XmlElement MakeDocument(std::string_view root)
{
    XmlElement document = MakeElement(root);
    document.attributes.push_back({{"", "version"}, "1", std::nullopt});
    return document;
}

XmlElement MakeElement(std::string_view tag)
{
    XmlElement element;
    element.tag = Psf(tag);
    return element;
}

XmlElement MakeElement(std::string_view tag, const QName& name)
{
    XmlElement element = MakeElement(tag);
    element.attributes.push_back({{"", "name"}, "", name});
    return element;
}

void AddInteger(XmlElement& parent, std::int64_t number)
{
    XmlElement value = MakeValue(Xsd("integer"));
    value.text = std::to_string(number);
    parent.Add(std::move(value));
}

void AddText(XmlElement& parent, std::string_view text)
{
    XmlElement value = MakeValue(Xsd("string"));
    value.text = text;
    parent.Add(std::move(value));
}

void AddName(XmlElement& parent, const QName& name)
{
    XmlElement value = MakeValue(Xsd("QName"));
    value.qualifiedText = name;
    parent.Add(std::move(value));
}

XmlElement MakeOption(const TicketOption& option)
{
    XmlElement element = option.name ? MakeElement("Option", *option.name) : MakeElement("Option");
    for (const ScoredProperty& scored : option.scored)
    {
        XmlElement property = MakeElement("ScoredProperty", Psk(scored.name));
        if (!scored.parameter.empty())
        {
            property.Add(MakeElement("ParameterRef", Psk(scored.parameter)));
        }
        else if (!scored.text.empty())
        {
            AddText(property, scored.text);
        }
        else
        {
            AddInteger(property, scored.number);
        }
        element.Add(std::move(property));
    }
    return element;
}

} // namespace tsypr::service
