#pragma once
// One or two valid calls of each export, with the folder that they need. The tests here, in limits/ and
// in soak/ make them while the system fails, with unusual paths and a hundred thousand times.

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/Plugin.h"
#include "support/TempDir.h"

// The entries of a folder by their names: files with their bytes, links with what they point to. A
// sub-folder's name ends in '/' and starts the names of its entries.
using Entries = std::map<std::string, ByteList>;

// A call whose paths are names in a folder.
struct Call {
    const char* exportName = nullptr;
    std::string text = {};  // "." is the folder itself
    double value = 0.0;
    std::string buffer1 = {};  // empty: a block that takes a text
};

// What a call returned.
struct Result {
    float status;
    std::string block;

    bool operator==(const Result&) const = default;
};

// All that a host can see of a call.
struct Outcome {
    Result result;
    std::vector<Result> after;  // of the calls that show what the library remembers
    Entries entries;

    bool operator==(const Outcome&) const = default;
};

struct Scenario {
    std::string name = {};  // letters and digits
    Call call = {};
    float status = 0.0f;                 // when nothing goes wrong
    Entries files = {};                  // in the folder before
    std::vector<Call> before = {};       // calls that the host makes first
    std::vector<Call> after = {};        // calls that show what the library remembers
    std::set<std::string> written = {};  // entries that the call creates, changes or removes
};

void PrintTo(const Scenario& scenario, std::ostream* out);

const std::vector<Scenario>& scenarios();
const Scenario& scenarioNamed(std::string_view name);

// Calls of each export that reads or writes a file, on images of `side` x `side` pixels and on meshes of
// a tenth as many faces: the same calls, names and order for each size. What a call creates is not there
// before. The statuses of measurements are left out.
std::vector<Scenario> scenariosOfSize(std::uint32_t side);

ByteList bytesOf(std::string_view text);

// A folder and a library for one scenario after another.
class Stage {
public:
    // `place` is the folder's path below a temporary one.
    explicit Stage(const std::string& place = "stage");
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    virtual ~Stage() = default;

    // Puts the scenario's files into the folder, nothing else, and makes the calls before.
    void prepare(const Scenario& scenario);

    // The same, but keeps what the folder holds: files of the scenario are written over.
    void prepareOver(const Scenario& scenario);

    Result make(const Call& call);

    // What can be seen once the scenario's call has returned: makes the calls after it.
    Outcome outcome(const Scenario& scenario, const Result& result);

    // Prepares the scenario and makes its call and those after it.
    Outcome play(const Scenario& scenario);

    // Ends what the library remembers between calls.
    void forget();

    // The entries that are there now.
    Entries entries() const;

    // The path of a name in the folder, as the exports get it.
    std::string path(const std::string& name) const;

    // Lets a user who is not root work in the folder.
    void letOthersIn() const;

protected:
    // Every call of an export goes through here.
    virtual float invoke(const char* exportName, const Arguments& arguments) {
        return plugin_.call(exportName, arguments);
    }

private:
    const Plugin plugin_;
    const TempDir dir_;
    const std::string folder_;
};
