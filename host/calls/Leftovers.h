#pragma once
// Files and folders that must not outlive a failure. They are deleted through the library, the
// newest first, so that a folder goes after what was made in it.

#include <string>
#include <vector>

#include "calls/CallLog.h"

class Leftovers {
public:
    explicit Leftovers(CallLog& log) : log_(log) {}
    Leftovers(const Leftovers&) = delete;
    Leftovers& operator=(const Leftovers&) = delete;
    ~Leftovers();

    void add(const std::string& path) { paths_.push_back(path); }

    // Deletes them, each call printed; throws Failure when one cannot be deleted.
    void deleteAll();

    // Lets them stay.
    void keep() { paths_.clear(); }

private:
    CallLog& log_;
    std::vector<std::string> paths_;
};
