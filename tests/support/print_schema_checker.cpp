#include "tests/support/print_schema_checker.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>

#include "service/ticket/keywords.h"
#include "service/ticket/xml_reader.h"

namespace tsypr::test
{

namespace
{

using service::Psf;
using service::Psk;
using service::QName;
using service::XmlAttribute;
using service::XmlElement;
using Violations = std::vector<std::string>;

// Which elements may be inside an element; lists of words between blanks.
struct ElementRule
{
    std::string_view element;
    std::string_view children;
    std::string_view attributes;
};

constexpr ElementRule kElementRules[] = {{"PrintTicket", " Feature ParameterInit Property ", " version "},
                                         {"PrintCapabilities", " Feature ParameterDef Property ", " version "},
                                         {"Feature", " Feature Option Property ", " name "},
                                         {"Option", " Property ScoredProperty ", " name constrained "},
                                         {"ParameterDef", " Property ", " name "},
                                         {"ParameterInit", " Value ", " name "},
                                         {"ParameterRef", " ", " name "},
                                         {"Property", " Property Value ", " name "},
                                         {"ScoredProperty", " ParameterRef Property ScoredProperty Value ", " name "},
                                         {"Value", " ", " type "}};

// Public features, and the options of those whose options are few. An empty list allows any name.
struct FeatureRule
{
    std::string_view feature;
    std::string_view options;
    std::string_view excluded; // the features of the same setting that must not be in a ticket beside it
};

constexpr std::string_view kStapleNames = " None SaddleStitch StapleBottomLeft StapleBottomRight "
                                          "StapleDualBottom StapleDualLeft StapleDualRight StapleDualTop "
                                          "StapleTopLeft StapleTopRight ";
constexpr std::string_view kPunchNames = " None BottomEdge LeftEdge RightEdge TopEdge ";
constexpr std::string_view kDuplexNames = " OneSided TwoSidedLongEdge TwoSidedShortEdge ";

constexpr FeatureRule kFeatureRules[] = {
    {"PageMediaSize", "", ""},
    {"PageOrientation", " Landscape Portrait ReverseLandscape ReversePortrait ", ""},
    {"JobDuplexAllDocumentsContiguously", kDuplexNames, " DocumentDuplex "},
    {"DocumentDuplex", kDuplexNames, " JobDuplexAllDocumentsContiguously "},
    {"PageOutputColor", " Color Grayscale Monochrome ", ""},
    {"PageOutputQuality", " Automatic Draft Fax High Normal Photographic Text ", ""},
    {"PageResolution", "", ""},
    {"JobInputBin", "", " DocumentInputBin PageInputBin "},
    {"DocumentInputBin", "", " JobInputBin PageInputBin "},
    {"PageInputBin", "", " JobInputBin DocumentInputBin "},
    {"PageMediaType", "", ""},
    {"DocumentCollate", " Collated Uncollated ", " JobCollateAllDocuments "},
    {"JobCollateAllDocuments", " Collated Uncollated ", " DocumentCollate "},
    {"PageScaling",
     " Custom CustomSquare FitApplicationBleedSizeToPageImageableSize FitApplicationContentSizeToPageImageableSize "
     "FitApplicationMediaSizeToPageImageableSize FitApplicationMediaSizeToPageMediaSize None ",
     ""},
    {"JobNUpAllDocumentsContiguously", "", " DocumentNUp "},
    {"DocumentNUp", "", " JobNUpAllDocumentsContiguously "},
    {"PresentationDirection", " RightBottom BottomRight LeftBottom BottomLeft RightTop TopRight LeftTop TopLeft ", ""},
    {"JobStapleAllDocuments", kStapleNames, " DocumentStaple "},
    {"DocumentStaple", kStapleNames, " JobStapleAllDocuments "},
    {"JobHolePunch", kPunchNames, " DocumentHolePunch "},
    {"DocumentHolePunch", kPunchNames, " JobHolePunch "},
};

constexpr std::string_view kParameterNames =
    " JobCopiesAllDocuments DocumentCopiesAllPages PageCopies PageMediaSizeMediaSizeWidth PageMediaSizeMediaSizeHeight "
    "PageScalingScale PageScalingScaleWidth PageScalingScaleHeight PageScalingOffsetWidth PageScalingOffsetHeight ";

bool IsListed(std::string_view list, std::string_view word)
{
    return list.find(" " + std::string(word) + " ") != std::string_view::npos;
}

bool IsListed(std::string_view list, const std::optional<QName>& keyword)
{
    return keyword && keyword->uri == service::kKeywordsUri && IsListed(list, keyword->local);
}

std::optional<XmlElement> Parse(std::string_view xml)
{
    return service::ReadXml(std::as_bytes(std::span(xml)));
}

template <class Rule, std::size_t Count>
const Rule* FindRule(const Rule (&rules)[Count], std::string_view Rule::*key, std::string_view value)
{
    const auto* found = std::ranges::find(rules, value, key);
    return found == std::end(rules) ? nullptr : found;
}

std::size_t Count(const XmlElement& element, std::string_view tag)
{
    return static_cast<std::size_t>(std::ranges::count(element.children, Psf(tag), &XmlElement::tag));
}

bool IsInteger(std::string_view text)
{
    text.remove_prefix(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// The value of a property such as psf:MinValue; null when there is none.
const XmlElement* PropertyValue(const XmlElement& element, std::string_view name)
{
    const XmlElement* property = element.FindChild(Psf("Property"), Psf(name));
    return property == nullptr ? nullptr : property->FindChild(Psf("Value"));
}

long long Number(const XmlElement* value)
{
    return value == nullptr || !IsInteger(value->text) ? 0 : std::stoll(value->text);
}

// An element where it stands.
struct Place
{
    const XmlElement& element;
    const XmlElement& parent; // of the root, the root itself
    const XmlElement& root;
    bool isTicket;

    const XmlAttribute* Attribute(const char* name) const
    {
        return element.FindAttribute({"", name});
    }
    // The type of a value, an empty text when that is no type of the XML Schema's, or else "none".
    std::string Type() const
    {
        const XmlAttribute* type = element.FindAttribute(service::TypeAttribute());
        const bool isType = type != nullptr && type->qualified && type->qualified->uri == service::kTypesUri;
        return type == nullptr ? "none" : isType ? type->qualified->local : "";
    }
    bool IsPublic() const
    {
        return element.Name() && element.Name()->uri == service::kKeywordsUri;
    }
};

// Whether no option of a feature can be chosen.
bool IsOutOfReach(const XmlElement& feature)
{
    const auto isFree = [](const XmlElement& child)
    {
        const XmlAttribute* constrained = child.FindAttribute({"", "constrained"});
        return child.tag == Psf("Option") && (constrained == nullptr || constrained->qualified == Psk("None"));
    };
    return std::ranges::none_of(feature.children, isFree);
}

const FeatureRule* RuleOf(const XmlElement& feature)
{
    return FindRule(kFeatureRules, &FeatureRule::feature, feature.Name() ? feature.Name()->local : "");
}

// Features that say the same in different scopes: one in a ticket; in capabilities, all but one out of reach.
bool IsAlone(const Place& at)
{
    const FeatureRule* rule = RuleOf(at.element);
    const auto excludes = [&](const XmlElement& other)
    {
        return rule != nullptr && IsListed(rule->excluded, other.Name()) &&
               (at.isTicket || !(IsOutOfReach(at.element) || IsOutOfReach(other)));
    };
    return std::ranges::none_of(at.root.children, excludes);
}

bool HasUsualPrefixes(const Place& at)
{
    std::string found;
    for (const service::XmlDeclaration& one : at.root.declarations)
    {
        found += " " + one.prefix + "=" + one.uri + " ";
    }
    return IsListed(found, "psf=" + std::string(service::kFrameworkUri)) &&
           IsListed(found, "psk=" + std::string(service::kKeywordsUri)) &&
           IsListed(found, "xsi=" + std::string(service::kInstanceUri)) &&
           IsListed(found, "xsd=" + std::string(service::kTypesUri));
}

bool HasOnlyItsAttributes(const Place& at)
{
    const ElementRule* rule = FindRule(kElementRules, &ElementRule::element, at.element.tag.local);
    const auto isOwn = [&](const XmlAttribute& attribute)
    {
        return (attribute.name.uri.empty() || attribute.name == service::TypeAttribute()) && rule != nullptr &&
               IsListed(rule->attributes, attribute.name.local);
    };
    return std::ranges::all_of(at.element.attributes, isOwn);
}

bool IsAllowedHere(const Place& at)
{
    const ElementRule* rule = FindRule(kElementRules, &ElementRule::element, at.parent.tag.local);
    return at.element.tag.uri == service::kFrameworkUri &&
           (&at.element == &at.root || (rule != nullptr && IsListed(rule->children, at.element.tag.local)));
}

bool HasPublicOption(const Place& at)
{
    const FeatureRule* rule = RuleOf(at.parent);
    return !at.IsPublic() || rule == nullptr || rule->options.empty() || IsListed(rule->options, at.element.Name());
}

bool IsDefinedWhole(const Place& at)
{
    const auto number = [&](const char* name) { return Number(PropertyValue(at.element, name)); };
    for (const char* name : {"DataType", "DefaultValue", "MinValue", "MaxValue", "Multiple", "Mandatory", "UnitType"})
    {
        if (PropertyValue(at.element, name) == nullptr)
        {
            return false;
        }
    }
    return IsListed(" Unconditional Conditional Optional ", PropertyValue(at.element, "Mandatory")->qualifiedText) &&
           number("DefaultValue") >= number("MinValue") && number("DefaultValue") <= number("MaxValue");
}

struct Rule
{
    std::string_view elements; // empty: for all of them
    bool (*isKept)(const Place& at);
    const char* reason;
};

constexpr Rule kRules[] = {
    {"", IsAllowedHere, "is no element of the framework that may stand here"},
    {"", HasOnlyItsAttributes, "has an attribute that is not its own"},
    {"",
     [](const Place& at) { return at.Attribute("name") == nullptr || at.Attribute("name")->qualified; },
     "has a name without a declared prefix"},
    {" Feature ParameterDef ParameterInit ParameterRef Property ScoredProperty ",
     [](const Place& at) { return at.Attribute("name") != nullptr; },
     "has no name"},
    {"",
     [](const Place& at)
     { return !at.element.Name() || at.parent.FindChild(at.element.tag, *at.element.Name()) == &at.element; },
     "is a second one"},
    {"", [](const Place& at) { return at.element.text.empty() || at.element.tag == Psf("Value"); }, "has text"},
    {" PrintTicket PrintCapabilities ", HasUsualPrefixes, "does not declare the usual prefixes"}, // some look for them
    {" PrintTicket PrintCapabilities ",
     [](const Place& at) { return at.Attribute("version") != nullptr && at.Attribute("version")->value == "1"; },
     "needs version 1"},
    {" Feature ",
     [](const Place& at) { return Count(at.element, "Option") + Count(at.element, "Feature") > 0; },
     "has neither options nor features"},
    {" Feature ",
     [](const Place& at) { return !at.isTicket || Count(at.element, "Option") <= 1; },
     "has more than one option"},
    {" Feature ",
     [](const Place& at)
     {
         const XmlElement* selection = PropertyValue(at.element, "SelectionType");
         return selection != nullptr ? IsListed(" PickOne PickMany ", selection->qualifiedText)
                                     : at.isTicket || &at.parent != &at.root;
     },
     "has no selection type"},
    {" Feature ",
     [](const Place& at) { return !at.IsPublic() || RuleOf(at.element) != nullptr; },
     "is no public feature"},
    {" Feature ", IsAlone, "is there beside a feature that excludes it"},
    {" Option ", HasPublicOption, "is no public option of this feature"},
    {" Option ",
     [](const Place& at) { return at.Attribute("name") != nullptr || Count(at.element, "ScoredProperty") > 0; },
     "has neither a name nor a scored property"},
    {" Option ",
     [](const Place& at)
     {
         const XmlAttribute* constrained = at.Attribute("constrained");
         return constrained == nullptr ||
                (!at.isTicket &&
                 IsListed(" None PrintTicketSettings AdminSettings DeviceSettings ", constrained->qualified));
     },
     "has a constraint in a ticket or an unknown one"},
    {" Value ",
     [](const Place& at) { return IsListed(" none string integer decimal QName ", at.Type()); },
     "has an unknown type"},
    {" Value ",
     [](const Place& at)
     {
         return at.element.text.empty() || ((at.Type() != "integer" || IsInteger(at.element.text)) &&
                                            (at.Type() != "QName" || at.element.qualifiedText));
     },
     "is not of its type"},
    {" ParameterDef ", IsDefinedWhole, "lacks a property or has a default outside its range"},
    {" ParameterDef ParameterInit ",
     [](const Place& at) { return !at.IsPublic() || IsListed(kParameterNames, at.element.Name()); },
     "is no public parameter"},
    {" ParameterInit ", [](const Place& at) { return Count(at.element, "Value") == 1; }, "needs one value"},
    {" ParameterRef ",
     [](const Place& at)
     {
         const QName target = Psf(at.isTicket ? "ParameterInit" : "ParameterDef");
         return at.element.Name() && at.root.FindChild(target, *at.element.Name()) != nullptr;
     },
     "refers to a parameter that is not there"},
    {" ScoredProperty ",
     [](const Place& at)
     {
         const std::size_t values = Count(at.element, "Value") + Count(at.element, "ParameterRef");
         return values == 1 || (values == 0 && Count(at.element, "ScoredProperty") > 0);
     },
     "needs one value or one reference"},
    {" Property ", [](const Place& at) { return !at.element.children.empty(); }, "holds nothing"}};

void Check(const Place& at, const std::string& path, Violations& violations)
{
    const XmlAttribute* name = at.Attribute("name");
    const std::string here = path + "/" + at.element.tag.local + (name == nullptr ? "" : " " + name->value);
    for (const Rule& rule : kRules)
    {
        if ((rule.elements.empty() || IsListed(rule.elements, at.element.tag.local)) && !rule.isKept(at))
        {
            violations.push_back(here + ": " + rule.reason);
        }
    }
    for (const XmlElement& child : at.element.children)
    {
        Check({child, at.element, at.root, at.isTicket}, here, violations);
    }
}

} // namespace

std::vector<std::string> CheckPrintSchema(std::string_view xml, PrintSchemaKind kind)
{
    const std::optional<XmlElement> root = Parse(xml);
    const bool isTicket = kind == PrintSchemaKind::Ticket;
    if (!root || root->tag != Psf(isTicket ? "PrintTicket" : "PrintCapabilities"))
    {
        return {"the document cannot be read or is another"};
    }
    Violations violations;
    Check({*root, *root, *root, isTicket}, "", violations);
    return violations;
}

} // namespace tsypr::test
