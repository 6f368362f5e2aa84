#include "service/ticket/document_writer.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "service/ticket/document_parts.h"
#include "service/ticket/keywords.h"

namespace tsypr::service
{

namespace
{

void Append(XmlElement& parent, const std::vector<XmlElement>& children)
{
    std::ranges::copy(children, std::back_inserter(parent.children));
}

// The features that belong inside the feature of setting `parent`, or directly into the ticket.
void AddChosenFeatures(const TicketModel& model, const TicketState& state, std::size_t parent, XmlElement& element)
{
    for (std::size_t i = 0; i < model.settings.size(); ++i)
    {
        const TicketSetting& setting = model.settings[i];
        if (setting.parent != parent)
        {
            continue;
        }
        const SettingState& chosen = state.settings[i];
        XmlElement feature = MakeElement("Feature", setting.features[chosen.choice.feature].name);
        Append(feature, chosen.featureProperties);
        XmlElement option = MakeOption(setting.Option(chosen.choice));
        Append(option, chosen.optionProperties);
        feature.Add(std::move(option));
        AddChosenFeatures(model, state, i, feature);
        element.Add(std::move(feature));
    }
}

void AddProperty(XmlElement& parent, std::string_view name, const QName& value)
{
    XmlElement property = MakeElement("Property", Psf(name));
    AddName(property, value);
    parent.Add(std::move(property));
}

void AddProperty(XmlElement& parent, std::string_view name, std::int64_t value)
{
    XmlElement property = MakeElement("Property", Psf(name));
    AddInteger(property, value);
    parent.Add(std::move(property));
}

void AddTextProperty(XmlElement& parent, const QName& name, std::string_view value)
{
    XmlElement property = MakeElement("Property", name);
    AddText(property, value);
    parent.Add(std::move(property));
}

// Writes what one printer offers under the settings of one ticket.
class CapabilitiesWriter
{
public:
    CapabilitiesWriter(const TicketModel& model, const TicketState& state) : m_model(model), m_state(state) {}

    // The features inside the feature of setting `parent`, or directly in the document. `isExcluded` says that a
    // feature which excludes them is in the ticket.
    void AddFeatures(std::size_t parent, bool isExcluded, XmlElement& element) const
    {
        for (std::size_t i = 0; i < m_model.settings.size(); ++i)
        {
            for (std::size_t feature = 0; feature < m_model.settings[i].features.size(); ++feature)
            {
                if (m_model.settings[i].parent == parent)
                {
                    const bool isOther = feature != m_state.settings[i].choice.feature;
                    AddFeature(i, feature, isExcluded || isOther, element);
                }
            }
        }
    }

private:
    void AddFeature(std::size_t index, std::size_t featureIndex, bool isExcluded, XmlElement& element) const
    {
        const TicketSetting& setting = m_model.settings[index];
        const TicketFeature& feature = setting.features[featureIndex];
        XmlElement written = MakeElement("Feature", feature.name);
        AddProperty(written, "SelectionType", Psk("PickOne"));
        for (const TicketOption& option : feature.options)
        {
            XmlElement writtenOption = MakeOption(option);
            writtenOption.attributes.push_back({{"", "constrained"}, "", Constraint(setting, option, isExcluded)});
            if (!option.displayName.empty())
            {
                AddTextProperty(writtenOption, Psk("DisplayName"), option.displayName);
            }
            written.Add(std::move(writtenOption));
        }
        AddFeatures(index, isExcluded, written);
        element.Add(std::move(written));
    }

    // The strictest that applies.
    static QName Constraint(const TicketSetting& setting, const TicketOption& option, bool isExcluded)
    {
        if (setting.isLocked && option.value != setting.DefaultValue())
        {
            return Psk("AdminSettings");
        }
        return Psk(isExcluded ? "PrintTicketSettings" : "None");
    }

    const TicketModel& m_model;
    const TicketState& m_state;
};

XmlElement MakeParameterDefinition(const TicketParameter& parameter)
{
    XmlElement definition = MakeElement("ParameterDef", parameter.name);
    AddProperty(definition, "DataType", Xsd("integer"));
    AddTextProperty(definition, Psf("UnitType"), parameter.row->unit);
    AddProperty(definition, "DefaultValue", parameter.defaultValue);
    AddProperty(definition, "MinValue", parameter.range.smallest);
    AddProperty(definition, "MaxValue", parameter.range.largest);
    AddProperty(definition, "Multiple", 1);
    AddProperty(definition, "Mandatory", Psk(parameter.row->isUnconditional ? "Unconditional" : "Conditional"));
    return definition;
}

} // namespace

XmlElement BuildTicket(const TicketModel& model, const TicketState& state)
{
    XmlElement ticket = MakeDocument("PrintTicket");
    Append(ticket, state.properties);
    for (std::size_t i = 0; i < model.parameters.size(); ++i)
    {
        if (HoldsParameter(model, state, i))
        {
            XmlElement parameter = MakeElement("ParameterInit", model.parameters[i].name);
            AddInteger(parameter, state.parameters[i]);
            ticket.Add(std::move(parameter));
        }
    }
    AddChosenFeatures(model, state, kNoParent, ticket);
    return ticket;
}

XmlElement BuildCapabilities(const TicketModel& model, const TicketState& state)
{
    XmlElement capabilities = MakeDocument("PrintCapabilities");
    CapabilitiesWriter(model, state).AddFeatures(kNoParent, false, capabilities);
    for (const TicketParameter& parameter : model.parameters)
    {
        capabilities.Add(MakeParameterDefinition(parameter));
    }
    return capabilities;
}

} // namespace tsypr::service
