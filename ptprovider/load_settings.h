// How documents load what comes from the client machine.
#ifndef TESSARY_PTPROVIDER_LOAD_SETTINGS_H
#define TESSARY_PTPROVIDER_LOAD_SETTINGS_H

#include "printschema/msxml.h"

namespace tsypr
{

// Makes a document that loads at once, refuses document types, fetches nothing and is no deeper than 256 elements. The
// caller owns it. On failure *doc is null.
HRESULT CreateDocument(IXMLDOMDocument2** doc);

// Gives the same settings to somebody else's document as long as this lives, as far as the document lets itself be
// asked for the ones it has.
class LoadSettings
{
public:
    explicit LoadSettings(IXMLDOMDocument2* doc);
    ~LoadSettings();
    LoadSettings(const LoadSettings&) = delete;
    LoadSettings& operator=(const LoadSettings&) = delete;

private:
    IXMLDOMDocument2* m_doc;
    bool m_async = false;            // was on
    bool m_validateOnParse = false;  // was on
    bool m_resolveExternals = false; // was on
    bool m_documentTypes = false;    // were allowed
};

} // namespace tsypr

#endif
