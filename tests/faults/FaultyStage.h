#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "faults/Scenarios.h"
#include "faults/System.h"
#include "support/CaptureStdout.h"

// Every byte of `found` is at its offset in one of the two, or is 0 as if never written.
inline bool isMadeOf(const ByteList& found, const ByteList& before, const ByteList& whole) {
    if (found.size() > std::max(before.size(), whole.size())) return false;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const bool known = found[i] == 0 || (i < before.size() && found[i] == before[i]) ||
                           (i < whole.size() && found[i] == whole[i]);
        if (!known) return false;
    }
    return true;
}

// A stage on which system calls can be made to fail, and which counts what the heap holds.
class FaultyStage : public Stage {
public:
    // Makes the scenario's call with each system call of the fault's kind failing in turn, until it
    // makes no more of them, and passes each result to `judge`. Returns how many failed.
    template <typename Judge>
    std::size_t inject(const Scenario& scenario, Fault fault, Judge judge) {
        for (fault.position = 1;; ++fault.position) {
            SCOPED_TRACE(describe(fault));
            prepare(scenario);
            const Result result = makeFaulty(scenario.call, fault);
            if (!asked_.harmed) return fault.position - 1;
            judge(fault, result);
            if (testing::Test::HasFailure()) return fault.position;
        }
    }

    // Makes a call with one fault.
    Result makeFaulty(const Call& call, const Fault& fault) {
        fault_ = fault;
        return make(call);
    }

    // The system calls of the last call.
    const Asked& asked() const { return asked_; }

    // Allocated by all calls so far and not freed.
    std::ptrdiff_t blocks() const { return blocks_; }
    std::ptrdiff_t bytes() const { return bytes_; }

    // A call with just these arguments, among them null pointers.
    float makeBare(const char* exportName, const Arguments& arguments) {
        return invoke(exportName, arguments);
    }

protected:
    float invoke(const char* exportName, const Arguments& arguments) override {
        const CaptureStdout quiet;  // some exports print their failures
        Watch watch(std::exchange(fault_, {}));
        const float status = Stage::invoke(exportName, arguments);
        asked_ = watch.end();
        blocks_ += asked_.blocks;
        bytes_ += asked_.bytes;
        return status;
    }

private:
    std::optional<Fault> fault_;
    Asked asked_;
    std::ptrdiff_t blocks_ = 0;
    std::ptrdiff_t bytes_ = 0;
};
