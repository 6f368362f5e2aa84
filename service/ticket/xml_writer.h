#ifndef TESSARY_SERVICE_TICKET_XML_WRITER_H
#define TESSARY_SERVICE_TICKET_XML_WRITER_H

#include <string>

#include "service/ticket/xml_element.h"

namespace tsypr::service
{

// The document in UTF-8. The root declares psf, psk, xsi, xsd and, for `vendorUri`, ns0000; every name is written with
// these prefixes, whatever the prefixes were where it came from. All names must lie in these namespaces or in none.
// Characters that XML cannot hold become U+FFFD. Throws std::bad_alloc.
std::string WriteXml(const XmlElement& root, const std::string& vendorUri);

} // namespace tsypr::service

#endif
