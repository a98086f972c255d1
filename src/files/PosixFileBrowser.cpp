// The platform operations of CocoaFileBrowser.h where there is no Foundation and no AppKit.

#include <sys/stat.h>

#include <cstring>
#include <new>

#include "files/CocoaFileBrowser.h"

bool createFolder(const char* path) {
    return path != nullptr && ::mkdir(path, 0777) == 0;
}

char* getSharedFolder() {
    constexpr char kUsersFolder[] = "/home";
    struct stat status {};
    if (::stat(kUsersFolder, &status) != 0 || !S_ISDIR(status.st_mode)) return nullptr;
    char* const copy = new (std::nothrow) char[sizeof kUsersFolder];
    if (copy != nullptr) std::memcpy(copy, kUsersFolder, sizeof kUsersFolder);
    return copy;
}

char* runCocoaOpenFileBrowser(const char*) {
    return nullptr;
}
