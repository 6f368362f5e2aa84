// Brings the XML documents of this process to Windows' documented behaviour.
#ifndef TESSARY_TOOLS_DOMREPAIR_DOCUMENT_REPAIR_H
#define TESSARY_TOOLS_DOMREPAIR_DOCUMENT_REPAIR_H

#include "tools/domrepair/msxml_c.h"

namespace tsypr::domrepair
{

// Exchanges functions of Wine's documents and elements, once per process; all documents share their tables. The factory
// is the one of Wine's document class.
HRESULT RepairDocuments(IClassFactory* factory) noexcept;

} // namespace tsypr::domrepair

#endif
