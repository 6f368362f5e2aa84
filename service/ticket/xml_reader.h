#ifndef TESSARY_SERVICE_TICKET_XML_READER_H
#define TESSARY_SERVICE_TICKET_XML_READER_H

#include <cstddef>
#include <optional>
#include <span>

#include "service/ticket/xml_element.h"

namespace tsypr::service
{

// What a document may hold at most. Print schema documents of real printers stay far below; the limits keep a hostile
// one from occupying the host process.
inline constexpr std::size_t kLargestXml = 4 * 1024 * 1024;
inline constexpr std::size_t kMostXmlElements = 50'000;
inline constexpr std::size_t kDeepestXml = 64;
inline constexpr std::size_t kMostXmlDeclarations = 256; // of namespaces, in force at one place

// Reads a document in UTF-8 or UTF-16, or in another encoding that it declares and the parser knows. Nothing when it is
// not well-formed with regard to namespaces, has a document type declaration, or exceeds a limit. Throws
// std::bad_alloc.
std::optional<XmlElement> ReadXml(std::span<const std::byte> bytes);

} // namespace tsypr::service

#endif
