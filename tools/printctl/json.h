// JSON output of the query commands.
#ifndef TESSARY_PRINTCTL_JSON_H
#define TESSARY_PRINTCTL_JSON_H

#include "tools/printctl/text.h"

#include <nlohmann/json.hpp>

namespace tsypr::printctl
{

// Keys stay in the order in which they were added.
using Json = nlohmann::ordered_json;

inline void WriteJson(const Json& document)
{
    WriteOut(document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

} // namespace tsypr::printctl

#endif
