#include "page/CopyTime.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <vector>

#include "files/DiskFile.h"
#include "files/File.h"

namespace {

void copy(const std::string& from, const std::string& to, std::vector<std::uint8_t>& piece) {
    InputFile input(from, "file");
    OutputFile output(to);
    std::uint64_t offset = 0;
    while (const std::size_t count = input.read(offset, piece)) {
        output.append({piece.data(), count});
        offset += count;
    }
    output.finish();
}

double timedCopy(const std::string& from, const std::string& to, std::vector<std::uint8_t>& piece) {
    std::filesystem::remove(to);
    const auto start = std::chrono::steady_clock::now();
    copy(from, to, piece);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

}  // namespace

double copyMilliseconds(const std::string& from, const std::string& to) {
    std::vector<std::uint8_t> piece(kPieceBytes);
    double fastest = timedCopy(from, to, piece);
    for (int repeat = 0; repeat < 2; ++repeat)
        fastest = std::min(fastest, timedCopy(from, to, piece));
    return fastest;
}
