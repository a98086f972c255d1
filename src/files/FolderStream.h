#pragma once
// An open folder that closes itself.

#include <dirent.h>

#include <memory>

struct CloseStream {
    void operator()(DIR* stream) const { ::closedir(stream); }
};
using FolderStream = std::unique_ptr<DIR, CloseStream>;

// Null when the folder cannot be opened or `path` is null.
inline FolderStream openFolder(const char* path) {
    return FolderStream(path == nullptr ? nullptr : ::opendir(path));
}
