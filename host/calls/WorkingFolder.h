#pragma once
// A folder for the files of a command until they are whole. It is made, in the folder of the results,
// through the library, as the host makes it.

#include <string>
#include <vector>

#include "calls/Leftovers.h"
#include "files/DiskFile.h"

class WorkingFolder {
public:
    explicit WorkingFolder(CallLog& log) : log_(log) {}

    // Creates "working", or "working-2" and so on where that is in use, in `folder`, which is created
    // with its parents if it is missing. Throws Failure.
    void create(const std::string& folder);

    const std::string& path() const { return path_; }
    std::string at(const std::string& name) const;

    // Adds a file in it that is deleted with it.
    Leftovers& files() { return files_; }

    // Adds a result, which will be `path` in the end. Returns where it is until then.
    std::string addResult(const std::string& path);

    // Gives the results their names, all or none, and keeps created folders. Throws Failure.
    void publish();

private:
    void createParents(const std::string& folder);
    bool tryToCreate(const std::string& folder);

    CallLog& log_;
    std::string path_;
    std::vector<Rename> renames_;
    Leftovers created_{log_};  // folders; deleted last
    Leftovers files_{log_};
    Leftovers results_{log_};
};
