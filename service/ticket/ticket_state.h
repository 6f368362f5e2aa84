#ifndef TESSARY_SERVICE_TICKET_TICKET_STATE_H
#define TESSARY_SERVICE_TICKET_TICKET_STATE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "service/ticket/mode_parts.h"
#include "service/ticket/ticket_model.h"

namespace tsypr::service
{

// What a ticket says about one setting. The properties are those of the ticket's feature and of its option that stay.
struct SettingState
{
    Choice choice;
    std::vector<XmlElement> featureProperties;
    std::vector<XmlElement> optionProperties;
};

// A ticket in terms of one printer's model: every setting and parameter has a value that the printer offers.
struct TicketState
{
    std::vector<SettingState> settings;   // in the model's order
    std::vector<std::int64_t> parameters; // in the model's order
    std::vector<XmlElement> properties;   // of the ticket as a whole
    bool isConflictResolved = false;      // something that the ticket asked for had to give way
};

// What a device mode that `ValidateDevMode` made says; with the printer's default device mode, the defaults.
TicketState StateOfMode(const TicketModel& model, const ModeParts& mode);
TicketState DefaultState(const TicketModel& model);

// Puts the settings into a device mode of the printer.
void PutState(const TicketModel& model, const TicketState& state, ModeParts& mode);

// Whether a ticket of this state holds the model's parameter.
bool HoldsParameter(const TicketModel& model, const TicketState& state, std::size_t parameter);

} // namespace tsypr::service

#endif
