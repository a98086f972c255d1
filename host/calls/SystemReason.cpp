#include "calls/SystemReason.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "exports/Meanings.h"

namespace {

// What follows returns an errno, 0 where nothing is wrong.

int openError(const std::string& path, int flags) {
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return errno;
    ::close(descriptor);
    return 0;
}

// Of a file that must exist.
int fileError(const std::string& path, int flags) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    return S_ISREG(status.st_mode) ? openError(path, flags) : 0;
}

// Of the folder in which a file is to be created.
int folderError(const std::string& path) {
    const std::string parent = std::filesystem::path(path).parent_path().string();
    return ::access(parent.empty() ? "." : parent.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

// Of a file that is created or written over.
int targetError(const std::string& path) {
    const int error = openError(path, O_WRONLY);
    return error == ENOENT ? folderError(path) : error;
}

bool isOneOf(int error, std::initializer_list<int> errors) {
    return std::ranges::find(errors, error) != errors.end();
}

std::string reasonOf(int error) {
    return error == 0 ? "" : std::strerror(error);
}

// These end with the system call that fails, or fail before any.
bool endsWithSystemCall(const Export& entry) {
    constexpr std::array<std::string_view, 8> kNames = {
        "CreateFolder", "CheckFolder", "OpenFolder", "GetFile",
        "EmptyFolder",  "FileDelete",  "FileRename", "GetPublicFolder"};
    return std::ranges::find(kNames, entry.name) != kNames.end();
}

// The reason for a mesh of one tile, whose name is not known here. Before the file is created the
// export only asks for each tile's file whether it is the mesh, which may find none (ENOENT).
std::string tileReason(const CallArguments& arguments, int error) {
    const std::string& path = *arguments.buffer;
    const std::string folder = path.substr(0, path.rfind('.'));
    if (const int wrong = folderError(folder)) return path + ": " + reasonOf(wrong);
    return error == ENOENT ? "" : reasonOf(error);
}

// The reason that trying the paths again shows.
std::string pathReason(const CallArguments& arguments, const Causes& causes) {
    std::string reason;
    const auto look = [&](const Causes& cause, const std::optional<std::string>& path,
                          auto errorOf) {
        if (!reason.empty() || !path || !causes.contain(cause)) return;
        if (const int error = errorOf(*path)) reason = *path + ": " + reasonOf(error);
    };
    const auto readError = [](const std::string& path) { return fileError(path, O_RDONLY); };
    const auto rewriteError = [](const std::string& path) { return fileError(path, O_RDWR); };
    look(cause::kSourceNotOpened, arguments.text, readError);
    look(cause::kSourceNotWritable, arguments.text, rewriteError);
    look(cause::kTargetNotOpened, arguments.buffer, readError);
    look(cause::kTargetNotWritten, arguments.buffer, targetError);
    return reason;
}

}  // namespace

std::string systemReason(const Export& entry, const CallArguments& arguments, float status,
                         int error) {
    const StatusMeaning* row = rowOf(entry, status);
    if (row == nullptr || row->isSuccess() || !refusalOf(entry, arguments, *row).empty()) return {};
    if (endsWithSystemCall(entry)) return reasonOf(error);
    const bool isTile = entry.writesTiles && row->causes.contain(cause::kTargetNotWritten);
    if (isTile) return tileReason(arguments, error);
    std::string reason = pathReason(arguments, row->causes);
    if (!reason.empty()) return reason;
    const bool mayBeFull = row->causes.contain(cause::kDiskFull);
    const bool isFull = isOneOf(error, {ENOSPC, EDQUOT, EFBIG, EIO});
    const bool isUnread = row->causes.contain(cause::kReadFailed) && error == EIO;
    return (mayBeFull && isFull) || isUnread ? reasonOf(error) : "";
}
