#include "macho/MachOFile.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "support/TempDir.h"

namespace {

using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Lt;
using testing::SizeIs;
using testing::ThrowsMessage;

const ByteList& library() {
    static const ByteList bytes = readBytes(QUILLON_MACHO);
    return bytes;
}

// What reading says of a file that it refuses; empty for one that it takes.
std::string refusalOf(const ByteList& bytes) {
    try {
        readMachO(bytes, kCpuX86_64);
        return "";
    } catch (const std::runtime_error& refusal) {
        return refusal.what();
    }
}

TEST(MachOFile, HoldsBothProcessors) {
    for (const std::uint32_t cpu : {kCpuArm64, kCpuX86_64}) {
        const MachOFile file = readMachO(library(), cpu);
        EXPECT_THAT(file.exports, SizeIs(37));
        ASSERT_THAT(file.segments, SizeIs(4));
        EXPECT_EQ(file.segments[0].name, "__TEXT");
        EXPECT_TRUE(file.segments[0].isExecutable);
        EXPECT_FALSE(file.segments[0].isWritable);
        EXPECT_TRUE(file.segments[1].isFixedUpOnce);
        EXPECT_THAT(file.rebases, Each(Lt(file.memorySize())));
        EXPECT_THAT(file.binds, Contains(testing::Field(&MachOBind::symbol, "_objc_msgSend")));
    }
}

TEST(MachOFile, RefusesAProcessorThatIsNotThere) {
    EXPECT_THAT([] { readMachO(library(), 7); },
                ThrowsMessage<std::runtime_error>(HasSubstr("no slice")));
}

TEST(MachOFile, RefusesWhatIsNoLibrary) {
    EXPECT_NE(refusalOf({}), "");
    EXPECT_NE(refusalOf(ByteList(4096, 0)), "");
    EXPECT_NE(refusalOf(ByteList(4096, 0xCA)), "");
}

// An allocation of its own for each length, so that the sanitizer sees the end.
TEST(MachOFile, RefusesEveryTruncatedLength) {
    const ByteList whole = readMachO(library(), kCpuX86_64).bytes;
    for (std::size_t length = 0; length < whole.size(); length += 1 + length / 8)
        EXPECT_NE(refusalOf({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}),
                  "")
            << length;
}

// Whatever a damaged header or table says, it is refused or harmless.
TEST(MachOFile, SurvivesAChangedByteAnywhereInItsTables) {
    const ByteList sound = readMachO(library(), kCpuX86_64).bytes;
    constexpr std::size_t kHeaders = 3000;
    const std::size_t tables = sound.size() - 60'000;
    ByteList damaged = sound;
    int refused = 0;
    const auto damage = [&](std::size_t at, std::uint8_t byte) {
        damaged[at] = byte;
        refused += refusalOf(damaged).empty() ? 0 : 1;
        damaged[at] = sound[at];
    };
    for (std::size_t at = 0; at < kHeaders; ++at)
        damage(at, static_cast<std::uint8_t>(sound[at] ^ 0x80));
    for (std::size_t at = tables; at < sound.size(); at += 37)
        damage(at, 0xFF);
    EXPECT_GT(refused, 200);
}

}  // namespace
