#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "exports/Exports.h"
#include "host/Quillon.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

json reference() {
    return json::parse(quillon({"reference", "--json"}).out);
}

json entryOf(const std::string& name) {
    const json whole = reference();
    for (const json& group : whole.at("groups")) {
        for (const json& entry : group.at("exports")) {
            if (entry.at("name") == name) return entry;
        }
    }
    return {};
}

bool takes(const Export& entry, int number) {
    return entry.takes == nullptr || entry.takes(number);
}

// The page as Markdown is compared with docs/exports.md.
TEST(Reference, AsJsonHasEveryExportInItsGroup) {
    const json whole = reference();
    EXPECT_EQ(whole.at("version"), json({{"format", 1}, {"interface", 48}}));
    std::vector<std::string> names;
    for (const json& group : whole.at("groups")) {
        for (const json& entry : group.at("exports"))
            names.push_back(entry.at("name"));
    }
    EXPECT_EQ(names, exportNames());
    EXPECT_EQ(whole.at("groups").at(3).at("title"), "PSD maps");
}

TEST(Reference, AsJsonHasArgumentsWithTheirRoles) {
    const json arguments = entryOf("getUVTile").at("arguments");
    EXPECT_EQ(
        arguments.at(0),
        json({{"position", "text"}, {"name", "mesh"}, {"role", "file"}, {"meaning", "mesh"}}));
    EXPECT_EQ(arguments.at(1).at("least"), 0);
    EXPECT_EQ(arguments.at(1).at("most"), 3);
    EXPECT_EQ(arguments.at(1).at("others"), "clamped");
    EXPECT_EQ(arguments.at(2).at("role"), "output");
    EXPECT_EQ(entryOf("CheckFolder").at("arguments").at(0).at("role"), "folder");
    EXPECT_EQ(entryOf("FileDelete").at("arguments").at(0).at("role"), "path");
    EXPECT_EQ(entryOf("GetString").at("arguments").at(0).at("role"), "text");
    EXPECT_EQ(entryOf("GetString").at("arguments").at(1).at("replacement"), 5);
    EXPECT_EQ(entryOf("convertTIFF16").at("arguments").at(1).at("choices"), json({1, 3, 4}));
    EXPECT_EQ(entryOf("Version").at("arguments"), json::array());
}

TEST(Reference, AsJsonHasStatusesWithTheirCauses) {
    const json entry = entryOf("getUVs");
    EXPECT_EQ(entry.at("statuses").at(1),
              json({{"status", -18.0},
                    {"success", false},
                    {"causes", {"fileRefused"}},
                    {"sentence", "the mesh file has no face UVs, or they are cut short"}}));
    EXPECT_EQ(entry.at("statuses").back().at("firstStatus"), 1501.0);
    EXPECT_EQ(entry.at("count"),
              json({{"one", "tile was written"}, {"many", "tiles were written"}, {"whole", true}}));
    EXPECT_EQ(entryOf("getScale").at("count").at("whole"), false);
    EXPECT_THAT(std::string(entryOf("convertTIFF16").at("throws")), HasSubstr("no dot"));
}

TEST(Reference, NumbersAsDataAreThoseThatAreTaken) {
    for (const std::string& name : exportNames()) {
        const Export& entry = requireExport(name);
        EXPECT_EQ(entry.numbers.has_value(), entry.value != nullptr) << name;
        if (!entry.numbers) continue;
        const Numbers& numbers = *entry.numbers;
        EXPECT_EQ(std::string(numbers.others) == "refused", entry.takes != nullptr) << name;
        for (const int choice : numbers.choices)
            EXPECT_TRUE(takes(entry, choice)) << name << ' ' << choice;
        if (!numbers.choices.empty()) continue;
        EXPECT_TRUE(takes(entry, numbers.least)) << name;
        EXPECT_NE(takes(entry, numbers.least - 1), entry.takes != nullptr) << name;
        if (!numbers.most) continue;
        EXPECT_TRUE(takes(entry, *numbers.most)) << name;
        EXPECT_NE(takes(entry, *numbers.most + 1), entry.takes != nullptr) << name;
    }
}

TEST(Reference, IsOneFormAtATime) {
    EXPECT_EQ(quillon({"reference", "--json", "--python"}).exitStatus, 2);
}

}  // namespace
