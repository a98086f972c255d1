#pragma once
// OpenEXR files of 32-bit floats, written by OpenEXR's own library.

#include <ImfChannelList.h>
#include <ImfCompression.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>

#include <map>
#include <string>
#include <vector>

// Writes the samples of each channel, top row first, at `path`.
inline void writeExr(const std::string& path, int width, int height,
                     const std::map<std::string, std::vector<float>>& channels,
                     Imf::Compression compression = Imf::ZIP_COMPRESSION) {
    Imf::Header header(width, height);
    header.compression() = compression;
    Imf::FrameBuffer buffer;
    for (const auto& [name, samples] : channels) {
        header.channels().insert(name, Imf::Channel(Imf::FLOAT));
        buffer.insert(name, Imf::Slice::Make(Imf::FLOAT, samples.data(), {0, 0}, width, height));
    }
    Imf::OutputFile file(path.c_str(), header);
    file.setFrameBuffer(buffer);
    file.writePixels(height);
}
