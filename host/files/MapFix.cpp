#include "files/MapFix.h"

#include <stdexcept>

#include "terminal/Failure.h"

FixedMap fixMap(MapFormat format, const std::string& in, const std::string& out,
                const FixOptions& options) {
    switch (format) {
        case MapFormat::kTiff:
            return fixTiff(in, out, options);
        case MapFormat::kPsd:
            return fixPsd(in, out, options);
        case MapFormat::kBmp:
            return fixBmp(in, out, options);
    }
    throw std::logic_error("there is no such map format");
}

void requireSides(const std::string& path, std::uint64_t width, std::uint64_t height,
                  std::uint32_t maxSide) {
    const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
    if (width == 0 || height == 0) throw Failure(path + " has " + size + ", so there is no map");
    if (width > maxSide || height > maxSide)
        throw Failure(path + " has " + size + "; the longest side of such a map is " +
                      std::to_string(maxSide) + ", so make it smaller");
}

void requireNoLoss(const std::string& path, unsigned furtherChannels, const FixOptions& options) {
    if (furtherChannels == 0 || options.dropAlpha) return;
    throw Failure(path + " has " + counted(furtherChannels, "channel", "channels") +
                  " beyond grey or RGB, such as alpha, which the exports do not take; --drop-alpha "
                  "leaves them out");
}

std::string counted(unsigned long count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}
