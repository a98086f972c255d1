// A folder of 100,000 entries: what the folder services make of it, by how many calls of the system, and
// how much of the host's block they write.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "faults/System.h"
#include "support/Plugin.h"
#include "support/TempDir.h"

namespace {

using enum SystemCall;
using Names = std::vector<std::string>;

constexpr std::size_t kEntries = 100'000;
constexpr std::size_t kLongestName = 255;

// Every fourth entry is of the same kind.
enum Kind { kFile, kFileWithoutDot, kEmptyFolder, kFileOfLongestName };

std::string nameOf(std::size_t entry) {
    const std::string number = std::to_string(entry);
    switch (entry % 4) {
        case kFile:
            return number + ".tif";
        case kFileWithoutDot:
            return number;
        case kEmptyFolder:
            return number + ".maps";
        default:
            return std::string(kLongestName - 4 - number.size(), 'n') + number + ".tif";
    }
}

class ManyEntries : public testing::Test {
protected:
    void SetUp() override {
        ::alarm(120);
        const int folder = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY);
        for (std::size_t entry = 0; entry < kEntries; ++entry) {
            const std::string name = nameOf(entry);
            if (entry % 4 == kEmptyFolder)
                ASSERT_EQ(::mkdirat(folder, name.c_str(), 0777), 0);
            else
                ASSERT_EQ(::mknodat(folder, name.c_str(), S_IFREG | 0666, 0), 0);
        }
        ::close(folder);
    }
    void TearDown() override { ::alarm(0); }

    // Calls an export on the folder, with the system's calls counted.
    float call(const char* exportName) {
        Watch watch;
        const float status = plugin_.call(exportName, {.text = path_.c_str()});
        asked_ = watch.end();
        return status;
    }

    // The names that GetFile gives, in order. It writes each with its NUL and not a byte more.
    Names restOfListing() {
        Names names;
        for (;;) {
            std::string block(kLongestName + 64, '#');
            const float status = plugin_.call("GetFile", {.buffer1 = block.data()});
            if (status != 0.0f) {
                EXPECT_EQ(status, -3.0f);
                EXPECT_EQ(block.find_first_not_of('#'), std::string::npos);
                return names;
            }
            names.emplace_back(block.c_str());
            EXPECT_EQ(block.find_first_not_of('#', names.back().size() + 1), std::string::npos);
        }
    }

    // The entries of these kinds, in order.
    static Names namesOf(const std::vector<Kind>& kinds) {
        Names names;
        for (std::size_t entry = 0; entry < kEntries; ++entry) {
            if (std::ranges::count(kinds, entry % 4) > 0) names.push_back(nameOf(entry));
        }
        std::ranges::sort(names);
        return names;
    }

    const Plugin plugin_;
    const TempDir dir_;
    const std::string path_ = dir_.path();
    Asked asked_;
};

TEST_F(ManyEntries, AreListedEachOnceWithTheFolderAndItsParent) {
    ASSERT_EQ(call("OpenFolder"), 0.0f);
    EXPECT_EQ(asked_.of(kReadFolder), 0u);
    Watch watch;
    Names found = restOfListing();
    EXPECT_EQ(watch.end().of(kReadFolder), 100'003u);  // with the end

    std::ranges::sort(found);
    Names expected = namesOf({kFile, kFileWithoutDot, kEmptyFolder, kFileOfLongestName});
    expected.insert(expected.begin(), {".", ".."});
    ASSERT_EQ(found.size(), 100'002u);
    EXPECT_TRUE(found == expected);
    EXPECT_EQ(plugin_.call("CloseFolder"), 0.0f);
}

TEST_F(ManyEntries, WithADotAndAPathOfAtMost255BytesAreDeleted) {
    ASSERT_LT(path_.size(), 200u);
    EXPECT_EQ(call("EmptyFolder"), 0.0f);
    EXPECT_EQ(asked_.of(kOpenFolder), 1u);
    EXPECT_EQ(asked_.of(kReadFolder), 100'003u);
    EXPECT_EQ(asked_.of(kRemove), 50'000u);
    EXPECT_EQ(asked_.bytes, 0);
    const Names left = dir_.names();
    EXPECT_EQ(left.size(), 50'000u);
    EXPECT_TRUE(left == namesOf({kFileWithoutDot, kFileOfLongestName}));
}

TEST_F(ManyEntries, DoNotMatterToCallsOnTheFolderItself) {
    EXPECT_EQ(call("CheckFolder"), 0.0f);
    EXPECT_EQ(asked_.of(kReadFolder), 0u);
    EXPECT_EQ(call("CreateFolder"), -1.0f);
    EXPECT_EQ(call("FileDelete"), -1.0f);
    EXPECT_EQ(asked_.of(kRemove), 1u);
    EXPECT_EQ(dir_.names().size(), 100'000u);
    const TempDir elsewhere;
    std::string moved = elsewhere.path("moved");
    EXPECT_EQ(plugin_.call("FileRename", {.text = path_.c_str(), .buffer1 = moved.data()}), 0.0f);
    EXPECT_FALSE(std::filesystem::exists(path_));
    std::filesystem::rename(moved, path_);
    EXPECT_TRUE(dir_.names() ==
                namesOf({kFile, kFileWithoutDot, kEmptyFolder, kFileOfLongestName}));
}

}  // namespace
