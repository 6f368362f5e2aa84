#ifndef TESSARY_SERVICE_TICKET_DOCUMENT_PARTS_H
#define TESSARY_SERVICE_TICKET_DOCUMENT_PARTS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "service/ticket/ticket_model.h"
#include "service/ticket/xml_element.h"

namespace tsypr::service
{

// A document of version 1 without content; `root` is PrintTicket or PrintCapabilities.
XmlElement MakeDocument(std::string_view root);

// An element of the framework, and one with a name.
XmlElement MakeElement(std::string_view tag);
XmlElement MakeElement(std::string_view tag, const QName& name);

// Elements that hold one value.
void AddInteger(XmlElement& parent, std::int64_t number);
void AddText(XmlElement& parent, std::string_view text);
void AddName(XmlElement& parent, const QName& name);

// An option with its scored properties.
XmlElement MakeOption(const TicketOption& option);

} // namespace tsypr::service

#endif
