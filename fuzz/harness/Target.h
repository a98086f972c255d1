#pragma once
// Target: an operation under fuzzing, and what must hold whatever files it is given. Sanitizers
// watch memory; a target checks the rest: which statuses there are, which files stay as they were.
// The harness itself checks that no file stays open, that a call with another status than 0 changes
// none of the files it is given, that the files a target expects are there and no others, and that
// the same call gives the same bytes.

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "harness/Folder.h"
#include "harness/Format.h"
#include "harness/Recipe.h"

// One call of an operation, with its files in folder().
class Case {
public:
    explicit Case(const Recipe& recipe);

    // The path of one of the files that the operation is given. Those not asked for are not there.
    char* file(std::size_t index);
    // The path of a file that does not exist yet.
    char* output() { return output_.data(); }
    std::uint8_t byte(std::size_t index) const { return recipe_.numbers.at(index); }
    std::int32_t number(std::size_t index) const;  // the bytes from `index` on, little-endian
    float real(std::size_t index) const;           // likewise

    const ByteList& given(std::size_t index) const { return given_.at(index); }

    // What follows is for after the call.
    std::uint64_t sizeNow(std::size_t index) const;

    // Each ends the process with a message when it does not hold.
    static void expect(bool holds, const char* what);
    static void expectStatus(float status, std::initializer_list<float> known);
    void expectUnchanged(std::size_t index) const;
    void expectSameSize(std::size_t index) const;
    void expectSameBytes(std::size_t index) const;  // in any order
    // How many files the call has created; none without this.
    void expectOutputs(std::size_t count) { expectedOutputs_ = count; }

    // More that must be the same each time.
    void note(std::string_view text) { notes_ += text; }

    // For the harness: checks what holds for every call; then what there is to compare.
    void finish(float status);
    const std::vector<std::string>& outputs() const { return outputs_; }
    const std::string& notes() const { return notes_; }
    std::map<std::string, FileState> givenNow() const;

private:
    const FileState& now(std::size_t index) const;

    const Recipe& recipe_;
    std::vector<ByteList> given_;
    std::vector<std::string> paths_;  // empty: not asked for
    std::string output_;
    std::size_t expectedOutputs_ = 0;
    std::vector<std::string> outputs_;
    std::string notes_;
};

struct Target {
    const char* name;
    // Calls the operation, checks what it left, and returns its status. Sets whatever state it depends
    // on first.
    float (*run)(Case& files);
    const Format& format;
    std::size_t files;
    // Of the files in the inputs that fuzzing starts from.
    std::uint16_t seedFiller = 0;
};

// All targets. Each source in targets/ adds its own.
const std::vector<Target>& allTargets();
const Target* findTarget(const std::string& name);

struct AddTarget {
    explicit AddTarget(const Target& target);
};

// Starts the definition of a target's run(): its name, its format, how many files it is given, and
// their filler in seeds, if any.
#define FUZZ_TARGET(name, ...)                               \
    static float run(Case& files);                           \
    static const AddTarget added({#name, run, __VA_ARGS__}); \
    static float run(Case& files)

// Runs a target on one input; some inputs twice, so that the second run finds what the first left in
// memory, and older files where it writes new ones.
void runInput(const Target& target, std::span<const std::uint8_t> input);
