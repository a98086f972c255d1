#include "files/SampleStatistics.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>

#include <algorithm>
#include <cmath>
#include <span>

#include "files/DiskFile.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr std::uint64_t kPixelsAtOnce = 16384;

// Rows that are decoded at a time: a multiple of what most compressions pack together.
constexpr int kExrRowsAtOnce = 32;

// What a header may claim. OpenEXR allocates memory for some rows, or some tiles, before it reads any.
constexpr int kMaxExrSide = 262144;
constexpr int kMaxExrTileSide = 8192;

// Collects samples; the mean is their sum until finish().
class Collector {
public:
    explicit Collector(std::string channel) { result_.channel = std::move(channel); }

    void add(double sample) {
        if (std::isnan(sample)) {
            ++result_.nan;
        } else if (std::isinf(sample)) {
            ++result_.infinite;
        } else {
            result_.minimum = result_.finite == 0 ? sample : std::min(result_.minimum, sample);
            result_.maximum = result_.finite == 0 ? sample : std::max(result_.maximum, sample);
            result_.mean += sample;
            ++result_.finite;
        }
    }

    SampleStatistics finish() && {
        if (result_.finite > 0) result_.mean /= static_cast<double>(result_.finite);
        return std::move(result_);
    }

private:
    SampleStatistics result_;
};

using Collectors = std::vector<Collector>;

std::vector<SampleStatistics> finished(Collectors collectors) {
    std::vector<SampleStatistics> all;
    for (Collector& collector : collectors)
        all.push_back(std::move(collector).finish());
    return all;
}

// Adds pixels that are stored one after the other; channel i of each goes to the i-th collector.
void addPixels(std::span<const std::uint8_t> bytes, NumberKind kind,
               std::span<Collector> collectors) {
    const std::size_t pixelBytes = kind.bytes * collectors.size();
    for (std::size_t at = 0; at + pixelBytes <= bytes.size(); at += pixelBytes) {
        for (std::size_t i = 0; i < collectors.size(); ++i)
            collectors[i].add(numberIn({&bytes[at + i * kind.bytes], kind.bytes}, kind));
    }
}

// Adds the pixels of a row at `offset`. False when the file ends within it.
bool addRow(InputFile& file, std::uint64_t offset, const PixelLayout& layout,
            std::span<Collector> collectors, std::vector<std::uint8_t>& piece) {
    const std::uint64_t pixelBytes = pixelBytesOf(layout);
    for (std::uint64_t x = 0; x < layout.width; x += kPixelsAtOnce) {
        stopIfInterrupted();
        piece.resize(std::min(layout.width - x, kPixelsAtOnce) * pixelBytes);
        const std::size_t count = file.read(offset + x * pixelBytes, piece);
        addPixels(std::span(piece).first(count), layout.sample, collectors);
        if (count < piece.size()) return false;
    }
    return true;
}

std::vector<SampleStatistics> statisticsOfLayout(const std::string& path,
                                                 const PixelLayout& layout) {
    Collectors collectors;
    for (std::uint64_t i = 0; i < layout.channels; ++i) {
        const std::uint64_t channel = layout.blueFirst && i < 3 ? 2 - i : i;
        collectors.emplace_back(channelName(layout.channels, channel));
    }

    InputFile file(path, "file");
    std::vector<std::uint8_t> piece;
    std::uint64_t offset = layout.start;
    const std::uint64_t planes = layout.planes ? layout.channels : 1;
    for (std::uint64_t row = 0; row < planes * layout.height; ++row) {
        const auto perRow = layout.planes ? std::span(collectors).subspan(row / layout.height, 1)
                                          : std::span(collectors);
        if (!addRow(file, offset, layout, perRow, piece)) break;
        offset += layout.rowBytes;
    }
    return finished(std::move(collectors));
}

// A channel of an OpenEXR file and some of its rows.
struct ExrRows {
    std::string channel;
    std::vector<float> samples = {};
};

// The channels that have a sample for each pixel, in the order of the file.
std::vector<ExrRows> wholeChannels(const Imf::Header& header,
                                   const std::vector<std::string>& names) {
    std::vector<ExrRows> all;
    for (const std::string& name : names) {
        const Imf::Channel* const channel = header.channels().findChannel(name);
        if (channel != nullptr && channel->xSampling == 1 && channel->ySampling == 1)
            all.push_back({name});
    }
    return all;
}

// Reads rows, the first of which is `y`, of all channels.
void readRows(Imf::InputFile& file, std::vector<ExrRows>& channels, int y, int rows) {
    const Imath::Box2i& window = file.header().dataWindow();
    const int width = window.max.x - window.min.x + 1;
    Imf::FrameBuffer buffer;
    for (ExrRows& rowsOf : channels) {
        rowsOf.samples.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(rows));
        buffer.insert(rowsOf.channel, Imf::Slice::Make(Imf::FLOAT, rowsOf.samples.data(),
                                                       {window.min.x, y}, width, rows));
    }
    file.setFrameBuffer(buffer);
    file.readPixels(y, y + rows - 1);
}

std::vector<SampleStatistics> statisticsOfExr(const std::string& path,
                                              const std::vector<std::string>& names) {
    Imf::Header::setMaxImageSize(kMaxExrSide, kMaxExrSide);
    Imf::Header::setMaxTileSize(kMaxExrTileSide, kMaxExrTileSide);
    Imf::InputFile file(path.c_str());
    std::vector<ExrRows> channels = wholeChannels(file.header(), names);
    Collectors collectors;
    for (const ExrRows& channel : channels)
        collectors.emplace_back(channel.channel);

    const Imath::Box2i& window = file.header().dataWindow();
    for (int y = window.min.y; y <= window.max.y; y += kExrRowsAtOnce) {
        stopIfInterrupted();
        readRows(file, channels, y, std::min(kExrRowsAtOnce, window.max.y - y + 1));
        for (std::size_t i = 0; i < channels.size(); ++i) {
            for (const float sample : channels[i].samples)
                collectors[i].add(static_cast<double>(sample));
        }
    }
    return finished(std::move(collectors));
}

}  // namespace

bool hasStatistics(const FileFacts& facts) {
    if (facts.kind == FileKind::kExr) return true;
    return facts.picture && facts.picture->pixels && facts.picture->pixels->sample.bytes > 1;
}

std::vector<SampleStatistics> statisticsOf(const std::string& path, const FileFacts& facts) {
    if (!facts.picture) return {};
    try {
        if (facts.kind == FileKind::kExr) return statisticsOfExr(path, facts.picture->channelNames);
    } catch (const Iex::BaseExc& error) {
        throw Failure("the samples of " + path + " cannot be read: " + error.what());
    }
    if (!facts.picture->pixels) return {};
    return statisticsOfLayout(path, *facts.picture->pixels);
}
