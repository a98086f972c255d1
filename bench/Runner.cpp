#include "Runner.h"

#include <time.h>

#include <algorithm>
#include <cmath>

#include "PreparedRace.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

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

Times timeOf(const Contender& contender) {
    const pid_t helper = contender.helper ? contender.helper() : 0;
    const Times before = now(helper);
    contender.work();
    const Times after = now(helper);
    return {after.cpu - before.cpu, after.wall - before.wall};
}

bool sameAnswer(float a, float b) {
    return std::abs(a - b) <= 1e-5f * std::abs(a);
}

void verify(const Race& race) {
    float answer = 0.0f;
    std::uint64_t digest = 0;
    for (const Contender& contender : race.contenders) {
        stopIfInterrupted();
        reset(race);
        const float ownAnswer = contender.work();
        if (race.contenders.size() == 1) return;
        const bool reference = &contender == &race.contenders.front();
        if (!reference && !contender.sameResult) continue;
        const std::uint64_t ownDigest = race.resultDigest();
        if (reference) {
            answer = ownAnswer;
            digest = ownDigest;
        } else if (!sameAnswer(answer, ownAnswer)) {
            throw Failure(contender.name + " answers " + std::to_string(ownAnswer) + ", quillon " +
                          std::to_string(answer));
        } else if (digest != ownDigest) {
            throw Failure(contender.name + " leaves other bytes than quillon");
        }
    }
}

}  // namespace

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1) return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

std::vector<Result> run(const Race& race, int rounds) {
    verify(race);
    const std::size_t count = race.contenders.size();
    std::vector<std::vector<Times>> times(count);
    for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round) {
        for (std::size_t turn = 0; turn < count; ++turn) {
            stopIfInterrupted();
            const std::size_t i = (round + turn) % count;
            reset(race);
            times[i].push_back(timeOf(race.contenders[i]));
        }
    }
    reset(race);

    std::vector<Result> results;
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<double> cpu;
        std::vector<double> wall;
        std::vector<double> ratios;
        for (std::size_t round = 0; round < times[i].size(); ++round) {
            cpu.push_back(times[i][round].cpu);
            wall.push_back(times[i][round].wall);
            ratios.push_back(times[0][round].cpu / times[i][round].cpu);
        }
        const Contender& contender = race.contenders[i];
        const double leastCpu = *std::min_element(cpu.begin(), cpu.end());
        results.push_back({contender.role, contender.name, contender.target, medianOf(cpu),
                           leastCpu, medianOf(wall), medianOf(ratios)});
    }
    return results;
}
