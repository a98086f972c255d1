#include "ExrPeers.h"

#include <ImathBox.h>
#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfThreading.h>
#include <tinyexr.h>

#include <algorithm>
#include <memory>
#include <span>

#include "terminal/Failure.h"

namespace {

float rangeOf(std::span<const float> samples) {
    float highest = -65535.0f;
    float lowest = 65535.0f;
    for (const float sample : samples) {
        if (sample > highest) highest = sample;
        if (sample < lowest) lowest = sample;
    }
    return highest - lowest;
}

}  // namespace

float rangeByOpenExr(const std::string& path) {
    Imf::setGlobalThreadCount(0);
    Imf::InputFile file(path.c_str());
    const Imath::Box2i window = file.header().dataWindow();
    const auto width = static_cast<std::size_t>(window.max.x - window.min.x + 1);
    const auto height = static_cast<std::size_t>(window.max.y - window.min.y + 1);
    const auto samples = std::make_unique_for_overwrite<float[]>(width * height);
    Imf::FrameBuffer plane;
    plane.insert(file.header().channels().begin().name(),
                 Imf::Slice::Make(Imf::FLOAT, samples.get(), window));
    file.setFrameBuffer(plane);
    file.readPixels(window.min.y, window.max.y);
    return rangeOf({samples.get(), width * height});
}

float rangeByTinyExr(const std::string& path) {
    EXRVersion version;
    EXRHeader header;
    EXRImage image;
    InitEXRHeader(&header);
    InitEXRImage(&image);
    if (ParseEXRVersionFromFile(&version, path.c_str()) != TINYEXR_SUCCESS ||
        ParseEXRHeaderFromFile(&header, &version, path.c_str(), nullptr) != TINYEXR_SUCCESS)
        throw Failure("tinyexr cannot read the header of " + path);
    std::fill_n(header.requested_pixel_types, header.num_channels, TINYEXR_PIXELTYPE_FLOAT);
    if (LoadEXRImageFromFile(&image, &header, path.c_str(), nullptr) != TINYEXR_SUCCESS)
        throw Failure("tinyexr cannot load " + path);
    const auto count =
        static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    const float range = rangeOf({reinterpret_cast<const float*>(image.images[0]), count});
    FreeEXRImage(&image);
    FreeEXRHeader(&header);
    return range;
}
