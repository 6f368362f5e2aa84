#ifndef TESSARY_SERVICE_TICKET_KEYWORDS_H
#define TESSARY_SERVICE_TICKET_KEYWORDS_H

#include <string>
#include <string_view>

#include "service/ticket/xml_element.h"

namespace tsypr::service
{

// The namespaces of print schema documents.
inline constexpr std::string_view kFrameworkUri =
    "http://schemas.microsoft.com/windows/2003/08/printing/printschemaframework";
inline constexpr std::string_view kKeywordsUri =
    "http://schemas.microsoft.com/windows/2003/08/printing/printschemakeywords";
inline constexpr std::string_view kInstanceUri = "http://www.w3.org/2001/XMLSchema-instance";
inline constexpr std::string_view kTypesUri = "http://www.w3.org/2001/XMLSchema";

// Qualified names of the framework, of the public keywords and of the data types.
inline QName Psf(std::string_view local)
{
    return {std::string(kFrameworkUri), std::string(local)};
}

inline QName Psk(std::string_view local)
{
    return {std::string(kKeywordsUri), std::string(local)};
}

inline QName Xsd(std::string_view local)
{
    return {std::string(kTypesUri), std::string(local)};
}

// The attribute that tells a value's data type.
inline QName TypeAttribute()
{
    return {std::string(kInstanceUri), "type"};
}

} // namespace tsypr::service

#endif
