#include "calls/WorkingFolder.h"

#include <filesystem>

#include "terminal/Failure.h"

namespace fs = std::filesystem;

namespace {

// How often another command may delete the folder of the results, or its own working folder, just
// between two calls.
constexpr int kMaxAttempts = 100;
constexpr int kMaxMisses = 4;

bool exists(const std::string& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

}  // namespace

std::string WorkingFolder::at(const std::string& name) const {
    return (fs::path(path_) / name).string();
}

void WorkingFolder::create(const std::string& folder) {
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        createParents(folder);
        if (tryToCreate(folder)) return files_.add(path_);
    }
    throw Failure("cannot create a folder in " + folder + ": something else deletes it");
}

void WorkingFolder::createParents(const std::string& folder) {
    const CallArguments arguments{.text = folder};
    if (log_.call("CheckFolder", arguments).status == 0.0f) return;
    const std::string parent = fs::path(folder).parent_path().string();
    if (!parent.empty() && parent != folder && !exists(parent)) createParents(parent);
    if (log_.call("CreateFolder", arguments).status == 0.0f) return created_.add(folder);
    std::error_code ignored;
    if (fs::is_directory(folder, ignored)) return;  // another command was faster
    throw Failure(failureSentence(log_.calls().back()));
}

// Returns whether `path_` was created; false if `folder` is gone.
bool WorkingFolder::tryToCreate(const std::string& folder) {
    for (int number = 1, misses = 0; misses < kMaxMisses;) {
        const std::string name = number == 1 ? "working" : "working-" + std::to_string(number);
        path_ = (fs::path(folder) / name).string();
        if (log_.call("CreateFolder", {.text = path_}).status == 0.0f) return true;
        if (!exists(folder)) return false;
        if (exists(path_))
            ++number;
        else
            ++misses;
    }
    throw Failure(failureSentence(log_.calls().back()));
}

std::string WorkingFolder::addResult(const std::string& path) {
    renames_.push_back({at(fs::path(path).filename().string()), path});
    results_.add(renames_.back().from);
    return renames_.back().from;
}

void WorkingFolder::publish() {
    renameAll(renames_);
    renames_.clear();
    results_.keep();
    created_.keep();
}
