// What the exports refuse before they do anything, and how they read the number.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Plugin.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

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
        float status;
        double value;  // one that the exports take
        bool needsBuffer1;
        std::vector<const char*> names;
    } rules[] = {
        {-1.0f, 0.0, false, {"CreateFolder", "CheckFolder", "OpenFolder", "EmptyFolder"}},
        {-1.0f, 0.0, false, {"FileDelete"}},
        {-1.0f, 0.0, true, {"FileCopyTo", "FileRename", "GetString", "convertTIFFSingle"}},
        {-1.0f, 8.0, false, {"CreateThumbnailBMP"}},
        {-3.0f, 0.0, false, {"OpenEXR"}},
        {-9.0f, 0.0, false, {"setUVtilesOutput", "getUVGroups"}},
        {-9.0f, 0.0, true, {"getUVTile", "getUVs", "getUVsMask", "mergeCrease", "saveAsTarga"}},
        {-9.0f, 0.0, true, {"mergeMapsTIF", "mergeMapsPSD", "mergeMapsBMP"}},
        {-9.0f, 1.0, false, {"swapRGBTIF", "swapRGBPSD", "swapRGBBMP", "getScale"}},
        {-9.0f, 1.0, true, {"convertTIFF16"}},
        {-9.0f, 50.0, true, {"saveAsJpeg"}},
    };
    for (const auto& rule : rules) {
        for (const char* name : rule.names) {
            SCOPED_TRACE(name);
            EXPECT_EQ(callWith(name, false, rule.value, false), rule.status) << "both null";
            EXPECT_EQ(callWith(name, false, rule.value, true), rule.status) << "text null";
            if (!rule.needsBuffer1) continue;
            EXPECT_EQ(callWith(name, true, rule.value, false), rule.status) << "buffer1 null";
        }
    }
}

TEST_F(Refusals, AValueThatIsNotAcceptedGivesMinus9) {
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

TEST(ExportsWithoutAPath, GiveAStatusWhenAllIsNull) {
    const Plugin plugin;
    for (const char* name : {"GetFile", "CloseFolder"})
        EXPECT_EQ(plugin.call(name), -1.0f) << name;
    for (const char* name :
         {"GetPublicFolder", "getUVString", "clearUVString", "clearUVtilesOutput"})
        EXPECT_EQ(plugin.call(name), 0.0f) << name;
}

class ConvertTiff16 : public testing::Test {
protected:
    float convertTo(const char* path, double layout) const {
        Block target(path);
        return plugin.call("convertTIFF16",
                           {.text = "missing.tif", .value = layout, .buffer1 = target});
    }

    const Plugin plugin;
};

// The one error that reaches the host: without an extension nobody can know which format is wanted.
TEST_F(ConvertTiff16, ThrowsForATargetWithoutADotUnlessTheValueIsRefused) {
    for (const double layout : {1.0, 3.0, 4.0})
        EXPECT_THROW(convertTo("no-such-folder/out", layout), std::out_of_range);
    EXPECT_EQ(convertTo("no-such-folder/out", 2.0), -9.0f);
}

TEST_F(ConvertTiff16, TakesAnyDotInTheTargetForAnExtension) {
    for (const char* path : {"no-such-folder/out.psd", "no-such-folder/x/out.PSD",
                             "no-such-folder/out.", "no-such.folder/out", "no-such-folder/.p"})
        EXPECT_EQ(convertTo(path, 1.0), -10.0f) << path;
}

// A mesh of one face in tile column 0, row 0: the tile's name shows which naming mode an export took.
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
    const Plugin plugin;
    const TempDir dir;
    const std::string mesh = dir.write("mesh.Vemo", VemoBuilder()
                                                        .vertices({{0, 0, 0}})
                                                        .faces({{0, 0, 0, -1}})
                                                        .flatFaceUvs({{0, 0}})
                                                        .closing()
                                                        .bytes());
};

TEST_F(NamingMode, IsTheValueTruncatedAndLimitedTo0To3) {
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
