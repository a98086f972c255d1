#pragma once
// numpy as a contender: a Python process that stays, so that its start is not timed, and does the
// work whenever it is told to.

#include <cstdint>
#include <string>

#include "Job.h"

Contender firstChannelByNumpy(const std::string& in, const std::string& out, std::uint32_t side,
                              const std::string& variant, double target);
