#include "Runner.h"

#include <time.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "terminal/Failure.h"

namespace {

struct Times {
    double cpu;
    double wall;
};

double secondsOf(clockid_t clock) {
    timespec time{};
    if (::clock_gettime(clock, &time) != 0) throw Failure("cannot read a clock");
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

Times now(pid_t helper) {
    Times times{secondsOf(CLOCK_PROCESS_CPUTIME_ID), secondsOf(CLOCK_MONOTONIC)};
    clockid_t helpersClock{};
    if (helper != 0 && ::clock_getcpuclockid(helper, &helpersClock) == 0)
        times.cpu += secondsOf(helpersClock);
    return times;
}

Times timeOf(const Race& race, const Contender& contender) {
    const pid_t helper = contender.helper ? contender.helper() : 0;
    Times sum{};
    forEachStep(race, [&] {
        const Times before = now(helper);
        contender.work();
        const Times after = now(helper);
        sum.cpu += after.cpu - before.cpu;
        sum.wall += after.wall - before.wall;
    });
    return sum;
}

// What a contender returned and left in the job's files.
struct Outcome {
    float status;
    std::uint64_t digest;
};

void verify(const Race& race) {
    std::optional<Outcome> expected;  // quillon's, which comes first
    for (const Contender& contender : race.contenders) {
        float status = 0.0f;
        forEachStep(race, [&] { status = contender.work(); });
        if (!contender.sameResult) continue;
        const Outcome own{status, race.resultDigest()};
        if (own.status < 0.0f)
            throw Failure(contender.name + " fails with " + std::to_string(status));
        if (!expected) expected = own;
        if (!(std::abs(expected->status - status) <= 1e-5f * std::abs(expected->status)))
            throw Failure(contender.name + " returns " + std::to_string(status) + ", quillon " +
                          std::to_string(expected->status));
        if (expected->digest != own.digest)
            throw Failure(contender.name + " leaves other bytes than quillon");
    }
}

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

// Sums up the times of one contender and their ratios to those of quillon.
Result resultOf(const Contender& contender, const std::vector<Times>& times,
                const std::vector<Times>& quillonTimes) {
    std::vector<double> cpu;
    std::vector<double> wall;
    std::vector<double> ratios;
    for (std::size_t round = 0; round < times.size(); ++round) {
        cpu.push_back(times[round].cpu);
        wall.push_back(times[round].wall);
        ratios.push_back(quillonTimes[round].cpu / times[round].cpu);
    }
    return {contender.role,  contender.name,  contender.target,
            contender.bytes, medianOf(cpu),   *std::min_element(cpu.begin(), cpu.end()),
            medianOf(wall),  medianOf(ratios)};
}

}  // namespace

std::vector<Result> run(const Race& race, int rounds) {
    verify(race);
    const std::size_t count = race.contenders.size();
    std::vector<std::vector<Times>> times(count);
    for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round) {
        for (std::size_t turn = 0; turn < count; ++turn) {
            const std::size_t i = (round + turn) % count;
            times[i].push_back(timeOf(race, race.contenders[i]));
        }
    }
    reset(race);

    std::vector<Result> results;
    for (std::size_t i = 0; i < count; ++i)
        results.push_back(resultOf(race.contenders[i], times[i], times[0]));
    return results;
}
