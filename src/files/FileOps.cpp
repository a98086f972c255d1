#include "files/FileOps.h"

#include <array>
#include <cstdio>
#include <string_view>
#include <vector>

#include "files/File.h"
#include "files/FolderStream.h"

namespace {

constexpr const char* kSeparators = "/\\";

// The bytes that one round of a copy moves.
constexpr std::size_t kCopyBytes = 4000;

std::string fileName(const std::string& path) {
    return path.substr(path.find_last_of(kSeparators) + 1);  // npos + 1 is 0
}

bool isSelfOrParent(std::string_view name) {
    return name == "." || name == "..";
}

// The names in an open folder: "." and ".." first, then the others in the file system's order.
std::vector<std::string> entriesSelfFirst(DIR* stream) {
    std::vector<std::string> names = {".", ".."};
    while (const dirent* entry = ::readdir(stream)) {
        if (!isSelfOrParent(entry->d_name)) names.emplace_back(entry->d_name);
    }
    return names;
}

}  // namespace

int IsDirectory(const char* path) {
    const std::string_view text(path);
    const std::size_t stop = text.find_last_of("./\\");
    return stop != std::string_view::npos && text[stop] == '.' ? 0 : 1;
}

std::string FileNameExtract(const std::string& path, int mode) {
    switch (mode) {
        case 1:
            return path.substr(0, path.find_last_of(kSeparators) + 1);
        case 2: {
            const std::string name = fileName(path);
            return name.substr(0, name.rfind('.'));
        }
        case 3:
            return path.substr(0, path.rfind('.'));
        case 4:
            return path.substr(path.rfind('.'));  // throws without a dot
        case 6:
            return fileName(path);
        default:
            return path;
    }
}

int ClearFolder(const std::string& path) {
    if (path.empty()) return 0;
    const std::string folder = path.back() == '/' ? path : path + '/';
    const FolderStream stream = openFolder(folder.c_str());
    if (stream == nullptr) return 0;

    // The first two entries are skipped unseen: they are the folder itself and its parent. All
    // names are read before the first removal, since removing while reading can hide entries.
    const std::vector<std::string> names = entriesSelfFirst(stream.get());
    for (std::size_t i = 2; i < names.size(); ++i) {
        const std::string joined = folder + names[i];
        if (joined.size() <= kLongestJoinedPath && IsDirectory(joined.c_str()) == 0)
            std::remove(joined.c_str());
    }
    return 1;
}

bool copyFile(const char* source, const char* target) {
    std::remove(target);
    const File from = File::openForReading(source);
    if (!from.isOpen()) return false;
    const File to = File::create(target);
    if (!to.isOpen()) return false;

    std::array<std::uint8_t, kCopyBytes> buffer;
    std::uint64_t offset = 0;
    while (const std::size_t count = from.readAt(offset, buffer.data(), buffer.size())) {
        if (!to.writeAt(offset, buffer.data(), count)) return false;
        offset += count;
    }
    return true;
}
