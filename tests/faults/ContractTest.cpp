// Whether host/exports is right: every cause of a status is produced for every export, and the
// status that it returns must be in its table, in a row of that cause. Conversely, each cause of
// each row must have led to its status.

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "exports/Exports.h"
#include "exports/Groups.h"
#include "exports/Meanings.h"
#include "faults/FaultyStage.h"
#include "faults/Refusals.h"
#include "faults/Scenarios.h"
#include "faults/System.h"

namespace {

using testing::IsEmpty;
using enum SystemCall;

using Lines = std::vector<std::string>;

// A cause by its name, and the words of which a sentence that names it has one.
struct NamedCause {
    Causes one;
    const char* name;
    Lines words;
};

const std::vector<NamedCause> kCauses = {
    {cause::kDone, "kDone", {}},
    {cause::kNullArgument, "kNullArgument", {}},  // named by the tool
    {cause::kValueRefused, "kValueRefused", {}},
    {cause::kPathRefused, "kPathRefused", {"512 bytes", "itself"}},
    {cause::kSourceNotOpened, "kSourceNotOpened", {"opened", "there is none", "no such"}},
    {cause::kSourceNotWritable, "kSourceNotWritable", {"written", "allowed"}},
    {cause::kTargetNotOpened, "kTargetNotOpened", {"opened"}},
    {cause::kTargetNotWritten, "kTargetNotWritten", {"written", "created", "allowed"}},
    {cause::kDiskFull, "kDiskFull", {"the disk is full"}},
    {cause::kReadFailed, "kReadFailed", {"read"}},
    {cause::kFileRefused, "kFileRefused", {}},
    {cause::kNoMemory, "kNoMemory", {"too little memory"}},
    {cause::kNothingOpen, "kNothingOpen", {"no folder is open", "no entry is left"}},
};

const char* nameOf(Causes one) {
    return std::ranges::find_if(kCauses,
                                [&](const NamedCause& named) { return named.one.contain(one); })
        ->name;
}

// Produces every cause for one export and notes what its table lacks.
class Trials {
public:
    explicit Trials(const Export& entry) : entry_(entry) {
        for (const Scenario& scenario : scenarios()) {
            if (scenario.call.exportName != entry_.name) continue;
            scenario_ = &scenario;
            clean_ = outcomeOf(scenario.call);
            expectDone();
            passNulls();
            passValues();
            takeSourceAway();
            takeTargetAway();
            passPaths();
            failSystem();
        }
        refuseFiles();
    }

    // Statuses that are not in the table, or not for their cause.
    Lines untrue() const {
        Lines lines;
        for (const auto& [what, first] : untrue_)
            lines.push_back(what + first);
        return lines;
    }

    // Causes of rows that have not led there.
    Lines unreached() const {
        Lines lines;
        const auto look = [&](const StatusMeaning& row) {
            for (const NamedCause& named : kCauses) {
                if (row.causes.contain(named.one) && !reached_.contains({row.status, named.name}))
                    lines.push_back(statusText(row.status) + " by " + named.name);
            }
        };
        std::ranges::for_each(entry_.statuses, look);
        if (entry_.writesTiles) look(kTileNotWritten);
        return lines;
    }

private:
    void note(const std::string& how, float status, Causes one) {
        untrue_.try_emplace(statusText(status) + " by " + nameOf(one) + ", ", how);
    }

    // Checks that the table has a status under the cause that has led to it.
    void judge(const std::string& how, float status, Causes one) {
        const StatusMeaning* const row = rowOf(entry_, status);
        if (row == nullptr || !row->causes.contain(one)) return note(how, status, one);
        reached_.insert({row->status, nameOf(one)});
    }

    void expectDone() {
        const float status = clean_.result.status;
        EXPECT_EQ(status, scenario_->status);
        if (!isCount(entry_, status)) judge("done", status, cause::kDone);
    }

    Outcome outcomeOf(const Call& call) {
        stage_.prepare(*scenario_);
        const Result result = stage_.make(call);
        return {result, {}, stage_.entries()};
    }

    bool readsText() const { return entry_.text != nullptr; }
    bool readsBlock() const { return entry_.buffer != BufferUse::kNone; }
    bool isNamed(std::string_view name) const { return entry_.name == name; }
    bool readsSource() const {
        return readsText() && !isNamed("GetString") && !isNamed("CreateFolder");
    }
    bool hasTarget() const { return entry_.buffer == BufferUse::kPath; }
    bool merges() const { return entry_.name.starts_with("merge"); }

    void passNulls() {
        passNull("null text", false, true, readsText());
        passNull("null block", true, false, readsBlock());
        passNull("null text and block", false, false, readsText() || readsBlock());
    }

    void passNull(const char* how, bool hasText, bool hasBlock, bool matters) {
        const Call& call = scenario_->call;
        const std::string path = isNamed("GetString") ? call.text : stage_.path(call.text);
        std::string block = stage_.path(call.buffer1) + std::string(4096, '\0');
        stage_.prepare(*scenario_);
        const float status =
            stage_.makeBare(call.exportName, {.text = hasText ? path.c_str() : nullptr,
                                              .value = call.value,
                                              .buffer1 = hasBlock ? block.data() : nullptr});
        if (status == clean_.result.status && stage_.entries() == clean_.entries) return;
        EXPECT_TRUE(matters) << how << " made a difference";
        judge(how, status, cause::kNullArgument);
    }

    void passValues() {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        for (const double value :
             {-kInfinity, -1e30, -1.0, -0.5, 0.0, 0.5, 0.99, 1.0, 1.5, 2.0, 3.0, 3.9, 4.0, 4.5,
              10.5, 100.5, 1e30, kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
            Call call = scenario_->call;
            call.value = value;
            const std::string how = "value " + std::to_string(value);
            const float status = outcomeOf(call).result.status;
            const bool taken = entry_.takes == nullptr || entry_.takes(value);
            if (!taken) judge(how, status, cause::kValueRefused);
            // Beyond that it depends on the file whether a number is too large.
            if (std::abs(value) > 1000.0) continue;
            const StatusMeaning* const row = rowOf(entry_, status);
            if (taken && row != nullptr && row->causes.contain(cause::kValueRefused))
                note(how + " is said to be taken", status, cause::kFileRefused);
        }
    }

    void takeSourceAway() {
        const Call& call = scenario_->call;
        if (readsSource()) {
            Call missing = call;
            missing.text = "none/none.tif";
            make("missing source", cause::kSourceNotOpened, missing);
        }
        if (isNamed("GetFile") || isNamed("CloseFolder"))
            make("no folder open", cause::kNothingOpen, call, [&] { stage_.forget(); });
        if (isNamed("GetFile"))
            make("no entry left", cause::kNothingOpen, call, [&] { readToEnd(); });
    }

    void takeTargetAway() {
        if (isNamed("CreateFolder"))
            make("missing parent", cause::kTargetNotWritten, {"CreateFolder", "none/new"});
        if (!hasTarget()) return;
        Call missing = scenario_->call;
        missing.buffer1 = "none/" + missing.buffer1;
        make("missing target folder", merges() ? cause::kTargetNotOpened : cause::kTargetNotWritten,
             missing);
    }

    void passPaths() {
        Call call = scenario_->call;
        if (isNamed("saveAsJpeg")) {
            call.text = std::string(512, 'x');
            make("a long source", cause::kPathRefused, call);
        } else if (isNamed("saveAsTarga") || entry_.name.starts_with("convertTIFF")) {
            call.buffer1 = call.text;
            make("onto itself", cause::kPathRefused, call);
        }
    }

    void readToEnd() {
        while (stage_.make({"GetFile", ""}).status == 0.0f) {
        }
    }

    // Makes a call with one thing wrong; `spoil` is called once the files are there. A call with the
    // same outcome as if nothing had been wrong needs no row.
    void make(const char* how, Causes one, const Call& call,
              const std::function<void()>& spoil = nullptr) {
        stage_.prepare(*scenario_);
        if (spoil) spoil();
        const float status = stage_.make(call).status;
        if (status == clean_.result.status && stage_.entries() == clean_.entries) return;
        judge(how, status, one);
    }

    void failSystem() {
        for (const bool lasting : {false, true}) {
            inject({kWrite, Harm::kFails, ENOSPC, lasting}, cause::kDiskFull);
            inject({kWrite, Harm::kMovesHalf, ENOSPC, true}, cause::kDiskFull);
            inject({kMakeFolder, Harm::kFails, ENOSPC, lasting}, cause::kDiskFull);
            inject({kRead, Harm::kFails, EIO, lasting}, cause::kReadFailed);
            inject({kRead, Harm::kFindsTheEnd, 0, true}, cause::kReadFailed);
            inject({kReadFolder, Harm::kFails, EIO, lasting}, cause::kReadFailed);
            inject({kAllocate, Harm::kFails, ENOMEM, lasting}, cause::kNoMemory);
            inject({kOpenFolder, Harm::kFails, EMFILE, lasting}, cause::kSourceNotOpened);
            inject({kRemove, Harm::kFails, EACCES, lasting}, cause::kSourceNotWritable);
            inject({kRename, Harm::kFails, EXDEV, lasting}, cause::kTargetNotWritten);
        }
        inject({kOpen, Harm::kFails, EMFILE}, {});
        if (isNamed("GetPublicFolder"))
            inject({kStat, Harm::kFails, ENOENT}, cause::kSourceNotOpened);
    }

    // Makes the call with each call of the fault's kind going wrong in turn.
    void inject(const Fault& fault, std::optional<Causes> causes) {
        stage_.inject(*scenario_, fault, [&](const Fault& harm, const Result& result) {
            if (Outcome{result, {}, stage_.entries()} == clean_) return;
            judge(describe(harm), result.status, causes ? *causes : whyNotOpened(stage_.asked()));
        });
    }

    Causes whyNotOpened(const Asked& asked) const {
        const std::string& source = scenario_->call.text;
        const bool isSource = asked.path.data() == stage_.path(source);
        if (!asked.writes) return isSource ? cause::kSourceNotOpened : cause::kTargetNotOpened;
        // A source may also be one of the files that the call creates.
        const bool isTarget = !isSource || (hasTarget() && scenario_->written.contains(source));
        return isTarget ? cause::kTargetNotWritten : cause::kSourceNotWritable;
    }

    void refuseFiles() {
        for (const Scenario& scenario : refusedFiles()) {
            if (scenario.call.exportName != entry_.name) continue;
            scenario_ = &scenario;
            const float status = outcomeOf(scenario.call).result.status;
            EXPECT_EQ(status, scenario.status) << scenario.name;
            judge(scenario.name, status, cause::kFileRefused);
        }
    }

    const Export& entry_;
    FaultyStage stage_;
    const Scenario* scenario_ = nullptr;
    Outcome clean_;
    std::map<std::string, std::string> untrue_;
    std::set<std::pair<float, std::string>> reached_;
};

class Contract : public testing::TestWithParam<std::string> {
protected:
    const Export& entry() const { return *findExport(GetParam()); }
};

TEST_P(Contract, HasEachStatusUnderItsCauseAndNoCauseInVain) {
    const Trials trials(entry());
    EXPECT_THAT(trials.untrue(), IsEmpty());
    EXPECT_THAT(trials.unreached(), IsEmpty());
}

// A path without any dot.
TEST_P(Contract, NamesTheOneExceptionThatReachesAHost) {
    const auto scenario = std::ranges::find_if(
        scenarios(), [&](const Scenario& each) { return each.call.exportName == GetParam(); });
    ASSERT_NE(scenario, scenarios().end()) << "an export without a scenario";
    Stage stage;
    stage.prepare(*scenario);
    Call call = scenario->call;
    call.buffer1 = "target";
    if (entry().throws != nullptr)
        EXPECT_THROW(stage.make(call), std::out_of_range);
    else
        EXPECT_NO_THROW(stage.make(call));
}

TEST_P(Contract, HasOneRowForEachStatus) {
    std::set<float> statuses;
    for (const StatusMeaning& row : entry().statuses)
        EXPECT_TRUE(statuses.insert(row.status).second) << row.status;
}

TEST_P(Contract, NamesTheCausesInItsSentences) {
    for (const StatusMeaning& row : entry().statuses) {
        for (const NamedCause& named : kCauses) {
            if (!row.causes.contain(named.one) || named.words.empty()) continue;
            // What a success omits may be in the text about the output.
            const std::string sentence =
                row.isSuccess() ? row.sentence + std::string(entry().writes) : row.sentence;
            EXPECT_TRUE(std::ranges::any_of(named.words,
                                            [&](const std::string& words) {
                                                return sentence.find(words) != std::string::npos;
                                            }))
                << row.status << " does not name " << named.name << ": " << sentence;
        }
    }
}

// What the pages of the exports warn of.
TEST_P(Contract, AcceptsWhatItSaysAndChangesNoOtherFile) {
    Stage stage;
    for (const Scenario& scenario : acceptedFiles()) {
        if (scenario.call.exportName != GetParam()) continue;
        stage.prepare(scenario);
        const Entries before = stage.entries();
        EXPECT_EQ(stage.make(scenario.call).status, scenario.status) << scenario.name;
        std::set<std::string> written;
        for (const auto& [name, bytes] : stage.entries()) {
            const auto old = before.find(name);
            if (old == before.end() || old->second != bytes) written.insert(name);
        }
        EXPECT_EQ(written, scenario.written) << scenario.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Exports, Contract, testing::ValuesIn(exportNames()),
                         [](const auto& name) { return name.param; });

}  // namespace
