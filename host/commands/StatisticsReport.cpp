#include "commands/StatisticsReport.h"

#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "files/NumberKind.h"

namespace {

// A mean has more digits than its samples, none of which matters.
std::string meanText(double mean) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.7g", mean);
    return digits;
}

Json numberOrNull(const SampleStatistics& channel, const std::string& text) {
    return channel.finite > 0 ? Json::parse(text) : Json();
}

}  // namespace

void printStatistics(const std::vector<SampleStatistics>& channels) {
    if (channels.empty()) return;
    std::printf("  %-16s %12s %12s %12s %10s %10s\n", "channel", "minimum", "maximum", "mean",
                "NaN", "infinite");
    for (const SampleStatistics& channel : channels) {
        const bool any = channel.finite > 0;
        std::printf("  %-16s %12s %12s %12s %10" PRIu64 " %10" PRIu64 "\n", channel.channel.c_str(),
                    any ? textOf(channel.minimum).c_str() : "none",
                    any ? textOf(channel.maximum).c_str() : "none",
                    any ? meanText(channel.mean).c_str() : "none", channel.nan, channel.infinite);
    }
}

Json jsonOf(const std::vector<SampleStatistics>& channels) {
    Json list = Json::array();
    for (const SampleStatistics& channel : channels)
        list.push_back({{"channel", channel.channel},
                        {"minimum", numberOrNull(channel, textOf(channel.minimum))},
                        {"maximum", numberOrNull(channel, textOf(channel.maximum))},
                        {"mean", numberOrNull(channel, meanText(channel.mean))},
                        {"finite", channel.finite},
                        {"nan", channel.nan},
                        {"infinite", channel.infinite}});
    return list;
}
