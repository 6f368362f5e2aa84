#ifndef TESSARY_SERVICE_TICKET_SETTING_TABLE_H
#define TESSARY_SERVICE_TICKET_SETTING_TABLE_H

#include <span>
#include <string_view>

#include "service/ticket/ticket_model.h"

namespace tsypr::service
{

// All the settings that tickets carry, in the order in which documents name them; a row comes after its parent.
std::span<const SettingRow> SettingRows();
std::span<const ParameterRow> ParameterRows();

// Public options that no printer here offers under that name, with what comes closest.
std::string_view ClosestOption(std::string_view name);

} // namespace tsypr::service

#endif
