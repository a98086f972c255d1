#include "encoders/exr/Inflater.h"

#include <gmock/gmock.h>

#include <array>
#include <string>

namespace {

// Python's zlib.compress(b"abcabcabc").
constexpr std::array<std::uint8_t, 13> kStream = {0x78, 0x9C, 0x4B, 0x4C, 0x4A, 0x4E, 0x04,
                                                  0x23, 0x00, 0x11, 0x3D, 0x03, 0x73};

TEST(Inflater, GivesTheBytesAndTheirNumber) {
    std::array<std::uint8_t, 12> room{};
    std::size_t length = room.size();
    EXPECT_TRUE(Inflater().inflate(room.data(), length, kStream.data(), kStream.size()));
    EXPECT_EQ(length, 9u);
    EXPECT_EQ(std::string(room.begin(), room.begin() + 9), "abcabcabc");
}

TEST(Inflater, RefusesTooLittleRoomAndDamage) {
    std::array<std::uint8_t, 12> room{};
    std::size_t length = 8;
    EXPECT_FALSE(Inflater().inflate(room.data(), length, kStream.data(), kStream.size()));
    for (std::size_t bytes = 0; bytes < kStream.size(); ++bytes) {
        length = room.size();
        EXPECT_FALSE(Inflater().inflate(room.data(), length, kStream.data(), bytes)) << bytes;
    }
}

}  // namespace
