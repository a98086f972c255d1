#pragma once
// One or two valid calls of each export, with the folder that they need. What happens to them when
// the system fails, when a path leads astray and when they follow one another a hundred thousand
// times is asked by the programs beside this file.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/Plugin.h"
#include "support/TempDir.h"

// The entries of a folder by their names: files with their bytes, links with what they point to. A
// sub-folder's name ends in '/', the names of what lies in it begin with that.
using Entries = std::map<std::string, ByteList>;

// A call whose paths are names in a folder.
struct Call {
    const char* exportName;
    std::string text;  // "." is the folder itself
    double value = 0.0;
    std::string buffer1 = {};  // empty: a block that takes a text
};

// What a call said.
struct Answer {
    float status;
    std::string block;

    bool operator==(const Answer&) const = default;
};

struct Scenario {
    std::string name;  // letters and digits
    Call call;
    float status;                        // the answer when nothing goes wrong
    Entries files = {};                  // in the folder before
    std::vector<Call> before = {};       // calls that the host makes first
    std::vector<Call> after = {};        // calls that show what the library remembers
    std::set<std::string> written = {};  // entries that the call creates, changes or removes

    Scenario& on(const std::string& file, const ByteList& bytes);
    Scenario& writes(const std::set<std::string>& entries);
    Scenario& precededBy(const Call& earlier);
    Scenario& shownBy(const Call& later);
};

void PrintTo(const Scenario& scenario, std::ostream* out);

const std::vector<Scenario>& scenarios();

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

    Answer make(const Call& call);

    // Ends what the library remembers between calls.
    void forget();

    // The entries that are there now.
    Entries entries() const;

    // The path of a name in the folder, as the exports get it.
    std::string path(const std::string& name) const;

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
