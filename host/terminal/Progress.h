#pragma once
// How far long work has come, on standard error: for a person one line, which appears on a terminal only
// and is removed in the end; for a program an object of JSON per line.

#include <cstddef>
#include <string>

enum class ProgressStyle { kNone, kBar, kJson };

class Progress {
public:
    explicit Progress(ProgressStyle style);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    // Names the file that all steps are about, for a program that started the work on several.
    void setFile(const std::string& file) { file_ = file; }

    // Replaces the line: `done` of `total` parts of a step are done, `current` is next.
    void show(const char* step, std::size_t done, std::size_t total, const std::string& current);

    // Tells a program, which sees no line being removed, that the step is done.
    void finish(const char* step, std::size_t total);

    // Removes the line, before something else is printed.
    void clear();

private:
    void print(const char* step, std::size_t done, std::size_t total, const std::string* current);

    ProgressStyle style_;
    std::string file_;
    bool shown_ = false;
};
