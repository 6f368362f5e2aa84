// The text of a document as it is saved.
#ifndef TESSARY_TOOLS_DOMREPAIR_SAVED_TEXT_H
#define TESSARY_TOOLS_DOMREPAIR_SAVED_TEXT_H

#include "tools/domrepair/msxml_c.h"

#include <vector>

namespace tsypr::domrepair
{

// Wine writes UTF-8 whatever the document declares. When the stream's text declares UTF-16, `bytes` receives it in
// UTF-16 with a byte-order mark. False when there is nothing to change; the stream then stands at its begin again.
bool ReencodeAsDeclared(IStream* stream, std::vector<char>& bytes);

// A new stream over the bytes, at its begin; null when there is no memory.
IStream* StreamOver(const std::vector<char>& bytes) noexcept;

// Writes the bytes where IXMLDOMDocument::save would: to a file or a stream.
HRESULT WriteTo(const VARIANT& destination, const std::vector<char>& bytes) noexcept;

} // namespace tsypr::domrepair

#endif
