// Text: the dictionary is all that the mutator needs.

#include "harness/Format.h"

const Format kText{"filter", [](const ByteList&) { return std::vector<Field>(); },
                   [](ByteList&, std::size_t) {}};
