// Microsoft's XML document model, version 6, as far as the compiler's headers lack its identifiers.
#ifndef TESSARY_PRINTSCHEMA_MSXML_H
#define TESSARY_PRINTSCHEMA_MSXML_H

#include <windows.h>

#include <msxml2.h>
#include <wrl/client.h>

namespace tsypr
{

using Microsoft::WRL::ComPtr;

// CLSID_DOMDocument60 and IID_IXMLDOMDocument2.
inline constexpr CLSID kClsidDomDocument60 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
inline constexpr IID kIidXmlDomDocument2 = {
    0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

} // namespace tsypr

#endif
