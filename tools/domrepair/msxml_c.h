// Microsoft's XML interfaces as tables of functions, so that single functions can be exchanged.
#ifndef TESSARY_TOOLS_DOMREPAIR_MSXML_C_H
#define TESSARY_TOOLS_DOMREPAIR_MSXML_C_H

#define CINTERFACE
#include <windows.h>

#include <msxml2.h>
#include <ole2.h>

namespace tsypr::domrepair
{

// IID_IXMLDOMDocument2, which the compiler's libraries lack.
inline constexpr IID kIidXmlDomDocument2 = {
    0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

} // namespace tsypr::domrepair

#endif
