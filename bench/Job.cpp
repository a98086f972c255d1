#include "Job.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "terminal/Failure.h"

PreparedRace::PreparedRace(const std::string& parent) : folder_(parent + "/quillon_bench.XXXXXX") {
    if (::mkdtemp(folder_.data()) == nullptr) throw Failure("cannot make a folder in " + parent);
}

// From here on the destructor runs, even if the job's files cannot be made.
PreparedRace::PreparedRace(const Job& job, Setup setup) : PreparedRace(setup.folder) {
    setup.folder = folder_;
    race_ = job.prepare(setup);
    if (!race_.rewritten.empty()) OpenFile(race_.rewritten, Access::kCreate);
}

PreparedRace::~PreparedRace() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void reset(const Race& race) {
    if (!race.rewritten.empty()) copyInPlace(race.original, race.rewritten);
    for (const std::string& path : race.created)
        ::unlink(path.c_str());
}

std::vector<Contender> exportContenders(const Setup& setup, const std::string& exportName,
                                        const CallArguments& arguments) {
    const auto callOf = [&](const Library* library) {
        return [=] { return library->call(exportName, arguments).result.status; };
    };
    std::vector<Contender> contenders{{Role::kQuillon, "quillon", callOf(&setup.library)}};
    if (setup.before != nullptr)
        contenders.push_back({Role::kBefore, "before", callOf(setup.before)});
    return contenders;
}

Contender mover(Role role, const std::function<void()>& move, double target) {
    const auto work = [move] {
        move();
        return 0.0f;
    };
    const char* const name = role == Role::kLimit ? "limit" : "sources";
    return {role, name, work, target, /*sameResult=*/false};
}
