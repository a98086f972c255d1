#include "Job.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>

#include "terminal/Failure.h"

namespace {

Contender mover(Role role, const char* name, const std::function<void()>& move, double target) {
    const auto work = [move] {
        move();
        return 0.0f;
    };
    return {role, name, work, target, /*sameResult=*/false};
}

}  // namespace

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
    race.restore();
}

std::vector<Contender> quillonContenders(const Setup& setup,
                                         const std::function<Build::Call(const Build&)>& callOf) {
    const Build::Call call = callOf(setup.build);
    if (!call) throw Failure("the library, or the module beside it, lacks what is called");
    std::vector<Contender> contenders{{Role::kQuillon, "quillon", call}};
    const Build::Call before = setup.before != nullptr ? callOf(*setup.before) : Build::Call();
    if (before) contenders.push_back({Role::kBefore, "before", before});
    return contenders;
}

std::vector<Contender> quillonContenders(const Setup& setup, const std::string& name,
                                         const CallArguments& arguments) {
    return quillonContenders(setup,
                             [&](const Build& build) { return build.call(name, arguments); });
}

Contender limit(const std::function<void()>& move, double bytes, double target) {
    Contender contender = mover(Role::kLimit, "limit", move, target);
    contender.bytes = bytes;
    return contender;
}

Contender limit(const std::vector<Traffic>& traffic, double target) {
    double bytes = 0.0;
    for (const Traffic& part : traffic)
        bytes += static_cast<double>(part.bytes) * (part.access == Access::kRewrite ? 2 : 1);
    return limit([=] { moveBytes(traffic); }, bytes, target);
}

Contender sources(const std::vector<Traffic>& traffic, double target) {
    return mover(
        Role::kSources, "sources", [=] { moveBytes(traffic); }, target);
}
