#include "service/ticket/ticket_reader.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "service/ticket/keywords.h"
#include "service/ticket/option_matching.h"

namespace tsypr::service
{

namespace
{

constexpr std::string_view kVersion = "1";

class Reader
{
public:
    Reader(const TicketModel& model, const XmlElement& ticket)
        : m_model(model), m_ticket(ticket), m_state(DefaultState(model)), m_found(model.settings.size())
    {
    }

    TicketState Read()
    {
        for (std::size_t i = 0; i < m_model.settings.size(); ++i)
        {
            ReadSetting(i);
        }
        CheckNoOthers(m_ticket, kNoParent);
        for (std::size_t i = 0; i < m_model.parameters.size(); ++i)
        {
            ReadParameter(i);
        }
        Resolve(HasOtherParameters());
        LimitCopies();
        m_state.properties = KeptProperties(m_ticket);
        return std::move(m_state);
    }

private:
    // Remembers that something the ticket asked for has to give way.
    void Resolve(bool isNeeded = true)
    {
        m_state.isConflictResolved = m_state.isConflictResolved || isNeeded;
    }

    // Whether names of this namespace mean anything to the printer.
    bool IsReported(const QName& name) const
    {
        return name.uri == kFrameworkUri || name.uri == kKeywordsUri || name.uri == m_model.vendorUri;
    }

    // Of the features that can express the setting, the first in the ticket that asks for anything but the default;
    // else the first.
    void ReadSetting(std::size_t index)
    {
        const TicketSetting& setting = m_model.settings[index];
        const XmlElement* parent = setting.parent == kNoParent ? &m_ticket : m_found[setting.parent];
        if (parent == nullptr)
        {
            return;
        }
        SettingState& state = m_state.settings[index];
        const XmlElement*& chosen = m_found[index];
        for (std::size_t i = 0; i < setting.features.size(); ++i)
        {
            const XmlElement* element = parent->FindChild(Psf("Feature"), setting.features[i].name);
            if (element == nullptr)
            {
                continue;
            }
            Resolve(chosen != nullptr);
            std::optional<SettingState> candidate = ReadFeature(setting, i, *element);
            const bool isDefault = setting.Option(state.choice).value == setting.DefaultValue();
            if (candidate &&
                (chosen == nullptr || (isDefault && setting.Option(candidate->choice).value != setting.DefaultValue())))
            {
                state = std::move(*candidate);
                chosen = element;
            }
        }
        if (setting.isLocked && setting.Option(state.choice).value != setting.DefaultValue())
        {
            state.choice.option = setting.defaultChoice.option;
            state.optionProperties.clear();
            Resolve();
        }
    }

    // Nothing for a feature whose option the printer lacks when the feature has no option for the default either, as
    // another way of saying what the default is about may have none.
    std::optional<SettingState> ReadFeature(const TicketSetting& setting,
                                            std::size_t featureIndex,
                                            const XmlElement& element)
    {
        const TicketFeature& feature = setting.features[featureIndex];
        const XmlElement* option = element.FindChild(Psf("Option"));
        Resolve(std::ranges::count(element.children, Psf("Option"), &XmlElement::tag) > 1);
        const std::optional<Match> match = option == nullptr ? std::nullopt : MatchOption(feature, *option, m_ticket);
        Resolve(option != nullptr && (!match || !match->isAsked));
        if (match)
        {
            return SettingState{{featureIndex, match->option},
                                KeptProperties(element),
                                match->isPerfect ? KeptProperties(*option) : std::vector<XmlElement>()};
        }
        const auto usual = std::ranges::find(feature.options, setting.DefaultValue(), &TicketOption::value);
        if (usual == feature.options.end())
        {
            return std::nullopt;
        }
        return SettingState{
            {featureIndex, static_cast<std::size_t>(usual - feature.options.begin())}, KeptProperties(element), {}};
    }

    // Features that the printer lacks, second ones of the same name, and elements that have no place in a ticket.
    void CheckNoOthers(const XmlElement& element, std::size_t parent)
    {
        for (auto child = element.children.begin(); child != element.children.end(); ++child)
        {
            if (child->tag == Psf("Feature"))
            {
                CheckFeature(*child, element, parent);
                continue;
            }
            const bool isOfTicket =
                child->tag == Psf("Property") || child->tag == Psf(parent == kNoParent ? "ParameterInit" : "Option");
            Resolve(!isOfTicket);
        }
    }

    void CheckFeature(const XmlElement& element, const XmlElement& parentElement, std::size_t parent)
    {
        const std::optional<QName> name = element.Name();
        const auto isThis = [&](const TicketFeature& feature) { return name == feature.name; };
        const auto setting = std::ranges::find_if(m_model.settings,
                                                  [&](const TicketSetting& candidate) {
                                                      return candidate.parent == parent &&
                                                             std::ranges::any_of(candidate.features, isThis);
                                                  });
        const bool isLacking = setting == m_model.settings.end();
        // One conflict is enough: among many features the search for a second one takes its time.
        Resolve(isLacking ||
                (!m_state.isConflictResolved && parentElement.FindChild(Psf("Feature"), *name) != &element));
        if (!isLacking)
        {
            CheckNoOthers(element, static_cast<std::size_t>(setting - m_model.settings.begin()));
        }
    }

    void ReadParameter(std::size_t index)
    {
        const TicketParameter& parameter = m_model.parameters[index];
        const XmlElement* element = m_ticket.FindChild(Psf("ParameterInit"), parameter.name);
        const XmlElement* value = element == nullptr ? nullptr : element->FindChild(Psf("Value"));
        if (value == nullptr || value->text.empty())
        {
            return;
        }
        const std::optional<std::int64_t> number = ParseInteger(value->text);
        const std::int64_t wanted = number.value_or(parameter.defaultValue);
        m_state.parameters[index] = std::clamp(wanted, parameter.range.smallest, parameter.range.largest);
        Resolve((!number || m_state.parameters[index] != *number) && HoldsParameter(m_model, m_state, index));
    }

    // Parameters that the printer lacks, and second ones of the same name.
    bool HasOtherParameters() const
    {
        return std::ranges::any_of(
            m_ticket.children,
            [&](const XmlElement& child)
            {
                const std::optional<QName> name = child.Name();
                const auto isThis = [&](const TicketParameter& parameter) { return name == parameter.name; };
                return child.tag == Psf("ParameterInit") && (std::ranges::none_of(m_model.parameters, isThis) ||
                                                             m_ticket.FindChild(child.tag, *name) != &child);
            });
    }

    // The copies of the three scopes multiply; together they must not be more than the printer can make.
    void LimitCopies()
    {
        std::int64_t total = 1;
        for (std::size_t i = 0; i < m_model.parameters.size(); ++i)
        {
            total *= m_model.parameters[i].row->isUnconditional ? m_state.parameters[i] : 1;
        }
        const std::int64_t most = m_model.profile.maxCopies;
        if (total <= most)
        {
            return;
        }
        Resolve();
        bool isFirst = true;
        for (std::size_t i = 0; i < m_model.parameters.size(); ++i)
        {
            if (m_model.parameters[i].row->isUnconditional)
            {
                m_state.parameters[i] = std::exchange(isFirst, false) ? most : 1;
            }
        }
    }

    // Properties mean nothing to this printer, but may to somebody who prints the ticket later. Those with names of
    // namespaces that the printer does not report go.
    std::vector<XmlElement> KeptProperties(const XmlElement& parent) const
    {
        std::vector<XmlElement> kept;
        std::set<std::pair<std::string, std::string>> seen;
        for (const XmlElement& child : parent.children)
        {
            const std::optional<QName> name = child.Name();
            if (child.tag == Psf("Property") && name && IsReported(*name) &&
                seen.emplace(name->uri, name->local).second)
            {
                kept.push_back(KeptProperty(child));
            }
        }
        return kept;
    }

    XmlElement KeptProperty(const XmlElement& property) const
    {
        XmlElement kept;
        kept.tag = property.tag;
        kept.attributes.push_back(*property.FindAttribute({"", "name"}));
        for (const XmlElement& child : property.children)
        {
            if (child.tag == Psf("Value"))
            {
                KeepValue(child, kept);
            }
        }
        std::ranges::move(KeptProperties(property), std::back_inserter(kept.children));
        return kept;
    }

    void KeepValue(const XmlElement& value, XmlElement& property) const
    {
        XmlElement kept{value.tag, {}, {}, {}, value.text, value.qualifiedText};
        const XmlAttribute* type = value.FindAttribute(TypeAttribute());
        if (type == nullptr || type->qualified != Xsd("QName"))
        {
            kept.qualifiedText.reset(); // it only looks like a name
        }
        if (type != nullptr && type->qualified && type->qualified->uri == kTypesUri)
        {
            kept.attributes.push_back(*type);
            if (type->qualified == Xsd("QName") && (!kept.qualifiedText || !IsReported(*kept.qualifiedText)))
            {
                return;
            }
        }
        property.Add(std::move(kept));
    }

    const TicketModel& m_model;
    const XmlElement& m_ticket;
    TicketState m_state;
    std::vector<const XmlElement*> m_found; // each setting's feature in the ticket
};

} // namespace

std::optional<TicketState> ReadTicket(const TicketModel& model, const XmlElement& root)
{
    const XmlAttribute* version = root.FindAttribute({"", "version"});
    if (root.tag != Psf("PrintTicket") || version == nullptr || version->value != kVersion)
    {
        return std::nullopt;
    }
    return Reader(model, root).Read();
}

} // namespace tsypr::service
