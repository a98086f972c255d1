// transcript: calls a library's exports with generated inputs and records the results, so that two
// processors, compilers or builds can be compared.
//
//   transcript exports LIBRARY TRANSCRIPT [DIGESTS]   writes TRANSCRIPT; compares it with the digests
//   transcript digests TRANSCRIPT                     prints a transcript's digests
//   transcript compare TRANSCRIPT OTHER               compares two transcripts line by line
//
// Exits with 0 if nothing differs, with 1 if something does, otherwise with 2.

#include <dlfcn.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "golden/ExportCases.h"
#include "golden/Transcript.h"

namespace {

using Arguments = std::vector<std::string>;

FindSymbol loaded(const std::string& library) {
    void* handle = ::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) throw std::runtime_error(::dlerror());
    return [handle](const std::string& name) { return ::dlsym(handle, name.c_str()); };
}

int compare(const std::string& transcript, const std::string& other) {
    const Lines lines = readLines(transcript);
    const Lines others = readLines(other);
    const std::size_t different = reportDifferences(lines, others);
    std::cout << std::max(lines.size(), others.size()) << " comparisons, " << different
              << " differ\n";
    return different == 0 && !lines.empty() ? 0 : 1;
}

int run(const Arguments& words) {
    const std::string& mode = words.at(0);
    if (mode == "compare") return compare(words.at(1), words.at(2));
    if (mode == "digests") {
        for (const std::string& line : digestsOf(readLines(words.at(1))))
            std::cout << line << '\n';
        return 0;
    }
    if (mode != "exports") throw std::out_of_range(mode);

    const std::string& transcript = words.at(2);
    writeExportCases(loaded(words.at(1)), transcript);
    return words.size() <= 3 || agreesWithDigests(transcript, words.at(3)) ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
    try {
        return run(Arguments(words + 1, words + count));
    } catch (const std::out_of_range&) {
        std::cerr << "transcript exports LIBRARY TRANSCRIPT [DIGESTS] | digests TRANSCRIPT | "
                     "compare TRANSCRIPT OTHER\n";
        return 2;
    } catch (const std::exception& failure) {
        std::cerr << "transcript: " << failure.what() << '\n';
        return 2;
    }
}
