// Print capabilities for a device mode, as the property sheets need them.
#ifndef TESSARY_PTPROVIDER_PRINT_CAPS_DOC_H
#define TESSARY_PTPROVIDER_PRINT_CAPS_DOC_H

#include "printschema/msxml.h"

namespace tsypr
{

// Asks the client printer behind `printerName` for the print capabilities that go with the device mode (which may be
// null; its keyword texts get their terminators on the way). *capabilities is null for a new document, which the caller
// then releases, or a document whose content is replaced. True also when the client gives none: then *capabilities is
// as it was. The thread must have initialised COM. Page scaling is left in, unlike in what the provider gives.
bool GetPrintCapsXmlDoc(const wchar_t* printerName, const DEVMODEW* devMode, IXMLDOMDocument2** capabilities) noexcept;

} // namespace tsypr

#endif
