#pragma once
// The range and the mean of an image's samples, channel by channel.

#include <cstdint>
#include <string>
#include <vector>

#include "files/FileFacts.h"

struct SampleStatistics {
    std::string channel;       // "grey", "red", or its name in an OpenEXR file
    std::uint64_t finite = 0;  // samples that are numbers; without any the next three are 0
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    std::uint64_t nan = 0;
    std::uint64_t infinite = 0;
};

// Whether an image has samples of more than 8 bits that statisticsOf can read: a map of heights or of
// vectors, or an OpenEXR file.
bool hasStatistics(const FileFacts& facts);

// Reads all samples of an image: of an OpenEXR file those of every channel that is not subsampled, in
// the order of the file; of other files those that the layout in `facts` places, as far as the file has
// them. Memory is taken for a few rows only.
//
//   facts    what factsOf returned for `path`; without a layout, and not OpenEXR: nothing is returned
//   throws   Failure if the file cannot be read or decoded, Interrupted
std::vector<SampleStatistics> statisticsOf(const std::string& path, const FileFacts& facts);
