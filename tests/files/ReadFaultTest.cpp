// Operations that no export reaches, and a disk that fails to be read.

// The program's own pread would be defined twice by the compiler's checks.
#undef _FORTIFY_SOURCE

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "mesh/VemoOps.h"
#include "psd/PsdOps.h"
#include "support/PsdFile.h"
#include "support/VemoBuilder.h"

namespace {

constinit std::ptrdiff_t readsLeft = -1;  // until all fail; below 0, none does

// Calls `run` with the disk failing from read number `number` on, counted from 0.
template <typename Run>
float withReadsFailing(std::ptrdiff_t number, Run run) {
    readsLeft = number;
    const float status = run();
    readsLeft = -1;
    return status;
}

}  // namespace

extern "C" ssize_t pread(int descriptor, void* bytes, std::size_t count, off_t offset) {
    static const auto real = reinterpret_cast<decltype(&pread)>(::dlsym(RTLD_NEXT, "pread"));
    if (readsLeft == 0) {
        errno = EIO;
        return -1;
    }
    if (readsLeft > 0) --readsLeft;
    return real(descriptor, bytes, count, offset);
}

namespace {

constexpr std::uint32_t kSide = 300;  // planes of two pieces

PsdFile map(std::uint32_t seed) {
    return drawnPsd(kSide, kSide, [=](auto plane, auto row, auto column) {
        return (row * 7 + column * 13 + plane * 31 + seed) % 7;
    });
}

bool isPrefix(const ByteList& bytes, const ByteList& whole) {
    return bytes.size() <= whole.size() && std::equal(bytes.begin(), bytes.end(), whole.begin());
}

class ReadFault : public testing::Test {
protected:
    // Makes the disk fail from the first read on, from the second on, and so forth until there are
    // no more, the files being new each time; `check` looks at what is left.
    template <typename Run, typename Check>
    void failEachRead(Run run, Check check) {
        for (std::ptrdiff_t number = 0;; ++number) {
            SCOPED_TRACE(number);
            one = dir.write("one", map(1));
            other = dir.write("other", map(2));
            const float status = withReadsFailing(number, run);
            if (status == 0.0f) {
                EXPECT_GT(number, 1);
                return;
            }
            EXPECT_EQ(status, -1.0f);
            check();
            if (HasFailure()) return;
        }
    }

    const TempDir dir;
    std::string one;
    std::string other;
};

TEST_F(ReadFault, TheSameReplacementAgainCompletesIt) {
    const auto replace = [this] { return convertPSD(one.c_str(), 0x010203, 0xFFFFFF, true); };
    one = dir.write("one", map(1));
    ASSERT_EQ(replace(), 0.0f);
    const ByteList whole = readBytes(one);
    failEachRead(replace, [&] {
        EXPECT_EQ(replace(), 0.0f);
        EXPECT_TRUE(readBytes(one) == whole);
    });
}

TEST_F(ReadFault, AGreyMapEndsThereAndTheInputStays) {
    const auto makeGrey = [this] { return GrayscalePSD(one.c_str(), other.c_str(), 0); };
    one = dir.write("one", map(1));
    other = dir.path("other");
    ASSERT_EQ(makeGrey(), 0.0f);
    const ByteList whole = readBytes(other);
    failEachRead(makeGrey, [&] {
        const ByteList left = readBytes(other);
        EXPECT_TRUE(left == map(2).bytes() || isPrefix(left, whole));
        EXPECT_TRUE(readBytes(one) == map(1).bytes());
    });
}

TEST_F(ReadFault, MapsThatAreReadBeforeTheyAreReplacedStay) {
    const auto isAsBefore = [this] { EXPECT_TRUE(readBytes(one) == map(1).bytes()); };
    failEachRead([this] { return GrayscalePSD(one.c_str(), one.c_str(), 0); }, isAsBefore);
    failEachRead([this] { return createThumb(one.c_str(), 3); }, isAsBefore);
    for (const bool horizontal : {true, false}) {
        const auto repair = [&] {
            return mergeSeamlessPSD(one.c_str(), other.c_str(), horizontal);
        };
        failEachRead(repair, isAsBefore);
    }
}

TEST_F(ReadFault, FacesThatCannotBeReadAreNotCounted) {
    const std::string mesh = dir.write(
        "mesh",
        VemoBuilder().faces(std::vector<VemoBuilder::Face>(40000, {0, 1, 2, 3})).closing().bytes());
    const auto count = [&] { return GetFaceIDsVemo(mesh.c_str(), 1.0); };
    ASSERT_EQ(count(), 40000.0f);
    std::ptrdiff_t reads = 0;
    for (float status = -1760.0f; status != 40000.0f; ++reads) {
        ASSERT_LT(reads, 100);
        status = withReadsFailing(reads, count);
        EXPECT_TRUE(status == -1760.0f || status == 40000.0f) << status;
    }
    EXPECT_GT(reads, 4);
}

}  // namespace
