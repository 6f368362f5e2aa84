// The one feature of the client printer that the virtual printer does not offer.
#ifndef TESSARY_PTPROVIDER_PAGE_SCALING_H
#define TESSARY_PTPROVIDER_PAGE_SCALING_H

#include "ptprovider/xml_memory.h"

namespace tsypr
{

// Removes page scaling and the definition of its scale from a ticket or from capabilities. A ticket has no
// psf:ParameterDef: then the second step only leaves a line in the log, which is meant to be so.
inline void RemovePageScaling(IXMLDOMDocument2* doc)
{
    RemoveXmlNode(&doc, L"psf:Feature", L"name", L"psk:PageScaling");
    RemoveXmlNode(&doc, L"psf:ParameterDef", L"name", L"psk:PageScalingScale");
}

} // namespace tsypr

#endif
