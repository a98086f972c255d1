// What the exports refuse before they do anything, and how they read the number.

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "bytes/Bytes.h"
#include "support/Plugin.h"
#include "support/TempDir.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

double below(double value) {
    return std::nextafter(value, -kInf);
}

double above(double value) {
    return std::nextafter(value, kInf);
}

// Calls whose pointers, where they are not null, name files that exist: whatever an export did
// before it refused would show in them.
class Refusals : public testing::Test {
protected:
    float callWith(const char* name, bool hasText, double value, bool hasBuffer1) const {
        Block target(target_);
        return plugin_.call(name, {.text = hasText ? source_.c_str() : nullptr,
                                   .value = value,
                                   .buffer1 = hasBuffer1 ? static_cast<char*>(target) : nullptr});
    }

    void TearDown() override {
        EXPECT_EQ(dir_.names(), (std::vector<std::string>{"source.tif", "target.psd"}));
        EXPECT_EQ(readBytes(source_), (ByteList{1, 2, 3}));
        EXPECT_EQ(readBytes(target_), (ByteList{4, 5}));
    }

private:
    const Plugin plugin_;
    const TempDir dir_;
    const std::string source_ = dir_.write("source.tif", ByteList{1, 2, 3});
    const std::string target_ = dir_.write("target.psd", ByteList{4, 5});
};

TEST_F(Refusals, ANullPathOrBlockGivesTheExportsOwnStatus) {
    const struct {
        const char* name;
        double value;  // one that the export takes
        bool needsBuffer1;
        float status;
    } exports[] = {
        {"FileDelete", 0.0, false, -1.0f},
        {"FileCopyTo", 0.0, true, -1.0f},
        {"FileRename", 0.0, true, -1.0f},
        {"GetString", 2.0, true, -1.0f},
        {"setUVtilesOutput", 0.0, false, -9.0f},
        {"getUVTile", 0.0, true, -9.0f},
        {"getUVGroups", 0.0, false, -9.0f},
        {"getUVs", 0.0, true, -9.0f},
        {"getUVsMask", 0.0, true, -9.0f},
        {"mergeCrease", 0.0, true, -9.0f},
        {"mergeMapsTIF", 0.0, true, -9.0f},
        {"mergeMapsPSD", 0.0, true, -9.0f},
        {"mergeMapsBMP", 0.0, true, -9.0f},
        {"swapRGBTIF", 1.0, false, -9.0f},
        {"swapRGBPSD", 1.0, false, -9.0f},
        {"swapRGBBMP", 1.0, false, -9.0f},
        {"convertTIFF16", 1.0, true, -9.0f},
        {"convertTIFFSingle", 0.0, true, -1.0f},  // unlike its neighbours
        {"getScale", 1.0, false, -9.0f},
        {"saveAsTarga", 0.0, true, -9.0f},
        {"saveAsJpeg", 50.0, true, -9.0f},
    };
    for (const auto& row : exports) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(callWith(row.name, false, row.value, false), row.status) << "both null";
        EXPECT_EQ(callWith(row.name, false, row.value, true), row.status) << "text null";
        if (!row.needsBuffer1) continue;
        EXPECT_EQ(callWith(row.name, true, row.value, false), row.status) << "buffer1 null";
    }
}

TEST_F(Refusals, AValueOutsideTheAcceptedOnesIsRefused) {
    const struct {
        std::vector<const char*> names;
        std::vector<double> refused;
    } rules[] = {
        // Strictly between 0 and 4.
        {{"swapRGBTIF", "swapRGBPSD", "swapRGBBMP"},
         {0.0, -0.0, below(0.0), 4.0, above(4.0), -1.0, 5.0, 1e300, -1e300, kInf, -kInf, kNan}},
        // Exactly 1 or 3.
        {{"getScale"},
         {0.0, -0.0, below(1.0), above(1.0), 1.5, 2.0, below(3.0), above(3.0), 4.0, -1.0, -3.0,
          1e300, -1e300, kInf, -kInf, kNan}},
        // Exactly 1, 3 or 4.
        {{"convertTIFF16"},
         {0.0, -0.0, below(1.0), above(1.0), 1.5, 2.0, below(3.0), above(3.0), below(4.0),
          above(4.0), 5.0, -1.0, -4.0, 1e300, -1e300, kInf, -kInf, kNan}},
    };
    for (const auto& rule : rules) {
        for (const char* name : rule.names) {
            for (const double value : rule.refused)
                EXPECT_EQ(callWith(name, true, value, true), -9.0f) << name << ' ' << value;
        }
    }
}

TEST(UncheckedExports, NullEverywhereGivesAFailureOrChangesNothing) {
    const struct {
        const char* name;
        float status;
    } exports[] = {
        {"CreateFolder", -1.0f},      {"CheckFolder", -1.0f}, {"OpenFolder", -1.0f},
        {"GetFile", -1.0f},           {"CloseFolder", -1.0f}, {"EmptyFolder", -1.0f},
        {"GetPublicFolder", 0.0f},    {"getUVString", 0.0f},  {"clearUVString", 0.0f},
        {"clearUVtilesOutput", 0.0f},
    };
    const Plugin plugin;
    for (const auto& row : exports)
        EXPECT_EQ(plugin.call(row.name), row.status) << row.name;
    for (const char* name : {"CreateThumbnailBMP", "OpenEXR"})
        EXPECT_LT(plugin.call(name), 0.0f) << name;
}

TEST(UncheckedExports, AListingStaysWhereItIsWhenTheBlockIsNull) {
    const Plugin plugin;
    const TempDir dir;
    ASSERT_EQ(plugin.call("OpenFolder", {.text = dir.path().c_str()}), 0.0f);
    EXPECT_EQ(plugin.call("GetFile"), -1.0f);

    Block name;  // "." and "..": the whole of an empty folder
    EXPECT_EQ(plugin.call("GetFile", {.buffer1 = name}), 0.0f);
    EXPECT_EQ(plugin.call("GetFile", {.buffer1 = name}), 0.0f);
    EXPECT_EQ(plugin.call("GetFile", {.buffer1 = name}), -3.0f);
}

// The one error that reaches the host: without an extension nobody can tell which format is wanted.
TEST(ConvertTiff16, ThrowsForATargetWithoutADot) {
    const Plugin plugin;
    for (const double layout : {1.0, 3.0, 4.0}) {
        Block target("no-such-folder/out");
        EXPECT_THROW(plugin.call("convertTIFF16",
                                 {.text = "missing.tif", .value = layout, .buffer1 = target}),
                     std::out_of_range);
    }
}

TEST(ConvertTiff16, TakesAnyDotInTheTargetForAnExtension) {
    const Plugin plugin;
    for (const char* path : {"no-such-folder/out.psd", "no-such-folder/x/out.PSD",
                             "no-such-folder/out.", "no-such.folder/out", "no-such-folder/.p"}) {
        Block target(path);
        EXPECT_NO_THROW(
            plugin.call("convertTIFF16", {.text = "missing.tif", .value = 1.0, .buffer1 = target}))
            << path;
    }
}

TEST(ConvertTiff16, RefusesAValueBeforeItLooksAtTheTarget) {
    const Plugin plugin;
    Block target("no-such-folder/out");
    EXPECT_EQ(
        plugin.call("convertTIFF16", {.text = "missing.tif", .value = 2.0, .buffer1 = target}),
        -9.0f);
}

// A mesh of one triangle in tile column 0, row 0: the tile's name tells which naming mode an export
// took.
class NamingMode : public testing::Test {
protected:
    std::string nameFoundAt(double value) const {
        Block name;
        EXPECT_EQ(plugin.call("getUVTile", {.text = mesh.c_str(), .value = value, .buffer1 = name}),
                  1.0f);
        return name.text();
    }

    std::string nameAfterExport(const char* exportName, double value) const {
        Block out(dir.path("out.Vemo"));
        EXPECT_EQ(plugin.call(exportName, {.text = mesh.c_str(), .value = value, .buffer1 = out}),
                  1.0f);
        return nameAtPosition(0.0);
    }

    std::string nameAtPosition(double value) const {
        Block name;
        EXPECT_EQ(plugin.call("getUVString", {.value = value, .buffer1 = name}), 0.0f);
        return name.text();
    }

private:
    static void append(ByteList& bytes, std::initializer_list<std::uint32_t> words) {
        for (const std::uint32_t word : words) {
            bytes.resize(bytes.size() + 4);
            storeLe32(&bytes[bytes.size() - 4], word);
        }
    }

    static ByteList triangle() {
        ByteList bytes(32);  // the file's header
        append(bytes, {10001, 16 + 36, 3, 0});
        append(bytes, {0, 0, 0, 0, 0, 0, 0, 0, 0});  // three vertices at the origin
        append(bytes, {20001, 16 + 16, 1, 0});
        append(bytes, {0, 1, 2, 0xFFFFFFFF});
        append(bytes, {25001, 16 + 32, 1, 0});
        append(bytes, {0, 0, 0, 0, 0, 0, 0, 0});  // four corners at u 0, v 0
        append(bytes, {0, 0, 0, 0});              // the closing header
        return bytes;
    }

    const Plugin plugin;
    const TempDir dir;
    const std::string mesh = dir.write("mesh.Vemo", triangle());
};

TEST_F(NamingMode, IsTheValueTruncatedAndBroughtInto0To3) {
    const struct {
        double value;
        const char* name;
    } rows[] = {
        {0.0, "_u0_v0"},        {-0.0, "_u0_v0"},       {-0.5, "_u0_v0"}, {-2.0, "_u0_v0"},
        {-1e300, "_u0_v0"},     {-kInf, "_u0_v0"},      {kNan, "_u0_v0"}, {below(1.0), "_u0_v0"},
        {1.0, "_u1_v1"},        {below(2.0), "_u1_v1"}, {2.0, "1001"},    {2.9, "1001"},
        {below(3.0), "1001"},   {3.0, "u0v0"},          {3.5, "u0v0"},    {7.0, "u0v0"},
        {4294967296.0, "u0v0"},  // 2^32: 0 where only the low bits were kept
        {1e300, "u0v0"},        {kInf, "u0v0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(nameFoundAt(row.value), row.name) << "getUVTile " << row.value;
        EXPECT_EQ(nameAfterExport("getUVs", row.value), row.name) << "getUVs " << row.value;
        EXPECT_EQ(nameAfterExport("getUVsMask", row.value), row.name) << "getUVsMask " << row.value;
    }
}

TEST_F(NamingMode, PositionOfATileIsTheValueTruncated) {
    ASSERT_EQ(nameAfterExport("getUVs", 2.0), "1001");
    for (const double first : {0.0, -0.0, 0.9, -0.9, kNan})
        EXPECT_EQ(nameAtPosition(first), "1001") << first;
    for (const double beyond : {1.0, -1.0, 4294967296.0, 1e300, -1e300, kInf, -kInf})
        EXPECT_EQ(nameAtPosition(beyond), "untouched") << beyond;
}

}  // namespace
