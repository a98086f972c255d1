#include "ExrPeers.h"

#include <ImathBox.h>
#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfThreading.h>

#include <memory>
#include <span>

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
