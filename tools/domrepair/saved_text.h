// The text of a document as it is saved.
#ifndef TESSARY_TOOLS_DOMREPAIR_SAVED_TEXT_H
#define TESSARY_TOOLS_DOMREPAIR_SAVED_TEXT_H

#include "tools/domrepair/msxml_c.h"

#include <string>

namespace tsypr::domrepair
{

// An empty stream in memory; null when there is no memory. The caller releases it.
IStream* NewStream() noexcept;

bool Rewind(IStream* stream) noexcept;

// The bytes of a stream from where it stands to its end.
std::string ReadRest(IStream* stream);

// Turns a saved text, which is UTF-8, into UTF-16 with a byte-order mark if it declares UTF-16.
std::string EncodedAsDeclared(std::string text);

// Writes the bytes where IXMLDOMDocument::save would: to a file (VT_BSTR) or a stream (VT_UNKNOWN).
HRESULT WriteTo(const VARIANT& destination, const std::string& bytes) noexcept;

} // namespace tsypr::domrepair

#endif
