// Reading print capabilities.
#include "module/log.h"
#include "printschema/pt_parser.h"
#include "printschema/selection.h"

namespace tsypr
{
namespace
{

constexpr char kNup[] = "PTParser::GetNupCapability";
constexpr char kFinishing[] = "PTParser::GetFinishingCapability";
constexpr char kOptions[] = "PTParser::GetFeatureOptions";

// Appends the names of the feature's options that the table has.
void AppendKnownOptions(IXMLDOMNode* feature, KeywordTable known, std::vector<std::wstring>& names)
{
    const ComPtr<IXMLDOMNodeList> options = SelectNodes(feature, Bstr(L"psf:Option"));
    if (options == nullptr)
    {
        return;
    }
    const Bstr nameAttribute(L"name");
    Variant name;
    const long count = LengthOf(options.Get());
    for (long i = 0; i < count; ++i)
    {
        if (ReadAttribute(ItemOf(options.Get(), i).Get(), nameAttribute, name) && HasKeyword(known, name.Text()))
        {
            names.emplace_back(name.Text());
        }
    }
}

// The pages-per-sheet value of one N-up option; false, with a line in the log, when it has none.
bool ReadPagesPerSheet(IXMLDOMNodeList* options, long index, const Bstr& valueQuery, Variant& value)
{
    const ComPtr<IXMLDOMNode> option = ItemOf(options, index);
    if (option == nullptr)
    {
        LogError("%s, failed to get nup option %d.\n", kNup, static_cast<int>(index));
        return false;
    }
    const ComPtr<IXMLDOMNode> valueNode = SelectNode(option.Get(), valueQuery);
    if (valueNode == nullptr)
    {
        LogError("%s, failed to get value node for nup option %d.\n", kNup, static_cast<int>(index));
        return false;
    }
    if (FAILED(valueNode->get_nodeTypedValue(value.Receive())) || !value.IsText())
    {
        LogError("%s, failed to get value for nup option %d.\n", kNup, static_cast<int>(index));
        return false;
    }
    return true;
}

// Adds one option under its display name; an option that lacks either is left out with a line in the log.
void AddOption(IXMLDOMNode* option, const Bstr& nameAttribute, const Bstr& displayNameQuery, FeatureOptions& options)
{
    Variant name;
    if (!ReadAttribute(option, nameAttribute, name))
    {
        LogError("%s, failed to get value for node.\n", kOptions);
        return;
    }
    std::wstring optionName(name.Text());
    const ComPtr<IXMLDOMNode> valueNode = SelectNode(option, displayNameQuery);
    if (valueNode == nullptr)
    {
        LogError("%s, failed to get display name node for option '%S'.\n", kOptions, optionName.c_str());
        return;
    }
    ReceivedBstr displayName;
    if (FAILED(valueNode->get_text(displayName.Receive())))
    {
        LogError("%s, failed to get display name for option '%S'.\n", kOptions, optionName.c_str());
        return;
    }
    options.insert_or_assign(std::move(optionName), std::wstring(displayName.Text()));
}

} // namespace

bool PTParser::GetNupCapability(IXMLDOMDocument2* xmlDoc, NupCapability& capability)
{
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kNup);
        return false;
    }
    const ComPtr<IXMLDOMNode> root = GetFeatureRootNode(xmlDoc, kPrintCapabilities, kNupFeatureNames);
    if (root == nullptr)
    {
        return false;
    }
    const ComPtr<IXMLDOMNodeList> options = SelectNodes(root.Get(), Bstr(L"psf:Option"));
    if (options == nullptr)
    {
        LogError("%s, failed to get options for pagespersheet.\n", kNup);
        return false;
    }
    const Bstr valueQuery({L"psf:ScoredProperty[@name='", kPagesPerSheet, L"']/psf:Value"});
    Variant value;
    const long count = LengthOf(options.Get());
    for (long i = 0; i < count; ++i)
    {
        if (ReadPagesPerSheet(options.Get(), i, valueQuery, value))
        {
            capability.pagesPerSheet.emplace_back(value.Text());
        }
    }
    if (capability.pagesPerSheet.empty())
    {
        return false;
    }
    const ComPtr<IXMLDOMNode> direction =
        SelectNode(root.Get(), Bstr({L"psf:Feature[@name='", kPresentationDirection, L"']"}));
    if (direction != nullptr)
    {
        AppendKnownOptions(direction.Get(), kNupDirections, capability.directions);
    }
    return true;
}

bool PTParser::GetFinishingCapability(IXMLDOMDocument2* xmlDoc, FinishingCapability& capability)
{
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kFinishing);
        return false;
    }
    if (const ComPtr<IXMLDOMNode> root = GetFeatureRootNode(xmlDoc, kPrintCapabilities, kStapleFeatureNames))
    {
        AppendKnownOptions(root.Get(), kStaples, capability.staples);
    }
    if (const ComPtr<IXMLDOMNode> root = GetFeatureRootNode(xmlDoc, kPrintCapabilities, kPunchFeatureNames))
    {
        AppendKnownOptions(root.Get(), kPunches, capability.punches);
    }
    return !capability.staples.empty() || !capability.punches.empty();
}

bool PTParser::GetFeatureOptions(IXMLDOMDocument2* xmlDoc, FeatureNames featureNames, FeatureOptions& options)
{
    if (xmlDoc == nullptr)
    {
        LogError("%s, xmlDoc is null\n", kOptions);
        return false;
    }
    const ComPtr<IXMLDOMNode> root = GetFeatureRootNode(xmlDoc, kPrintCapabilities, featureNames);
    if (root == nullptr)
    {
        return false;
    }
    const ComPtr<IXMLDOMNodeList> nodes = SelectNodes(root.Get(), Bstr(L"psf:Option"));
    if (nodes == nullptr)
    {
        LogError("%s, can't find psf:Option node\n", kOptions);
        return false;
    }
    const Bstr nameAttribute(L"name");
    const Bstr displayNameQuery(L"psf:Property[@name='psk:DisplayName']/psf:Value");
    const long count = LengthOf(nodes.Get());
    for (long i = 0; i < count; ++i)
    {
        AddOption(ItemOf(nodes.Get(), i).Get(), nameAttribute, displayNameQuery, options);
    }
    return !options.empty();
}

} // namespace tsypr
