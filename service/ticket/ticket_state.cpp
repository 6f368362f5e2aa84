#include "service/ticket/ticket_state.h"

#include <algorithm>

#include "service/device_mode.h"

namespace tsypr::service
{

TicketState StateOfMode(const TicketModel& model, const ModeParts& mode)
{
    TicketState state;
    for (const TicketSetting& setting : model.settings)
    {
        state.settings.push_back({setting.Find(setting.row->get(model.profile, mode)), {}, {}});
    }
    for (const TicketParameter& parameter : model.parameters)
    {
        state.parameters.push_back(
            std::clamp(parameter.row->get(model.profile, mode), parameter.range.smallest, parameter.range.largest));
    }
    return state;
}

TicketState DefaultState(const TicketModel& model)
{
    return StateOfMode(model, ModeParts(BuildDevMode(model.profile)));
}

void PutState(const TicketModel& model, const TicketState& state, ModeParts& mode)
{
    for (std::size_t i = 0; i < model.settings.size(); ++i)
    {
        const TicketSetting& setting = model.settings[i];
        setting.row->put(model.profile, setting.Option(state.settings[i].choice).value, mode);
    }
    for (std::size_t i = 0; i < model.parameters.size(); ++i)
    {
        if (HoldsParameter(model, state, i))
        {
            model.parameters[i].row->put(state.parameters[i], mode);
        }
    }
}

bool HoldsParameter(const TicketModel& model, const TicketState& state, std::size_t parameter)
{
    const ParameterRow& row = *model.parameters[parameter].row;
    if (row.isUnconditional)
    {
        return true;
    }
    for (std::size_t i = 0; i < model.settings.size(); ++i)
    {
        const TicketOption& option = model.settings[i].Option(state.settings[i].choice);
        if (std::ranges::find(option.scored, row.name, &ScoredProperty::parameter) != option.scored.end())
        {
            return true;
        }
    }
    return false;
}

} // namespace tsypr::service
