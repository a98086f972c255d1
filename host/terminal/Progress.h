#pragma once
// One line on standard error that shows the progress of long work. It appears on a terminal only and
// is removed in the end.

#include <cstddef>
#include <string>

class Progress {
public:
    explicit Progress(bool wanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    // Replaces the line: `done` of `total` steps of `work` are done, `current` is next.
    void show(const char* work, std::size_t done, std::size_t total, const std::string& current);

    // Removes the line, before something else is printed.
    void clear();

private:
    bool visible_;
    bool shown_ = false;
};
