#include "tests/support/print_schema_checker.h"

#include <algorithm>
#include <functional>
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

    const std::string& Tag() const
    {
        return element.tag.local;
    }
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
    const ElementRule* rule = FindRule(kElementRules, &ElementRule::element, at.Tag());
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
           (&at.element == &at.root || (rule != nullptr && IsListed(rule->children, at.Tag())));
}

bool IsDefinedWhole(const Place& at)
{
    const auto value = [&](const char* name) { return PropertyValue(at.element, name); };
    for (const char* name : {"DataType", "DefaultValue", "MinValue", "MaxValue", "Multiple", "Mandatory", "UnitType"})
    {
        if (value(name) == nullptr)
        {
            return false;
        }
    }
    const long long number = Number(value("DefaultValue"));
    return IsListed(" Unconditional Conditional Optional ", value("Mandatory")->qualifiedText) &&
           number >= Number(value("MinValue")) && number <= Number(value("MaxValue"));
}

// Takes whether something is as it must be, and what is wrong otherwise.
using Expect = std::function<void(bool isGood, const char* reason)>;

void CheckAnything(const Place& at, const Expect& expect)
{
    const XmlAttribute* name = at.Attribute("name");
    const std::optional<QName>& known = at.element.Name();
    const bool isNamed =
        IsListed(" Feature ParameterDef ParameterInit ParameterRef Property ScoredProperty ", at.Tag());
    expect(IsAllowedHere(at), "is no element of the framework that may stand here");
    expect(HasOnlyItsAttributes(at), "has an attribute that is not its own");
    expect(name == nullptr || name->qualified, "has a name without a declared prefix");
    expect(!isNamed || name != nullptr, "has no name");
    expect(!known || at.parent.FindChild(at.element.tag, *known) == &at.element, "is a second one");
    expect(at.element.text.empty() || at.Tag() == "Value", "has text");
}

void CheckRoot(const Place& at, const Expect& expect)
{
    const XmlAttribute* version = at.Attribute("version");
    expect(HasUsualPrefixes(at), "does not declare the usual prefixes"); // some programs look for them
    expect(version != nullptr && version->value == "1", "needs version 1");
}

void CheckFeature(const Place& at, const Expect& expect)
{
    const std::size_t options = Count(at.element, "Option");
    const XmlElement* selection = PropertyValue(at.element, "SelectionType");
    const bool isKnown = selection != nullptr ? IsListed(" PickOne PickMany ", selection->qualifiedText)
                                              : at.isTicket || &at.parent != &at.root;
    expect(options + Count(at.element, "Feature") > 0, "has neither options nor features");
    expect(!at.isTicket || options <= 1, "has more than one option");
    expect(isKnown, "has no selection type");
    expect(!at.IsPublic() || RuleOf(at.element) != nullptr, "is no public feature");
    expect(IsAlone(at), "is there beside a feature that excludes it");
}

void CheckOption(const Place& at, const Expect& expect)
{
    static constexpr std::string_view kConstraints = " None PrintTicketSettings AdminSettings DeviceSettings ";
    const FeatureRule* rule = RuleOf(at.parent);
    const bool isFree = !at.IsPublic() || rule == nullptr || rule->options.empty();
    const XmlAttribute* constrained = at.Attribute("constrained");
    const bool isKnown = constrained == nullptr || (!at.isTicket && IsListed(kConstraints, constrained->qualified));
    expect(isFree || IsListed(rule->options, at.element.Name()), "is no public option of this feature");
    expect(at.Attribute("name") != nullptr || Count(at.element, "ScoredProperty") > 0,
           "has neither a name nor a scored property");
    expect(isKnown, "has a constraint in a ticket or an unknown one");
}

void CheckValue(const Place& at, const Expect& expect)
{
    const std::string type = at.Type();
    const std::string& text = at.element.text;
    expect(IsListed(" none string integer decimal QName ", type), "has an unknown type");
    expect(text.empty() || type != "integer" || IsInteger(text), "is not of its type");
    expect(text.empty() || type != "QName" || at.element.qualifiedText, "is not of its type");
}

void CheckParameter(const Place& at, const Expect& expect)
{
    const QName target = Psf(at.isTicket ? "ParameterInit" : "ParameterDef");
    const bool isThere = at.element.Name() && at.root.FindChild(target, *at.element.Name()) != nullptr;
    const bool isInit = at.Tag() == "ParameterInit";
    expect(!at.IsPublic() || IsListed(kParameterNames, at.element.Name()), "is no public parameter");
    expect(!isInit || Count(at.element, "Value") == 1, "needs one value");
    expect(isThere, "refers to a parameter that is not there");
    expect(at.Tag() != "ParameterDef" || IsDefinedWhole(at), "lacks a property or has a default outside its range");
}

void CheckProperty(const Place& at, const Expect& expect)
{
    const std::size_t values = Count(at.element, "Value") + Count(at.element, "ParameterRef");
    const bool isScored = at.Tag() == "ScoredProperty";
    expect(!at.element.children.empty(), "holds nothing");
    expect(!isScored || values == 1 || Count(at.element, "ScoredProperty") > 0, "needs one value or one reference");
}

void Check(const Place& at, const std::string& path, Violations& violations)
{
    const XmlAttribute* name = at.Attribute("name");
    const std::string here = path + "/" + at.Tag() + (name == nullptr ? "" : " " + name->value);
    const auto expect = [&](bool isGood, const char* reason)
    { isGood ? void() : violations.push_back(here + ": " + reason); };
    static const std::pair<std::string_view, void (*)(const Place&, const Expect&)> kChecks[] = {
        {" PrintTicket PrintCapabilities ", CheckRoot},
        {" Feature ", CheckFeature},
        {" Option ", CheckOption},
        {" Value ", CheckValue},
        {" ParameterDef ParameterInit ParameterRef ", CheckParameter},
        {" Property ScoredProperty ", CheckProperty}};
    CheckAnything(at, expect);
    for (const auto& [tags, check] : kChecks)
    {
        if (IsListed(tags, at.Tag()))
        {
            check(at, expect);
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
