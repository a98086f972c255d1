#pragma once
// A race with its files, in a folder that is gone at its end.

#include <string>

#include "Job.h"

class PreparedRace {
public:
    // The folder is made within setup.folder.
    PreparedRace(const Job& job, Setup setup);

    const Race& race() const { return race_; }

    // Leaves out all others; the limit, where there is one, comes second.
    void keepQuillonAndLimit();

private:
    struct Folder {
        explicit Folder(const std::string& parent);
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        ~Folder();
        std::string path;
    };
    Folder folder_;
    Race race_;
};

// Brings the race's files into the state in which the work finds them.
void reset(const Race& race);
