// A file that somebody else changes while a call reads it: just before each opening and each read of the
// call in turn, each of its files gets other bytes, more, fewer, or is replaced or removed.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "exports/Exports.h"
#include "faults/FaultyStage.h"
#include "faults/Scenarios.h"
#include "faults/System.h"
#include "support/Append.h"
#include "support/Faults.h"

namespace {

namespace fs = std::filesystem;
using enum SystemCall;

// What a file can be changed into.
struct Contents {
    std::string name;
    ByteList bytes;
};

std::vector<Contents> changesOf(const ByteList& bytes) {
    ByteList twice = bytes;
    append(twice, bytes);
    ByteList otherEnd = bytes;  // large indices, coordinates in far tiles
    std::fill(otherEnd.begin() + std::ssize(bytes) / 2, otherEnd.end(), 0x43);
    return {
        {"empty", {}},
        {"half", firstBytes(bytes, bytes.size() / 2)},
        {"a byte shorter", firstBytes(bytes, bytes.empty() ? 0 : bytes.size() - 1)},
        {"twice", twice},
        {"zeros", ByteList(bytes.size(), 0)},
        {"ones", ByteList(bytes.size(), 0xFF)},
        {"another from its middle on", otherEnd},
    };
}

// The same file: whoever has it open finds the new bytes.
void writeOver(const std::string& path, const ByteList& bytes) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    if (!file) return;  // removed by the call
    file.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    file.close();
    fs::resize_file(path, bytes.size());
}

// Another file of that name: whoever has the old one open finds the old bytes.
void replace(const std::string& path, const ByteList& bytes) {
    const std::string other = path + ".new";
    std::ofstream(other, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    fs::rename(other, path);
}

using Write = void(const std::string& path, const ByteList& bytes);

class Changing : public testing::TestWithParam<Scenario> {
protected:
    // A wait or a loop without an end ends the test.
    void SetUp() override {
        ::alarm(120);
        clean_ = playClean();
        playClean();  // what the library keeps for good, it has by now
        blocks_ = stage_.blocks();
        bytes_ = stage_.bytes();
        openFiles_ = openFiles();
    }
    void TearDown() override { ::alarm(0); }

    const Scenario& scenario() const { return GetParam(); }

    // Makes the call with some of its files getting other bytes before each opening and each read in
    // turn.
    void changeTo(const Entries& files, Write* write) {
        inject([&] { apply(files, write); });
    }

    // The same before that one and all further ones, now these bytes, now those.
    void alternate(const Entries& some, const Entries& others, Write* write) {
        std::size_t changes = 0;
        inject([&] { apply(changes++ % 2 == 0 ? some : others, write); }, true);
    }

    void remove(const std::string& name) {
        inject([&] {
            fs::remove(stage_.path(name));
            now_.erase(name);
        });
    }

    FaultyStage stage_;
    Outcome clean_;

private:
    void apply(const Entries& files, Write* write) {
        for (const auto& [name, bytes] : files) {
            write(stage_.path(name), bytes);
            now_[name] = bytes;
        }
    }

    void inject(const std::function<void()>& meanwhile, bool lasting = false) {
        now_ = scenario().files;
        for (const SystemCall call : {kOpen, kRead}) {
            Fault fault{call, Harm::kMeanwhile, 0, lasting};
            fault.meanwhile = &meanwhile;
            stage_.inject(scenario(), fault, [&](const Fault&, const Result& result) {
                expectDocumented(result.status);
                EXPECT_TRUE(othersOf(stage_.entries()) == othersOf(now_))
                    << "an entry that is only read has changed";
                stage_.forget();
                EXPECT_EQ(openFiles(), openFiles_);
                now_ = scenario().files;
            });
        }
        expectNothingHeld();
    }

    void expectDocumented(float status) const {
        const Export& entry = *findExport(scenario().call.exportName);
        EXPECT_TRUE(isCount(entry, status) || rowOf(entry, status) != nullptr) << status;
    }

    // Those that the export does not write. A mesh with other UVs has other tiles.
    Entries othersOf(Entries entries) const {
        const bool writesTiles = findExport(scenario().call.exportName)->writesTiles;
        std::erase_if(entries, [&](const auto& entry) {
            const std::string& name = entry.first;
            return name.ends_with('/') || scenario().written.contains(name) ||
                   (writesTiles && name.starts_with("tile") && name.ends_with(".Vemo"));
        });
        return entries;
    }

    void expectNothingHeld() {
        EXPECT_TRUE(playClean() == clean_) << "the next call does not work";
        EXPECT_EQ(stage_.blocks(), blocks_) << "memory is lost";
        EXPECT_TRUE(isTheSameHeap(stage_.bytes(), bytes_, blocks_)) << stage_.bytes();
    }

    Outcome playClean() {
        const Outcome outcome = stage_.play(scenario());
        stage_.forget();
        return outcome;
    }

    Entries now_;  // the scenario's files as they have been changed
    std::ptrdiff_t blocks_ = 0;
    std::ptrdiff_t bytes_ = 0;
    std::ptrdiff_t openFiles_ = 0;
};

TEST_P(Changing, FilesAreReadCalmlyAndNotChangedByTheCall) {
    for (const auto& [name, bytes] : scenario().files) {
        for (const auto& [becomes, changed] : changesOf(bytes)) {
            SCOPED_TRACE(name + " becomes " + becomes);
            changeTo({{name, changed}}, writeOver);
            changeTo({{name, changed}}, replace);
        }
        SCOPED_TRACE(name + " is removed");
        remove(name);
    }
}

// A copy alone reads on until its source ends.
TEST_P(Changing, AFileThatGrowsAtEachReadIsNotReadForEver) {
    stage_.prepare(scenario());
    stage_.make(scenario().call);
    const std::size_t usual = stage_.asked().of(kRead);
    if (usual == 0) return;

    std::size_t growths = 0;
    const std::function<void()> grow = [&] {
        if (++growths > 100) return;
        for (const auto& [name, bytes] : scenario().files)
            std::ofstream(stage_.path(name), std::ios::app) << std::string(5000, 'g');
    };
    Fault fault{kRead, Harm::kMeanwhile, 0, true};
    fault.meanwhile = &grow;
    stage_.prepare(scenario());
    stage_.makeFaulty(scenario().call, fault);
    const bool copies = scenario().call.exportName == std::string_view("FileCopyTo");
    EXPECT_LE(stage_.asked().of(kRead), usual + (copies ? 130 : 2));
    stage_.forget();
}

// All but a thumbnail that reads 319 rows one by one, of which the small one has twenty.
std::vector<Scenario> scenariosOfFewReads() {
    std::vector<Scenario> few = scenarios();
    std::erase_if(few, [](const auto& each) { return each.name == "CreateThumbnailBMPLarge"; });
    return few;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Changing, testing::ValuesIn(scenariosOfFewReads()),
                         [](const auto& scenario) { return scenario.param.name; });

// Maps and meshes of another size than the one that the call has seen so far, whole and cut to the
// length of the one before.
using ChangingSize = Changing;

TEST_P(ChangingSize, IsNoHarmToAnyOtherFile) {
    for (const std::uint32_t side : {4u, 61u}) {
        SCOPED_TRACE(side);
        const std::vector<Scenario> others = scenariosOfSize(side);
        const Entries whole = std::ranges::find(others, scenario().name, &Scenario::name)->files;
        Entries cut;
        for (const auto& [name, bytes] : whole) {
            cut[name] = firstBytes(bytes, scenario().files.at(name).size());
            changeTo({{name, bytes}}, writeOver);
            changeTo({{name, bytes}}, replace);
        }
        changeTo(cut, writeOver);
        for (Write* const write : {writeOver, replace}) {
            changeTo(whole, write);
            alternate(whole, scenario().files, write);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ChangingSize, testing::ValuesIn(scenariosOfSize(20)),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
