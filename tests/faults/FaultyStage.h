#pragma once

#include <cstddef>
#include <optional>
#include <utility>

#include "faults/Scenarios.h"
#include "faults/System.h"
#include "support/CaptureStdout.h"

// A stage on which one call can be made to go wrong, and which keeps count of the heap.
class FaultyStage : public Stage {
public:
    void harmNextCall(const Fault& fault) { fault_ = fault; }
    const Asked& asked() const { return asked_; }

    // Taken from the heap by all calls so far and not given back.
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
