#include <ImathBox.h>
#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfThreading.h>

#include <memory>
#include <span>

#include "MapPeers.h"

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

float rangeByOpenExr(const Maps& maps) {
    Imf::setGlobalThreadCount(0);
    Imf::InputFile file(maps.map.c_str());
    const Imath::Box2i window = file.header().dataWindow();
    const auto samples = std::make_unique_for_overwrite<float[]>(maps.pixels());
    Imf::FrameBuffer plane;
    plane.insert(file.header().channels().begin().name(),
                 Imf::Slice::Make(Imf::FLOAT, samples.get(), window));
    file.setFrameBuffer(plane);
    file.readPixels(window.min.y, window.max.y);
    return rangeOf({samples.get(), maps.pixels()});
}
