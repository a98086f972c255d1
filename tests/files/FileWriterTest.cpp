#include "files/FileWriter.h"

#include <gmock/gmock.h>

#include "support/Faults.h"
#include "support/FullDevice.h"
#include "support/TempDir.h"

namespace {

TEST(FileWriter, LeavesOnlyWhatWasAppended) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3, 4});
    {
        FileWriter file(File::createOver(path.c_str()));
        EXPECT_TRUE(file.append(ByteList{7, 8}.data(), 2));
        EXPECT_TRUE(file.append(ByteList{9}.data(), 1));
        EXPECT_EQ(file.length(), 3u);
    }
    EXPECT_EQ(readBytes(path), (ByteList{7, 8, 9}));
}

TEST(FileWriter, CreatesAFileThatIsNotThere) {
    const TempDir dir;
    { const FileWriter file(File::createOver(dir.path("f").c_str())); }
    EXPECT_EQ(readBytes(dir.path("f")), ByteList{});
}

TEST(FileWriter, AFullDiskLeavesTheBytesThatItTook) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3, 4, 5});
    {
        const FullDisk disk(2);
        FileWriter file(File::createOver(path.c_str()));
        EXPECT_FALSE(file.append(ByteList{7, 8, 9}.data(), 3));
        EXPECT_EQ(file.length(), 2u);
    }
    EXPECT_EQ(readBytes(path), (ByteList{7, 8}));
}

TEST(FileWriter, WritesAgainFromWhereItWentBackTo) {
    const TempDir dir;
    FileWriter file(File::create(dir.path("f").c_str()));
    EXPECT_TRUE(file.append(ByteList{1, 2, 3}.data(), 3));
    file.goBackTo(1);
    EXPECT_TRUE(file.append(ByteList{9}.data(), 1));
    EXPECT_TRUE(file.finish());
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(readBytes(dir.path("f")), (ByteList{1, 9}));
}

TEST(FileWriter, DoesNotTruncateADevice) {
    NEEDS_FULL_DEVICE();
    FileWriter file(File::createOver("/dev/full"));
    EXPECT_TRUE(file.isOpen());
    EXPECT_FALSE(file.append(ByteList{1}.data(), 1));
    EXPECT_TRUE(file.finish());
}

}  // namespace
