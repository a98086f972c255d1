// A process that is killed in the middle of a call, at each of its system calls in turn.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <set>
#include <string_view>
#include <utility>

#include "exports/Exports.h"
#include "faults/FaultyStage.h"
#include "faults/Scenarios.h"
#include "faults/System.h"

namespace {

using enum SystemCall;

constexpr int kFinished = 17;  // exit status of a call that was not killed

// Scenarios after which a call cannot be made again although its export's calls can: their output is their
// input, or the tile paints the map's first pixel, from which a second call takes the background.
const std::set<std::string_view> kOnlyOnce = {"getUVsOverItself", "saveAsJpegOverItself",
                                              "mergeMapsPSDTile"};

class Killed : public testing::TestWithParam<Scenario> {
protected:
    // What the export's page says of it.
    const Interruption& interruption() const {
        return *findExport(GetParam().call.exportName)->interrupted;
    }

    Killed() {
        stage_.prepare(GetParam());
        before_ = stage_.entries();
        clean_ = stage_.play(GetParam());
        stage_.forget();
    }

    // Makes the call in a process that is killed at system call number `fault.position` of its kind.
    // False when it makes fewer.
    bool killAt(const Fault& fault) {
        stage_.prepare(GetParam());
        const pid_t child = ::fork();
        if (child == 0) {
            stage_.makeFaulty(GetParam().call, fault);
            ::_exit(kFinished);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), kFinished);
            return false;
        }
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
        return true;
    }

    void expectNothingElseChanged() const {
        Entries found = stage_.entries();
        Entries others = before_;
        for (const std::string& name : GetParam().written) {
            const bool isKept = before_.contains(name) && clean_.entries.contains(name) &&
                                !interruption().emptiesFirst;
            EXPECT_TRUE(found.contains(name) || !isKept) << name << " is gone";
            const ByteList before = bytesIn(before_, name);
            const ByteList whole = bytesIn(clean_.entries, name);
            EXPECT_TRUE(isMadeOf(found[name], before, whole)) << name;
            EXPECT_LE(found[name].size(), std::max(before.size(), whole.size())) << name;
            if (isKept) {
                EXPECT_GE(found[name].size(), std::min(before.size(), whole.size())) << name;
            }
            found.erase(name);
            others.erase(name);
        }
        EXPECT_TRUE(found == others) << "an entry that is only read has changed";
    }

    const ByteList& before(const std::string& name) const { return before_.at(name); }
    const ByteList& whole(const std::string& name) const { return clean_.entries.at(name); }
    ByteList found(const std::string& name) const { return stage_.entries().at(name); }

    // The files of the folder stay as the killed process left them.
    bool doesASecondCallComplete() {
        stage_.forget();
        for (const Call& call : GetParam().before)
            stage_.make(call);
        const Outcome again = stage_.outcome(GetParam(), stage_.make(GetParam().call));
        stage_.forget();
        return interruption().isOneStep ? again.entries == clean_.entries : again == clean_;
    }

private:
    static ByteList bytesIn(const Entries& entries, const std::string& name) {
        const auto found = entries.find(name);
        return found == entries.end() ? ByteList() : found->second;
    }

    FaultyStage stage_;
    Entries before_;
    Outcome clean_;
};

TEST_P(Killed, LeavesOtherFilesAloneAndASecondCallCompletes) {
    std::size_t kills = 0;
    std::size_t completed = 0;
    for (const SystemCall call : {kOpen, kRead, kWrite, kClose, kMakeFolder, kRemove, kRename}) {
        for (const Harm harm : {Harm::kKills, Harm::kMovesHalfAndKills}) {
            if (harm == Harm::kMovesHalfAndKills && call != kWrite) continue;
            for (Fault fault{call, harm}; killAt(fault); ++fault.position) {
                SCOPED_TRACE(describe(fault));
                expectNothingElseChanged();
                if (HasFailure()) return;
                ++kills;
                completed += doesASecondCallComplete() ? 1 : 0;
            }
        }
    }
    EXPECT_GT(kills, 0u);
    const bool canBeRepeated = interruption().canBeRepeated && !kOnlyOnce.contains(GetParam().name);
    EXPECT_EQ(completed == kills, canBeRepeated) << completed << " of " << kills;
}

class KilledMerge : public Killed {
protected:
    // The map's bytes, and of them the first of each of the three planes, taken out.
    static std::pair<ByteList, ByteList> parted(ByteList map) {
        constexpr std::size_t kPlaneBytes = 320 * 320;
        ByteList firstPixel;
        for (std::size_t place = map.size() - 3 * kPlaneBytes; place < map.size();
             place += kPlaneBytes)
            firstPixel.push_back(std::exchange(map[place], 0));
        return {map, firstPixel};
    }
};

TEST_P(KilledMerge, PaintsTheFirstPixelLast) {
    const auto [oldRest, oldPixel] = parted(before("all.map"));
    const auto [newRest, newPixel] = parted(whole("all.map"));
    EXPECT_THAT(oldPixel, testing::Each(7));
    EXPECT_THAT(newPixel, testing::Each(9));
    std::set<ByteList> pixels;
    for (Fault fault{kWrite, Harm::kKills}; killAt(fault); ++fault.position) {
        const auto [rest, pixel] = parted(found("all.map"));
        EXPECT_TRUE(pixel == oldPixel || rest == newRest) << describe(fault);
        pixels.insert(pixel);
    }
    EXPECT_EQ(pixels, (std::set<ByteList>{{7, 7, 7}, {9, 7, 7}, {9, 9, 7}}));
}

std::vector<Scenario> scenariosThatWrite() {
    std::vector<Scenario> writing;
    std::ranges::copy_if(scenarios(), std::back_inserter(writing),
                         [](const Scenario& scenario) { return !scenario.written.empty(); });
    return writing;
}

Scenario scenarioNamed(std::string_view name) {
    return *std::ranges::find(scenarios(), name, &Scenario::name);
}

TEST(Interrupted, IsSaidOfTheExportsThatWriteFilesAndOfNoOthers) {
    std::set<std::string_view> written;
    for (const Scenario& scenario : scenariosThatWrite())
        written.insert(scenario.call.exportName);
    for (const std::string& name : exportNames())
        EXPECT_EQ(findExport(name)->interrupted != nullptr, written.contains(name)) << name;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Killed, testing::ValuesIn(scenariosThatWrite()),
                         [](const auto& scenario) { return scenario.param.name; });

INSTANTIATE_TEST_SUITE_P(OfPsdMaps, KilledMerge, testing::Values(scenarioNamed("mergeMapsPSDTile")),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
