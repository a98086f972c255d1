#include "Job.h"

#include <utility>

namespace {

std::function<float()> callOf(const Library& library, const ExportCall& call) {
    const CallArguments arguments{
        call.text, call.value,
        call.buffer.empty() ? std::nullopt : std::optional<std::string>(call.buffer)};
    return [&library, name = std::string(call.name), arguments] {
        return library.call(name, arguments).result.status;
    };
}

}  // namespace

std::vector<Contender> exportContenders(const Setup& setup, const ExportCall& call) {
    std::vector<Contender> contenders{{Role::kQuillon, "quillon", callOf(setup.library, call)}};
    if (setup.before != nullptr)
        contenders.push_back({Role::kBefore, "before", callOf(*setup.before, call)});
    return contenders;
}

Contender limit(std::vector<Traffic> traffic, double target) {
    const auto move = [traffic = std::move(traffic)] {
        moveBytes(traffic);
        return 0.0f;
    };
    return {
        .role = Role::kLimit, .name = "limit", .work = move, .target = target, .sameResult = false};
}

std::vector<Job> allJobs() {
    std::vector<Job> all;
    for (const auto& family : {tiffJobs, psdJobs, bmpJobs, encoderJobs, meshJobs}) {
        for (Job& job : family())
            all.push_back(std::move(job));
    }
    return all;
}
