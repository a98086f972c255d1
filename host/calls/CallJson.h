#pragma once
// A call as a JSON object, for programs that write scripts:
//   {"export": "getUVs", "text": "model.Vemo", "value": 2, "buffer": "maps/model.Vemo"}
// A key that is missing or null is left out of the call.

#include <string_view>

#include "calls/CallWords.h"

// Whether a line of a script is meant as JSON: it begins with a brace.
bool isJsonCall(std::string_view line);

// Throws WrongUsage for what is not exactly one such object, for unknown or repeated keys and for
// values of another type.
NamedCall callFromJson(std::string_view line);
