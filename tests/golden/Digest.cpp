#include "golden/Digest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestShown = 24;

// Of a file longer than twice this only both ends count: a claimed size may have made it huge.
constexpr std::uintmax_t kEndBytes = 512 * 1024;

std::string part(std::ifstream& file, std::uintmax_t offset, std::uintmax_t count) {
    std::string bytes(count, '\0');
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(bytes.data(), static_cast<std::streamsize>(count));
    return bytes;
}

void addFile(Digest& digest, const fs::path& path) {
    const std::uintmax_t length = fs::file_size(path);
    std::ifstream file(path, std::ios::binary);
    digest.add(std::to_string(length));
    digest.add(part(file, 0, std::min(length, kEndBytes)));
    if (length > kEndBytes) {
        const std::uintmax_t rest = std::min(length - kEndBytes, kEndBytes);
        digest.add(part(file, length - rest, rest));
    }
}

}  // namespace

void Digest::add(std::string_view bytes) {
    for (const char byte : bytes)
        value_ = (value_ ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
}

std::string hexadecimal(std::uint64_t value, int digits) {
    std::string text;
    for (int shift = 4 * digits - 4; shift >= 0; shift -= 4)
        text += "0123456789abcdef"[value >> shift & 15];
    return text;
}

std::string shown(std::string_view bytes) {
    if (bytes.empty()) return "-";
    if (bytes.size() > kLongestShown) {
        Digest digest;
        digest.add(bytes);
        return std::to_string(bytes.size()) + ":" + hexadecimal(digest.value());
    }
    std::string text;
    for (const char byte : bytes)
        text += hexadecimal(static_cast<unsigned char>(byte), 2);
    return text;
}

std::string shownFolder(const std::string& folder) {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());

    Digest digest;
    for (const fs::path& path : paths) {
        digest.add(path.lexically_relative(folder).string());
        digest.add(std::string_view("\0", 1));
        if (fs::is_regular_file(path)) addFile(digest, path);
    }
    return std::to_string(paths.size()) + ":" + hexadecimal(digest.value());
}
