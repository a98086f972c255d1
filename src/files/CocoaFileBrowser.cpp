// The platform operations of CocoaFileBrowser.h through Foundation and AppKit.

#include "files/CocoaFileBrowser.h"

#include <new>

#include "files/ObjcMessages.h"

extern "C" id NSSearchPathForDirectoriesInDomains(unsigned long directory, unsigned long domains,
                                                  BOOL expandTilde);

namespace {

constexpr unsigned long kUserDirectory = 7;    // NSUserDirectory
constexpr unsigned long kLocalDomainMask = 2;  // NSLocalDomainMask
constexpr long kOkButton = 1;

// A string object's UTF-8 bytes in a new array, or null.
char* newUtf8(id text) {
    if (text == nullptr) return nullptr;
    const auto room =
        objc::send<unsigned long>(text, "lengthOfBytesUsingEncoding:", objc::kUtf8) + 1;
    char* bytes = new (std::nothrow) char[room];
    if (bytes == nullptr) return nullptr;
    if (objc::send<BOOL>(text, "getCString:maxLength:encoding:", bytes, room, objc::kUtf8))
        return bytes;
    delete[] bytes;
    return nullptr;
}

}  // namespace

bool createFolder(const char* path) {
    if (path == nullptr) return false;
    const objc::Pool pool;
    const id folder = objc::string(path);
    if (folder == nullptr) return false;  // not UTF-8, which Foundation would answer by raising
    id ignoredError = nullptr;
    const id manager = objc::send<id>(objc::classNamed("NSFileManager"), "defaultManager");
    return objc::send<BOOL>(
        manager, "createDirectoryAtPath:withIntermediateDirectories:attributes:error:", folder,
        BOOL{0}, id{nullptr}, &ignoredError);
}

char* getSharedFolder() {
    const objc::Pool pool;
    const id folders =
        NSSearchPathForDirectoriesInDomains(kUserDirectory, kLocalDomainMask, BOOL{1});
    return newUtf8(objc::send<id>(folders, "lastObject"));
}

char* runCocoaOpenFileBrowser(const char* title) {
    if (title == nullptr) return nullptr;
    const objc::Pool pool;
    const id heading = objc::string(title);
    if (heading == nullptr) return nullptr;
    const objc::Owned panel(
        objc::send<id>(objc::send<id>(objc::classNamed("NSOpenPanel"), "alloc"), "init"));
    objc::send<void>(panel.get(), "setTitle:", heading);
    objc::send<void>(panel.get(), "setCanChooseDirectories:", BOOL{0});
    objc::send<void>(panel.get(), "setCanChooseFiles:", BOOL{1});
    objc::send<void>(panel.get(), "setAllowsMultipleSelection:", BOOL{0});

    const objc::Owned types(objc::sendList(objc::send<id>(objc::classNamed("NSArray"), "alloc"),
                                           "initWithObjects:", objc::string("vws"),
                                           objc::string("VWS")));
    if (objc::send<long>(panel.get(), "runModalForTypes:", types.get()) != kOkButton)
        return nullptr;
    return newUtf8(objc::send<id>(panel.get(), "filename"));
}
