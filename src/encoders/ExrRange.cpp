#include "encoders/ExrRange.h"

#include "encoders/ExrLoader.h"

float measureExrRange(const char* path) {
    ExrImage image;
    const int status = LoadMultiChannelEXRFromFile(image, path);
    if (status != exr_status::kOk) return static_cast<float>(status);
    if (image.height < 1 || image.width < 1) return exr_range::kNoPixels;

    float largest = -65535.0f;
    float smallest = 65535.0f;
    for (const float sample : image.firstPlane) {
        largest = sample > largest ? sample : largest;
        smallest = sample < smallest ? sample : smallest;
    }
    return largest - smallest;
}
