#include "golden/Transcript.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>

#include "golden/Digest.h"

namespace {

constexpr std::size_t kMaxShown = 40;

std::string nameOf(const std::string& line) {
    return line.substr(0, line.find(' '));
}

// The first two words: the name and the number of a case, or how many cases there are.
std::string keyOf(const std::string& line) {
    return line.substr(0, line.find(' ', line.find(' ') + 1));
}

}  // namespace

Lines readLines(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.front() != '#') lines.push_back(line);
    }
    return lines;
}

Lines digestsOf(const Lines& transcript) {
    Lines digests;
    for (auto first = transcript.begin(); first != transcript.end();) {
        const std::string name = nameOf(*first);
        const auto last = std::find_if(
            first, transcript.end(), [&](const std::string& line) { return nameOf(line) != name; });
        Digest digest;
        std::for_each(first, last, [&](const std::string& line) { digest.add(line + "\n"); });
        digests.push_back(name + " " + std::to_string(last - first) + " " +
                          hexadecimal(digest.value()));
        first = last;
    }
    return digests;
}

std::size_t reportDifferences(const Lines& have, const Lines& want) {
    std::map<std::string, const std::string*> open;
    for (const std::string& line : want)
        open[keyOf(line)] = &line;

    std::size_t different = 0;
    const auto report = [&](const std::string& ours, const std::string& theirs) {
        if (++different <= kMaxShown) std::cout << "have: " << ours << "\nwant: " << theirs << '\n';
    };
    for (const std::string& line : have) {
        const auto wanted = open.find(keyOf(line));
        if (wanted == open.end()) {
            report(line, "nothing");
            continue;
        }
        if (line != *wanted->second) report(line, *wanted->second);
        open.erase(wanted);
    }
    for (const auto& [key, line] : open)
        report("nothing", *line);
    return different;
}

bool agreesWithDigests(const std::string& transcript, const std::string& digests) {
    const Lines lines = readLines(transcript);
    const std::size_t different = reportDifferences(digestsOf(lines), readLines(digests));
    std::cout << lines.size() << " cases, " << different << " digests differ\n";
    return different == 0;
}
