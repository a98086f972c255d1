// Each scenario with each system call failing in turn.

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "faults/FaultyStage.h"
#include "faults/Scenarios.h"
#include "faults/System.h"
#include "support/Faults.h"
#include "support/VemoBuilder.h"

namespace {

using enum SystemCall;
using Statuses = std::set<float>;
using Calls = std::set<SystemCall>;

// What the host may get, and find, when a call of a kind fails. A status that means success is
// always allowed when the outcome is that of a call to which nothing happened.
struct Expectation {
    // The statuses of the first, second ... open of a file; the last is that of all further ones.
    std::vector<float> open = {};
    // Of the other calls. A stat that is not listed has those of the opens.
    std::map<SystemCall, Statuses> other = {};
    // Faults that are not reported: success although the outcome is another.
    Calls silent = {};
    // Faults after which entries that the export writes may hold part of what they should. After
    // any other every entry is as it was.
    Calls spoiling = {};
};

// Of each export that makes system calls that can fail.
const std::map<std::string_view, Expectation> kExpectations = {
    {"CreateFolder", {.other = {{kMakeFolder, {-1}}}}},
    {"GetPublicFolder", {.other = {{kStat, {0}}, {kAllocate, {0}}}}},
    {"CheckFolder", {.other = {{kOpenFolder, {-1}}, {kAllocate, {-1}}}}},
    {"OpenFolder", {.other = {{kOpenFolder, {-1}}, {kAllocate, {-1}}}}},
    {"GetFile", {.other = {{kReadFolder, {-3}}}}},
    {"EmptyFolder",
     {.other = {{kOpenFolder, {-1}}, {kAllocate, {-1}}},
      .silent = {kReadFolder, kRemove},
      .spoiling = {kReadFolder, kRemove, kAllocate}}},
    {"FileDelete", {.other = {{kRemove, {-1}}}}},
    // The old target is gone before anything else is tried.
    {"FileCopyTo",
     {.open = {-1},
      .other = {{kWrite, {-1}}},
      .silent = {kRead},
      .spoiling = {kOpen, kStat, kRead, kWrite}}},
    {"FileRename", {.other = {{kRename, {-1}}}}},
    {"setUVtilesOutput", {.open = {-1}, .other = {{kRead, {-1}}, {kAllocate, {-1, -9}}}}},
    {"getUVTile", {.open = {-17}, .other = {{kRead, {-17}}, {kAllocate, {-17, -9}}}}},
    {"getUVGroups", {.open = {-17}, .other = {{kRead, {-17}}, {kAllocate, {-17}}}}},
    {"getUVs",
     {.open = {-1760, 1501, 1502, 1503},
      .other = {{kStat, {-1760}},
                {kRead, {-1760}},
                {kWrite, {1501, 1502, 1503}},
                {kAllocate, {-1760, -9}}},
      .spoiling = {kOpen, kRead, kWrite, kAllocate}}},
    {"getUVsMask",
     {.open = {-1760, 1501, 1502, 1503},
      .other = {{kStat, {-1760}},
                {kRead, {-1760}},
                {kWrite, {1501, 1502, 1503}},
                {kAllocate, {-1760, -9}}},
      .spoiling = {kOpen, kWrite, kAllocate}}},
    {"mergeCrease",
     {.open = {-2760, -1760, -3760},
      .other = {{kStat, {-2760, -1760}}, {kRead, {-2760, -1760}}, {kAllocate, {-2760, -1760}}},
      .silent = {kWrite},
      .spoiling = {kWrite}}},
    {"mergeMapsTIF",
     {.open = {-10, -20, -101, -201},
      .other = {{kRead, {-10, -20, -201}}, {kWrite, {-201}}, {kAllocate, {-9}}},
      .spoiling = {kRead, kWrite}}},
    {"mergeMapsPSD",
     {.open = {-1, -1, -5},
      .other = {{kRead, {-1}}, {kAllocate, {-9}}},
      .silent = {kWrite},
      .spoiling = {kRead, kWrite}}},
    {"mergeMapsBMP",
     {.open = {-1760, -1770, -101, -201},
      .other = {{kRead, {-1760, -1770, -101}}, {kAllocate, {-9}}},
      .silent = {kRead, kWrite},
      .spoiling = {kRead, kWrite}}},
    {"swapRGBTIF",
     {.open = {-10, -101},
      .other = {{kRead, {-10, -101}}, {kWrite, {-101}}, {kAllocate, {-9}}},
      .spoiling = {kRead, kWrite}}},
    {"swapRGBPSD",
     {.open = {-1, -5},
      .other = {{kRead, {-1}}, {kAllocate, {-9}}},
      .silent = {kWrite},
      .spoiling = {kRead, kWrite}}},
    {"swapRGBBMP",
     {.open = {-1760, -101},
      .other = {{kRead, {-1760}}, {kAllocate, {-9}}},
      .silent = {kRead, kWrite},
      .spoiling = {kRead, kWrite}}},
    {"convertTIFF16",
     {.open = {-10, -101, -201},
      .other = {{kRead, {-10, -201}}, {kWrite, {-201}}, {kAllocate, {-9}}},
      .spoiling = {kRead, kWrite}}},
    {"convertTIFFSingle",
     {.open = {-10, -101, -201},
      .other = {{kRead, {-10, -201}}, {kWrite, {-201}}, {kAllocate, {-1}}},
      .spoiling = {kRead, kWrite}}},
    {"getScale", {.open = {-10, -101}, .other = {{kRead, {-10, -101}}, {kAllocate, {-9}}}}},
    // A source that can no longer be opened leaves the target with its header alone.
    {"saveAsTarga",
     {.open = {-10, -10, -5, -101},
      .other = {{kRead, {-10, -101}}, {kWrite, {-5}}, {kAllocate, {-9}}},
      .spoiling = {kOpen, kStat, kRead, kWrite}}},
    {"saveAsJpeg",
     {.open = {3, -1},
      .other = {{kStat, {3}}, {kRead, {4}}, {kWrite, {-1}}, {kAllocate, {6, -9}}},
      .silent = {kRead},
      .spoiling = {kRead, kWrite}}},
    {"CreateThumbnailBMP",
     {.open = {-1, -1, 0},
      .other = {{kRead, {-1, -7}}, {kAllocate, {-1, -9}}},
      .silent = {kOpen, kWrite},
      .spoiling = {kRead, kWrite}}},
    {"OpenEXR", {.open = {-7}, .other = {{kRead, {-7}}, {kAllocate, {-7, -4, -9}}}}},
};

// Faults that the host must not notice: the library calls again, or the result does not matter.
constexpr Fault kAbsorbed[] = {
    {kOpen, Harm::kFails, EINTR},        {kRead, Harm::kFails, EINTR},
    {kRead, Harm::kMovesHalf},           {kRead, Harm::kMovesHalf, 0, true},
    {kWrite, Harm::kFails, EINTR},       {kWrite, Harm::kMovesHalf},
    {kWrite, Harm::kMovesHalf, 0, true}, {kClose, Harm::kFails, EIO, true},
    {kClose, Harm::kFails, EINTR},       {kCloseFolder, Harm::kFails, EIO},
};

constexpr Fault kFailures[] = {
    {kOpen, Harm::kFails, EACCES},
    {kOpen, Harm::kFails, EMFILE, true},
    {kStat, Harm::kFails, EIO},
    {kStat, Harm::kFails, EIO, true},
    {kRead, Harm::kFails, EIO},
    {kRead, Harm::kFails, EIO, true},
    {kRead, Harm::kFindsTheEnd, 0, true},
    {kWrite, Harm::kFails, EIO},
    {kWrite, Harm::kFails, ENOSPC, true},
    {kWrite, Harm::kMovesHalf, ENOSPC, true},
    {kOpenFolder, Harm::kFails, EMFILE},
    {kReadFolder, Harm::kFails, EIO},
    {kReadFolder, Harm::kFails, EIO, true},
    {kMakeFolder, Harm::kFails, ENOSPC},
    {kRemove, Harm::kFails, EACCES},
    {kRemove, Harm::kFails, EACCES, true},
    {kRename, Harm::kFails, EXDEV},
    {kAllocate, Harm::kFails, ENOMEM},
    {kAllocate, Harm::kFails, ENOMEM, true},
};

class Faults : public testing::TestWithParam<Scenario> {
protected:
    Faults() : before_(entriesBefore()), clean_(runClean()) {
        runClean();  // what the library keeps for good, it has by now
        blocks_ = stage_.blocks();
        bytes_ = stage_.bytes();
        openFiles_ = openFiles();
    }

    template <typename Judge>
    std::size_t inject(const Fault& fault, Judge judge) {
        return stage_.inject(scenario(), fault, [&](const Fault& harm, const Result& result) {
            judge(harm, stage_.outcome(scenario(), result));
            expectNothingLeft();
        });
    }

    void expectReported(const Fault& fault, const Outcome& outcome) const {
        if (outcome == clean_) return;
        const bool silent = expectation().silent.contains(fault.call);
        const float status = outcome.result.status;
        if (!silent || status != scenario().status) {
            EXPECT_THAT(statusesFor(fault), testing::Contains(status));
        }
        EXPECT_THAT(outcome.result.block, testing::AnyOf(blockBefore(), clean_.result.block));
        if (expectation().spoiling.contains(fault.call))
            expectOthersAsBefore(fault, outcome.entries);
        else
            EXPECT_TRUE(outcome.entries == before_) << "an entry has changed, status " << status;
    }

    const Scenario& scenario() const { return GetParam(); }

    const Expectation& expectation() const { return kExpectations.at(scenario().call.exportName); }

    FaultyStage stage_;
    const Entries before_;
    const Outcome clean_;

private:
    Statuses statusesFor(const Fault& fault) const {
        const auto& [open, other, silent, spoiling] = expectation();
        if (fault.call == kOpen) return {open.at(std::min(fault.position, open.size()) - 1)};
        const auto found = other.find(fault.call);
        if (found != other.end()) return found->second;
        return fault.call == kStat ? Statuses(open.begin(), open.end()) : Statuses{};
    }

    std::string blockBefore() const {
        const std::string& buffer1 = scenario().call.buffer1;
        return buffer1.empty() ? "untouched" : stage_.path(buffer1);
    }

    // Entries that the export only reads are as they were; one that it writes holds nothing but
    // bytes of before and after, as far as these can be distinguished.
    void expectOthersAsBefore(const Fault& fault, Entries found) const {
        const std::string_view name = scenario().call.exportName;
        // A copy removes the target first, a UV export each tile's file that the disk cannot take.
        const bool removes = name == "FileCopyTo" || name == "getUVs" || name == "getUVsMask";
        const bool codesWhatItHas =
            fault.call == kRead && (name == "saveAsJpeg" || name == "saveAsTarga");
        Entries others = before_;
        for (const std::string& written : scenario().written) {
            const ByteList& before = others[written];
            const auto whole = clean_.entries.find(written);
            const auto now = found.find(written);
            if (now == found.end()) {
                EXPECT_TRUE(removes || !before_.contains(written) || whole == clean_.entries.end())
                    << written << " is gone";
            } else if (!codesWhatItHas) {
                const ByteList& after = whole == clean_.entries.end() ? before : whole->second;
                EXPECT_TRUE(isMadeOf(now->second, before, after)) << written << " has other bytes";
            }
            others.erase(written);
            found.erase(written);
        }
        EXPECT_TRUE(found == others) << "an entry that is only read has changed";
    }

    Outcome runClean() {
        const Outcome outcome = stage_.play(scenario());
        stage_.forget();
        return outcome;
    }

    Entries entriesBefore() {
        stage_.prepare(scenario());
        return stage_.entries();
    }

    // Nothing of the fault remains: no file is open, no memory is taken, and the next call works.
    void expectNothingLeft() {
        stage_.forget();
        EXPECT_EQ(openFiles(), openFiles_);
        EXPECT_TRUE(runClean() == clean_) << "the next call does not work";
        EXPECT_EQ(stage_.blocks(), blocks_) << "memory is lost";
        EXPECT_TRUE(isTheSameHeap(stage_.bytes(), bytes_, blocks_)) << stage_.bytes();
    }

    std::ptrdiff_t blocks_ = 0;
    std::ptrdiff_t bytes_ = 0;
    std::ptrdiff_t openFiles_ = 0;
};

TEST_P(Faults, AbsentGiveTheSameOutcomeEachTime) {
    EXPECT_EQ(clean_.result.status, scenario().status);
    EXPECT_EQ(clean_.entries != before_, !scenario().written.empty());
}

TEST_P(Faults, ThatDoNotMatterAreAbsorbed) {
    for (const Fault& fault : kAbsorbed) {
        inject(fault, [&](const Fault&, const Outcome& outcome) {
            EXPECT_TRUE(outcome == clean_) << "status " << outcome.result.status;
        });
    }
}

TEST_P(Faults, ThatMatterAreReportedAndHarmNothing) {
    std::size_t injected = 0;
    for (const Fault& fault : kFailures) {
        injected += inject(fault, [&](const Fault& harm, const Outcome& outcome) {
            expectReported(harm, outcome);
        });
    }
    EXPECT_EQ(injected > 0, kExpectations.contains(scenario().call.exportName))
        << "the table of expectations is wrong";
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Faults, testing::ValuesIn(scenarios()),
                         [](const auto& scenario) { return scenario.param.name; });

// The face UVs are 8 MiB, 32 pieces; the rest takes fewer reads than as many.
TEST(UVExportOfOneTile, ReadsTheUvsOnce) {
    FaultyStage stage;
    const std::vector<std::array<float, 2>> uvs(262144, {0.5f, 0.25f});
    const Call write = {"getUVs", "mesh.vws", 2.0, "tile.tif"};
    stage.prepare({"", write, 1.0f, {{"mesh.vws", VemoBuilder().flatFaceUvs(uvs).bytes()}}});
    EXPECT_EQ(stage.make(write).status, 1.0f);
    EXPECT_GE(stage.asked().of(kRead), 32u);
    EXPECT_LT(stage.asked().of(kRead), 64u);
}

// Half a filter would drop tiles from every later export without any error.
TEST(FaultyTileFilter, IsNotKept) {
    FaultyStage stage;
    const Scenario set = {
        "set",
        {"setUVtilesOutput", "tiles.txt"},
        0.0f,
        {{"tiles.txt", bytesOf("1001,1002-1003")},
         {"mesh.vws", VemoBuilder().flatFaceUvs({{0, 0}, {1, 0}, {2, 0}, {3, 0}}).bytes()}}};
    const Call count = {"getUVTile", "mesh.vws", 2.0};
    const Fault fault = {kAllocate, Harm::kFails, ENOMEM};
    const auto injected = stage.inject(set, fault, [&](const Fault&, const Result& result) {
        EXPECT_LE(result.status, 0.0f);  // a sanitizer's own allocations may fail without harm
        EXPECT_EQ(stage.make(count).status, result.status == 0.0f ? 3.0f : 4.0f);
    });
    EXPECT_GE(injected, 3u);
    EXPECT_EQ(stage.make(count).status, 3.0f);
}

}  // namespace
