#pragma once
// One line on standard error that says how far long work has come. It is shown on a terminal only
// and leaves nothing behind.

#include <cstddef>
#include <string>

class Progress {
public:
    explicit Progress(bool wanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    // Replaces the line: `done` of `total` steps of `work` are behind, `current` is under way.
    void show(const char* work, std::size_t done, std::size_t total, const std::string& current);

    // Takes the line away, before something else is printed.
    void clear();

private:
    bool visible_;
    bool shown_ = false;
};
