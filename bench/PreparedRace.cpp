#include "PreparedRace.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "Files.h"
#include "terminal/Failure.h"

namespace fs = std::filesystem;

PreparedRace::Folder::Folder(const std::string& parent) : path(parent + "/quillon_bench.XXXXXX") {
    if (::mkdtemp(path.data()) == nullptr) throw Failure("cannot make a folder in " + parent);
}

PreparedRace::Folder::~Folder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

PreparedRace::PreparedRace(const Job& job, Setup setup) : folder_(setup.folder) {
    setup.folder = folder_.path;
    race_ = job.prepare(setup);
    for (const Race::Rewritten& file : race_.rewritten)
        OpenFile::create(file.path);
}

void PreparedRace::keepQuillonAndLimit() {
    std::erase_if(race_.contenders, [](const Contender& contender) {
        return contender.role != Role::kQuillon && contender.role != Role::kLimit;
    });
}

void reset(const Race& race) {
    for (const Race::Rewritten& file : race.rewritten)
        copyInPlace(file.original, file.path);
    for (const std::string& path : race.created)
        ::unlink(path.c_str());
}
