#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/Text.h"

namespace VantorCli {

// An object whose keys stay in the order they were added.
using Json = nlohmann::ordered_json;

// The object on one line. All control characters are escaped, those behind ASCII as well.
std::string ToLine(const Json& object);

// A list of texts.
Json ListOf(const std::vector<HostString>& texts);

}  // namespace VantorCli
