#pragma once
// Files and folders that a failure must not leave behind. They are deleted through the library, the
// newest first, so that a folder is deleted after its files.

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

    // Deletes them and prints each call; throws Failure if one cannot be deleted.
    void deleteAll();

    // Keeps them.
    void keep() { paths_.clear(); }

private:
    CallLog& log_;
    std::vector<std::string> paths_;
};
