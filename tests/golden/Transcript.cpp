#include "golden/Transcript.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "golden/Record.h"

namespace {

// More lines than this tell nothing new.
constexpr std::size_t kMostShown = 40;

std::string nameOf(const std::string& line) {
    return line.substr(0, line.find(' '));
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

std::size_t reportDifferences(const Lines& have, const Lines& want, std::ostream& out) {
    std::size_t different = 0;
    for (std::size_t i = 0; i < std::max(have.size(), want.size()); ++i) {
        const std::string& ours = i < have.size() ? have[i] : "nothing";
        const std::string& theirs = i < want.size() ? want[i] : "nothing";
        if (ours == theirs) continue;
        if (++different <= kMostShown) out << "have: " << ours << "\nwant: " << theirs << '\n';
    }
    return different;
}
