#pragma once
// The one table of the library's exports: what each reads, returns and writes. quillon call, script
// and describe explain a call with it, and docs/exports.md is made from it.

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class TextUse {
    kFile,    // the path of a file
    kFolder,  // the path of a folder
    kEither,  // the path of one or the other
    kText,    // any text
};

enum class BufferUse {
    kNone,    // not read
    kPath,    // a second path, which the user may leave out to try a null pointer
    kOutput,  // a block that takes a text; always passed
};

// What can lead to a status: one cause, or several joined by |. There is no empty set, so that the
// compiler asks for a cause in every row. tests/faults/ContractTest.cpp brings about each of them.
class Causes {
public:
    consteval explicit Causes(int place) : bits_(1u << place) {}
    constexpr Causes operator|(Causes other) const { return Causes(*this, other); }
    constexpr bool contain(Causes others) const { return (bits_ & others.bits_) == others.bits_; }

private:
    constexpr Causes(Causes some, Causes others) : bits_(some.bits_ | others.bits_) {}

    unsigned bits_;
};

// The sentence of a row does not name kNullArgument and kValueRefused: which pointers an export
// reads and which numbers it takes is known from the rest of its entry.
namespace cause {
inline constexpr Causes kDone{0};  // success; a cause beside it is not reported
inline constexpr Causes kNullArgument{1};
inline constexpr Causes kValueRefused{2};
inline constexpr Causes kPathRefused{3};        // too long, or that of the source
inline constexpr Causes kSourceNotOpened{4};    // not there, of another type, or not readable
inline constexpr Causes kSourceNotWritable{5};  // changed, deleted, or only opened for writing
inline constexpr Causes kTargetNotOpened{6};    // where it must be there before
inline constexpr Causes kTargetNotWritten{7};   // cannot be created or written over
inline constexpr Causes kDiskFull{8};
inline constexpr Causes kReadFailed{9};  // a file or folder can be opened, but not read to its end
inline constexpr Causes kFileRefused{10};  // for its contents
inline constexpr Causes kNoMemory{11};
inline constexpr Causes kNothingOpen{12};  // no folder is open, or all of its entries were given
}

// The stable names of causes, such as "sourceNotOpened", for programs.
std::vector<std::string> namesOf(Causes causes);

// The whole numbers that an export takes, for programs that check or offer them: `choices`, or else
// those from `least` to `most`.
struct Numbers {
    std::span<const int> choices = {};
    int least = 0;
    std::optional<int> most = {};
    const char* others;                   // "refused", "clamped", "replaced" or "ignored"
    std::optional<int> replacement = {};  // by what they are replaced
};

// A status that an export can return. Numbers come from the constants in the headers of src/. Each
// status has one row.
struct StatusMeaning {
    float status;
    Causes causes;
    const char* sentence;  // the causes; without a capital and without a full stop

    constexpr bool isSuccess() const { return causes.contain(cause::kDone); }
};

// What `quillon call` prints of the example: the status, its meaning, and the text if there is one.
struct ExampleResult {
    float status = 0.0f;
    const char* text = nullptr;
};

// What a process that is killed in the middle of a call leaves of the files that the export writes; all
// other files stay as they are. tests/faults/KilledTest.cpp holds each export to it.
struct Interruption {
    const char* sentence;
    bool emptiesFirst = false;  // an older file is emptied or removed before the new one is written
    bool isOneStep = false;     // a second call finds it done and fails
    bool canBeRepeated = true;  // a second call completes what the first one began
};

struct Export {
    std::string_view name;
    const char* purpose;         // one sentence, with its full stop
    const char* text = nullptr;  // what the first argument is; null when it is not read
    TextUse textUse = TextUse::kFile;

    const char* value = nullptr;          // what the number is and which ones are taken; null when
                                          // it is not read
    const char* valueName = nullptr;      // the same in one word, for a line of a log
    bool (*takes)(double) = nullptr;      // which numbers are not refused; null: none is
    const char* valueDetails = nullptr;   // what each number does, where that takes sentences
    std::optional<Numbers> numbers = {};  // `value` as data

    bool writesTiles = false;  // returns kFirstTileNotWritten + k for the file of tile k

    BufferUse buffer = BufferUse::kNone;
    const char* bufferIs = nullptr;  // what the block takes or names; null when it is not read

    const char* writes;                         // what is written where, in sentences
    const Interruption* interrupted = nullptr;  // null when no file is written

    std::span<const StatusMeaning> statuses = {};
    const char* countOne = nullptr;   // what a status from 0 on counts or measures; null when
    const char* countMany = nullptr;  // there is no such status
    bool countIsWhole = true;
    const char* throws = nullptr;  // when an exception reaches the host

    const char* example;  // a command for the folder that docs/examples/make fills
    ExampleResult prints = {};
    const char* output = nullptr;  // what it prints when it is not a single `quillon call`
    const char* next;              // what to check when a call fails, in sentences
};

struct ExportGroup {
    const char* title;
    const char* lead;  // what all of them have in common
    std::span<const Export> exports;
};

// All exports, each in one group.
std::span<const ExportGroup> exportGroups();

// The names of all of them, in that order.
std::vector<std::string> exportNames();

// Null when the library has no such export.
const Export* findExport(std::string_view name);

// Throws WrongUsage when the library has no such export.
const Export& requireExport(std::string_view name);

// The row of a status in the table of an export; all tiles share one. Null when there is none.
const StatusMeaning* rowOf(const Export& entry, float status);

// Whether a status is not in the table because it counts or measures something.
bool isCount(const Export& entry, float status);

// One line an export: its name and what it reads.
std::string exportList();
