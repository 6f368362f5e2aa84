// Questions to, and changes of, print schema documents.
//
// No function keeps a document or node. All leave namespace settings on the document, so one document must not be used
// by two threads at once. Problems of a document are logged and give false; when memory runs out they throw _com_error
// or std::bad_alloc. Results are appended to what the caller passes, and stay there when a later step fails.
#ifndef TESSARY_PRINTSCHEMA_PT_PARSER_H
#define TESSARY_PRINTSCHEMA_PT_PARSER_H

#include "printschema/keywords.h"
#include "printschema/msxml.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tsypr
{

// What a printer offers for N-up: numbers of pages as the document writes them, and direction keywords.
struct NupCapability
{
    std::vector<std::wstring> pagesPerSheet;
    std::vector<std::wstring> directions;
};

// What a printer offers for finishing: keywords that the driver knows.
struct FinishingCapability
{
    std::vector<std::wstring> staples;
    std::vector<std::wstring> punches;
};

// Option name to display name.
using FeatureOptions = std::map<std::wstring, std::wstring>;

namespace PTParser
{

// Root elements of the two kinds of documents.
inline constexpr const wchar_t* kPrintCapabilities = L"psf:PrintCapabilities";
inline constexpr const wchar_t* kPrintTicket = L"psf:PrintTicket";

// The first feature of the list that the document has; empty when it has none. `rootElement` is one of the two above.
ComPtr<IXMLDOMNode> GetFeatureRootNode(IXMLDOMDocument2* xmlDoc, const wchar_t* rootElement, FeatureNames featureNames);

// Read print capabilities. True when there is at least one pages-per-sheet value, whether there are directions or not.
bool GetNupCapability(IXMLDOMDocument2* xmlDoc, NupCapability& capability);

// True when there is at least one staple or punch option.
bool GetFinishingCapability(IXMLDOMDocument2* xmlDoc, FinishingCapability& capability);

// All options of a feature that have a display name. True when the map holds at least one.
bool GetFeatureOptions(IXMLDOMDocument2* xmlDoc, FeatureNames featureNames, FeatureOptions& options);

// Reads the N-up setting of a print ticket, or writes it (`set`). Reading a ticket that has the number but no direction
// gives the number and false.
bool GetOrSetNupOption(IXMLDOMDocument2* xmlDoc, bool set, uint32_t& pagesPerSheet, std::wstring& direction);

// Reads or writes the name of the selected option of a print ticket's feature, whatever name that is.
bool GetOrSetStringOption(IXMLDOMDocument2* xmlDoc, FeatureNames featureNames, bool set, std::wstring& value);

// Saves the document in the folder of the logs if the registry asks for that; it is asked once per process. White space
// is removed from `fileName` itself.
void DumpXMLDataIfEnabledInReg(IXMLDOMDocument2* xmlDoc, std::wstring& fileName);

// The same with fixed arguments.
inline bool GetNupOption(IXMLDOMDocument2* xmlDoc, uint32_t& pagesPerSheet, std::wstring& direction)
{
    return GetOrSetNupOption(xmlDoc, false, pagesPerSheet, direction);
}
inline bool SetNupOption(IXMLDOMDocument2* xmlDoc, uint32_t pagesPerSheet, std::wstring direction)
{
    return GetOrSetNupOption(xmlDoc, true, pagesPerSheet, direction);
}
inline bool GetMediaTypeOption(IXMLDOMDocument2* xmlDoc, std::wstring& value)
{
    return GetOrSetStringOption(xmlDoc, kMediaTypeFeatureNames, false, value);
}
inline bool SetMediaTypeOption(IXMLDOMDocument2* xmlDoc, std::wstring value)
{
    return GetOrSetStringOption(xmlDoc, kMediaTypeFeatureNames, true, value);
}
inline bool GetPunchOption(IXMLDOMDocument2* xmlDoc, std::wstring& value)
{
    return GetOrSetStringOption(xmlDoc, kPunchFeatureNames, false, value);
}
inline bool SetPunchOption(IXMLDOMDocument2* xmlDoc, std::wstring value)
{
    return GetOrSetStringOption(xmlDoc, kPunchFeatureNames, true, value);
}
inline bool GetStapleOption(IXMLDOMDocument2* xmlDoc, std::wstring& value)
{
    return GetOrSetStringOption(xmlDoc, kStapleFeatureNames, false, value);
}
inline bool SetStapleOption(IXMLDOMDocument2* xmlDoc, std::wstring value)
{
    return GetOrSetStringOption(xmlDoc, kStapleFeatureNames, true, value);
}
inline bool GetMediaTypeOptions(IXMLDOMDocument2* xmlDoc, FeatureOptions& options)
{
    return GetFeatureOptions(xmlDoc, kMediaTypeFeatureNames, options);
}

} // namespace PTParser
} // namespace tsypr

#endif
