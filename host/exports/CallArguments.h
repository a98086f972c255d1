#pragma once
// The arguments of a call. An argument that is missing is passed as a null pointer.

#include <optional>
#include <string>

struct CallArguments {
    std::optional<std::string> text = {};
    double value = 0.0;
    std::optional<std::string> buffer = {};  // a second path
};
