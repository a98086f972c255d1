#pragma once
// Builds TIFF maps as the host writes them; a test can change every field.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "support/TempDir.h"

class TiffFile {
public:
    // Where the pixels are: right after the file header, before the directory, so that even a tiny
    // map's strip starts below its own length; or after the directory, which starts at byte 8.
    enum class Order { kPixelsFirst, kDirectoryFirst };

    TiffFile(std::uint32_t width, std::uint32_t length, Order order = Order::kPixelsFirst);

    TiffFile& grey8(const ByteList& samples) { return pixels(1, 8, 1, samples); }
    TiffFile& rgb8(const ByteList& samples) { return pixels(3, 8, 1, samples); }
    TiffFile& grey16(const std::vector<std::uint16_t>& samples);
    TiffFile& rgb16(const std::vector<std::uint16_t>& samples);
    TiffFile& grey32(const std::vector<float>& samples);
    TiffFile& rgb32(const std::vector<float>& samples);

    // Sets, replaces or removes a directory entry.
    TiffFile& entry(std::uint16_t tag, std::uint32_t count, std::uint32_t value);
    TiffFile& without(std::uint16_t tag);
    // The number of entries that the directory claims.
    TiffFile& claimEntries(std::uint16_t count);

    ByteList bytes() const;
    operator ByteList() const { return bytes(); }
    // Where the pixels are in bytes().
    std::size_t pixelOffset() const;
    std::size_t pixelBytes() const { return pixels_.size(); }

private:
    struct Entry {
        std::uint16_t type;
        std::uint32_t count;
        std::uint32_t value;
    };
    using Entries = std::map<std::uint16_t, Entry>;

    TiffFile& pixels(std::uint32_t channels, std::uint32_t bits, std::uint32_t format,
                     const ByteList& samples);
    Entries entries() const;
    std::size_t directoryOffset() const;
    std::size_t directoryBytes() const;

    Order order_;
    std::uint32_t width_;
    std::uint32_t length_;
    std::uint32_t channels_ = 1;
    std::uint32_t bits_ = 8;
    std::uint32_t format_ = 1;
    ByteList pixels_;
    Entries bent_;
    std::set<std::uint16_t> removed_;
    std::optional<std::uint16_t> claimedEntries_;
};

// The bytes of the pixels in a file that a TiffFile described, however it has changed since.
ByteList pixelsOf(const std::string& path, const TiffFile& built);
