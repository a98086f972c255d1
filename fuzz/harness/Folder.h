#pragma once
// Folder: where the operations of a process find and leave their files, in memory where TMPDIR is.
// It is the working folder while an input runs. The files that operations are given stay from one
// execution to the next and are held open: making and removing files takes longer than most
// operations do.

#include <dirent.h>
#include <sys/stat.h>

#include <deque>
#include <set>
#include <string>
#include <vector>

#include "harness/Recipe.h"

// Ends the process with a message.
[[noreturn]] void fail(const char* what);

// A file's length and as much of its bytes as is compared: a header may claim gigabytes of black.
struct FileState {
    off_t size = 0;
    ByteList bytes = {};
    bool operator==(const FileState&) const = default;
};

// A file that is given to operations, and that they may change or replace by another.
class GivenFile {
public:
    explicit GivenFile(std::string name) : name_(std::move(name)) {}

    const std::string& name() const { return name_; }
    bool isOpen() const { return descriptor_ >= 0; }
    // Makes the file hold these bytes; writes nothing if it does. After each put() comes a now(), since
    // only that finds out what an operation did.
    void put(const ByteList& bytes);
    // What the operation left under the name; read once.
    const FileState& now();

private:
    void open(int flags);

    std::string name_;
    int descriptor_ = -1;
    ino_t inode_ = 0;
    FileState state_;
    bool isRead_ = false;
};

class Folder {
public:
    Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder();

    // The working folder of a process while it lives.
    class Visit {
    public:
        explicit Visit(const Folder& folder);
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;
        ~Visit();

    private:
        const Folder& folder_;
    };

    GivenFile& given(std::size_t index);
    // How many of the first descriptors are open, without the folder's own.
    int openDescriptors() const;
    // All names but those of given files.
    std::vector<std::string> others() const;
    // The names under which something has changed since the last call of this. Asking the system for
    // them takes one call where nothing has, instead of one for each file.
    std::set<std::string> changed();
    // Removes files and empty folders.
    static void remove(const std::vector<std::string>& names);

private:
    bool isGiven(std::string_view name) const;

    std::string path_;
    DIR* listing_;
    int workingFolder_;  // of the process
    int events_ = -1;    // of changed()
    std::deque<GivenFile> given_;
};

// The folder of this process.
Folder& folder();

void writeFile(const char* name, const ByteList& bytes);
FileState readFile(const char* name);
