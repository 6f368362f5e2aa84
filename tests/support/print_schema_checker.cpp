#include "tests/support/print_schema_checker.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>

#include "service/ticket/keywords.h"
#include "service/ticket/xml_reader.h"
#include "tests/support/print_schema_rules.h"

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

constexpr std::size_t kDeepestOfOneKind = 10;

bool IsListed(std::string_view list, std::string_view word)
{
    return list.find(" " + std::string(word) + " ") != std::string_view::npos;
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

std::string ShowName(const XmlElement& element)
{
    const XmlAttribute* name = element.FindAttribute({"", "name"});
    return element.tag.local + (name == nullptr ? "" : " " + name->value);
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

class Checker
{
public:
    explicit Checker(PrintSchemaKind kind) : m_isTicket(kind == PrintSchemaKind::Ticket) {}

    Violations Check(const XmlElement& root)
    {
        m_root = &root;
        m_path = {root.tag.local};
        const XmlAttribute* version = root.FindAttribute({"", "version"});
        Expect(root.tag == Psf(m_isTicket ? "PrintTicket" : "PrintCapabilities"), "is not the root of this document");
        Expect(version != nullptr && version->value == "1", "needs version 1");
        ExpectDeclaration("psf", service::kFrameworkUri);
        ExpectDeclaration("psk", service::kKeywordsUri);
        ExpectDeclaration("xsi", service::kInstanceUri);
        ExpectDeclaration("xsd", service::kTypesUri);
        CheckContent(root);
        CheckExclusions(root);
        return std::move(m_violations);
    }

private:
    void Expect(bool isGood, const std::string& reason)
    {
        if (isGood)
        {
            return;
        }
        std::string place;
        for (std::size_t i = m_path.size() > 1 ? 1 : 0; i < m_path.size(); ++i)
        {
            place += (place.empty() ? "" : "/") + m_path[i];
        }
        m_violations.push_back(place + ": " + reason);
    }

    // Consumers look for the usual prefixes in the text.
    void ExpectDeclaration(std::string_view prefix, std::string_view uri)
    {
        const bool isThere = std::ranges::any_of(m_root->declarations,
                                                 [&](const service::XmlDeclaration& declaration)
                                                 { return declaration.prefix == prefix && declaration.uri == uri; });
        Expect(isThere, "declares no namespace for " + std::string(prefix));
    }

    void Visit(const XmlElement& element)
    {
        m_path.push_back(ShowName(element));
        const std::string& tag = element.tag.local;
        const auto depth = std::ranges::count_if(
            m_path, [&](const std::string& step) { return step == tag || step.starts_with(tag + " "); });
        Expect(static_cast<std::size_t>(depth) <= kDeepestOfOneKind, "is nested too deeply");
        CheckContent(element);
        m_path.pop_back();
    }

    void CheckContent(const XmlElement& element)
    {
        const ElementRule* rule = FindRule(kElementRules, &ElementRule::element, element.tag.local);
        if (element.tag.uri != service::kFrameworkUri || rule == nullptr)
        {
            Expect(false, "is no element of the framework");
            return;
        }
        CheckAttributes(element, *rule);
        Expect(element.text.empty() || rule->element == "Value", "must not hold text");
        for (const XmlElement& child : element.children)
        {
            Expect(IsListed(rule->children, child.tag.local), "must not hold " + child.tag.local);
            CheckIsFirst(child, element);
        }
        CheckKind(element);
        for (const XmlElement& child : element.children)
        {
            Visit(child);
        }
    }

    void CheckAttributes(const XmlElement& element, const ElementRule& rule)
    {
        for (const XmlAttribute& attribute : element.attributes)
        {
            const bool isType = attribute.name == service::TypeAttribute();
            Expect((attribute.name.uri.empty() || isType) && IsListed(rule.attributes, attribute.name.local),
                   "must not have the attribute " + attribute.name.local);
            Expect(attribute.name.local != "name" || attribute.qualified, "has a name without a declared prefix");
        }
        Expect(!rule.isNamed || element.FindAttribute({"", "name"}) != nullptr, "has no name");
    }

    void CheckIsFirst(const XmlElement& child, const XmlElement& parent)
    {
        const std::optional<QName> name = child.Name();
        Expect(!name || parent.FindChild(child.tag, *name) == &child, "holds a second " + ShowName(child));
    }

    void CheckKind(const XmlElement& element)
    {
        const std::string& tag = element.tag.local;
        if (tag == "Feature")
        {
            CheckFeature(element);
        }
        else if (tag == "Option")
        {
            CheckOption(element);
        }
        else if (tag == "Value")
        {
            CheckValue(element);
        }
        else if (tag == "ParameterDef")
        {
            CheckParameterDefinition(element);
        }
        else if (tag == "ParameterRef")
        {
            const std::optional<QName> name = element.Name();
            Expect(name && m_root->FindChild(Psf(m_isTicket ? "ParameterInit" : "ParameterDef"), *name) != nullptr,
                   "refers to a parameter that is not there");
        }
        else if (tag == "ScoredProperty")
        {
            const std::size_t values = Count(element, "Value") + Count(element, "ParameterRef");
            Expect(values == 1 || (values == 0 && Count(element, "ScoredProperty") > 0),
                   "needs one value or one reference");
        }
        else if (tag == "Property")
        {
            Expect(!element.children.empty(), "holds nothing");
        }
        else if (tag == "ParameterInit")
        {
            Expect(Count(element, "Value") == 1, "needs one value");
        }
        if (tag.starts_with("ParameterDef") || tag == "ParameterInit")
        {
            const std::optional<QName> name = element.Name();
            Expect(!name || name->uri != service::kKeywordsUri || IsListed(kParameterNames, name->local),
                   "is no public parameter");
        }
    }

    void CheckFeature(const XmlElement& element)
    {
        const std::size_t options = Count(element, "Option");
        const bool hasParts = Count(element, "Feature") > 0;
        Expect(options > 0 || hasParts, "has neither options nor features");
        Expect(!m_isTicket || options <= 1, "has more than one option");
        const XmlElement* selection = PropertyValue(element, "SelectionType");
        const bool isPart = m_path.size() > 2;
        Expect(m_isTicket || isPart || selection != nullptr, "has no selection type");
        Expect(selection == nullptr || IsKeyword(*selection, kSelections), "has an unknown selection type");
        const std::optional<QName> name = element.Name();
        if (name && name->uri == service::kKeywordsUri)
        {
            const FeatureRule* rule = FindRule(kFeatureRules, &FeatureRule::feature, name->local);
            Expect(rule != nullptr, "is no public feature");
            for (const XmlElement& child : element.children)
            {
                const std::optional<QName> option = child.Name();
                const bool isPublic = child.tag == Psf("Option") && option && option->uri == service::kKeywordsUri;
                Expect(!isPublic || rule == nullptr || rule->options.empty() || IsListed(rule->options, option->local),
                       "has no public option " + (option ? option->local : ""));
            }
        }
    }

    void CheckOption(const XmlElement& element)
    {
        Expect(element.FindAttribute({"", "name"}) != nullptr || Count(element, "ScoredProperty") > 0,
               "has neither a name nor a scored property");
        const XmlAttribute* constrained = element.FindAttribute({"", "constrained"});
        Expect(!m_isTicket || constrained == nullptr, "must not be constrained in a ticket");
        const bool isKnown = constrained != nullptr && constrained->qualified &&
                             constrained->qualified->uri == service::kKeywordsUri &&
                             IsListed(kConstraints, constrained->qualified->local);
        Expect(constrained == nullptr || isKnown, "has an unknown constraint");
    }

    void CheckValue(const XmlElement& element)
    {
        const XmlAttribute* type = element.FindAttribute(service::TypeAttribute());
        if (type == nullptr)
        {
            return;
        }
        const bool isType = type->qualified && type->qualified->uri == service::kTypesUri;
        const std::string name = isType ? type->qualified->local : "";
        Expect(IsListed(" string integer decimal QName ", name), "has an unknown type");
        Expect(name != "integer" || element.text.empty() || IsInteger(element.text), "is no integer");
        Expect(name != "QName" || element.text.empty() || element.qualifiedText, "is no qualified name");
    }

    static bool IsKeyword(const XmlElement& value, std::string_view list)
    {
        return value.qualifiedText && value.qualifiedText->uri == service::kKeywordsUri &&
               IsListed(list, value.qualifiedText->local);
    }

    void CheckParameterDefinition(const XmlElement& element)
    {
        for (const char* name :
             {"DataType", "DefaultValue", "MinValue", "MaxValue", "Multiple", "Mandatory", "UnitType"})
        {
            Expect(PropertyValue(element, name) != nullptr, "has no " + std::string(name));
        }
        const XmlElement* mandatory = PropertyValue(element, "Mandatory");
        Expect(mandatory == nullptr || IsKeyword(*mandatory, kMandatory), "is mandatory in an unknown way");
        const long long value = Number(PropertyValue(element, "DefaultValue"));
        Expect(value >= Number(PropertyValue(element, "MinValue")) &&
                   value <= Number(PropertyValue(element, "MaxValue")),
               "has a default outside its range");
    }

    // Features that say the same in different scopes: one in a ticket; in capabilities, all but one out of reach.
    void CheckExclusions(const XmlElement& root)
    {
        for (const FeatureRule& rule : kFeatureRules)
        {
            const XmlElement* feature = root.FindChild(Psf("Feature"), Psk(rule.feature));
            for (const FeatureRule& other : kFeatureRules)
            {
                const XmlElement* second = root.FindChild(Psf("Feature"), Psk(other.feature));
                const bool areBoth = feature != nullptr && second != nullptr && IsListed(rule.excluded, other.feature);
                Expect(!areBoth || (!m_isTicket && (IsOutOfReach(*feature) || IsOutOfReach(*second))),
                       std::string(rule.feature) + " and " + std::string(other.feature) + " exclude each other");
            }
        }
    }

    static bool IsOutOfReach(const XmlElement& feature)
    {
        return std::ranges::all_of(feature.children,
                                   [](const XmlElement& child)
                                   {
                                       const XmlAttribute* constrained = child.FindAttribute({"", "constrained"});
                                       return child.tag != Psf("Option") ||
                                              (constrained != nullptr && constrained->qualified != Psk("None"));
                                   });
    }

    bool m_isTicket;
    const XmlElement* m_root = nullptr;
    std::vector<std::string> m_path;
    Violations m_violations;
};

// What `offer` does not have of the features in `asked`.
void CompareFeatures(const XmlElement& asked, const XmlElement& offer, const std::string& place, Violations& violations)
{
    for (const XmlElement& feature : asked.children)
    {
        const std::optional<QName> name = feature.Name();
        if (feature.tag != Psf("Feature") || !name)
        {
            continue;
        }
        const std::string here = place + "/" + name->local;
        const XmlElement* offered = offer.FindChild(feature.tag, *name);
        if (offered == nullptr)
        {
            violations.push_back(here + ": is not offered");
            continue;
        }
        const XmlElement* option = feature.FindChild(Psf("Option"));
        const std::optional<QName> chosen = option == nullptr ? std::nullopt : option->Name();
        if (chosen && offered->FindChild(Psf("Option"), *chosen) == nullptr)
        {
            violations.push_back(here + ": " + chosen->local + " is not offered");
        }
        CompareFeatures(feature, *offered, here, violations);
    }
}

} // namespace

std::vector<std::string> CheckPrintSchema(std::string_view xml, PrintSchemaKind kind)
{
    const std::optional<XmlElement> root = Parse(xml);
    return root ? Checker(kind).Check(*root) : Violations{"the document cannot be read"};
}

std::vector<std::string> CheckTicketAgainst(std::string_view ticket, std::string_view capabilities)
{
    const std::optional<XmlElement> asked = Parse(ticket);
    const std::optional<XmlElement> offer = Parse(capabilities);
    if (!asked || !offer)
    {
        return {"a document cannot be read"};
    }
    Violations violations;
    CompareFeatures(*asked, *offer, "", violations);
    for (const XmlElement& parameter : asked->children)
    {
        const std::optional<QName> name = parameter.Name();
        if (parameter.tag != Psf("ParameterInit") || !name)
        {
            continue;
        }
        const XmlElement* definition = offer->FindChild(Psf("ParameterDef"), *name);
        const long long value = Number(parameter.FindChild(Psf("Value")));
        if (definition == nullptr || value < Number(PropertyValue(*definition, "MinValue")) ||
            value > Number(PropertyValue(*definition, "MaxValue")))
        {
            violations.push_back(name->local + ": is not offered or outside its range");
        }
    }
    return violations;
}

} // namespace tsypr::test
