#pragma once
// ExrLoader: OpenEXR files through tinyexr, with guards around it.

#include <cstdint>
#include <functional>
#include <span>

struct ExrSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

// Receives some samples of a picture.
using ExrReceiver = std::function<void(std::span<const float> samples)>;

// Loads a file and passes on the first channel in the order of its header, half floats and whole
// numbers converted to floats. The rows come one after the other, from the top one down; a scanline
// file whose line order is decreasing has its bottom row first. They come in pieces that stay in the
// processor's cache; only tiles, which are in any order, are laid out as one plane first.
//
//   size     receives the size of the picture before any samples are passed on
//   returns  kOk, or another code of exr_status (ExrRange.h), also after some pieces were passed on
int LoadMultiChannelEXRFromFile(const char* path, ExrSize& size, const ExrReceiver& receive);
