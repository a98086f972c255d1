#pragma once
// CallModel: what calls should do to a folder of files, to what the exports return, and to the state
// that calls share. As plain as it can be: what a call writes into a file it leaves open, but which
// files it may touch, and that a refused call touches none, it knows for each export.

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "export/Quillon.h"
#include "harness/Recipe.h"

// What the folder holds under a name: a file, or an empty folder.
struct Entry {
    bool isFolder = false;
    std::shared_ptr<const ByteList> bytes = {};  // of a file

    bool operator==(const Entry& other) const {
        return isFolder == other.isFolder &&
               (bytes == other.bytes || (bytes && other.bytes && *bytes == *other.bytes));
    }
};
using Entries = std::map<std::string, Entry>;

// What a call may change.
enum class Effect {
    kNothing,
    kText,       // the file that `text` names
    kBuffer,     // the file that `buffer1` names
    kTiles,      // files whose names begin as `buffer1` does
    kPredicted,  // exactly what predict() says
};

enum class Buffer { kNotRead, kPath, kBlock };

struct Export {
    const char* name;
    ExportFunction* function;
    Effect effect;
    Buffer buffer;
};

inline constexpr std::size_t kExports = 34;
extern const Export kAllExports[kExports];

// Paths are names in the folder, "." is the folder itself, and nullopt a null pointer.
struct Call {
    const Export& function;
    std::optional<std::string> text;
    std::optional<std::string> buffer;  // a path; for a block: whether there is one
    double value;
};

struct Result {
    float status = 0.0f;
    bool threw = false;
    std::optional<std::string> text = {};  // what the block took, if anything
};

class CallModel {
public:
    // Ends the process with a message unless the call may have done this.
    void check(const Call& call, const Result& result, const Entries& before, const Entries& after);

    bool isListing() const { return isListing_; }

    // How many tiles have names; empty after an export that failed halfway.
    std::optional<std::size_t> tiles() const { return tiles_; }

private:
    void checkState(const Call& call, const Result& result);

    bool isListing_ = false;
    std::optional<std::size_t> tiles_ = 0;
};
