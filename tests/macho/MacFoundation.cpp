#include "macho/MacFoundation.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace mac {

// An object, or the class of that name. Of a list there is only its last entry.
struct Object {
    std::string className;
    bool isClass = false;
    std::string text;
};

namespace {

using Word = std::uintptr_t;

struct Call {
    Object* receiver;
    Word first, second, third, fourth;
};

constexpr unsigned long kUserDirectory = 7;
constexpr unsigned long kLocalDomain = 2;

std::size_t living = 0;

// The objects that the innermost pool releases.
std::vector<Object*> pooled;

Object* newObject(const char* className, const std::string& text = {}) {
    ++living;
    return new Object{className, false, text};
}

void release(Object* object) {
    --living;
    delete object;
}

Object* inPool(Object* object) {
    pooled.push_back(object);
    return object;
}

Word word(const Object* object) {
    return reinterpret_cast<Word>(object);
}

const char* textAt(Word address) {
    return reinterpret_cast<const char*>(address);
}

Word newPool(const Call&) {
    return word(newObject("NSAutoreleasePool"));
}

Word drainPool(const Call& call) {
    for (Object* object : pooled)
        release(object);
    pooled.clear();
    release(call.receiver);
    return 0;
}

Word stringWithCString(const Call& call) {
    return word(inPool(newObject("NSString", textAt(call.first))));
}

Word lengthOfBytes(const Call& call) {
    return call.receiver->text.size();
}

// Arguments: destination, its size, encoding.
Word getCString(const Call& call) {
    const std::string& text = call.receiver->text;
    if (text.size() >= call.second) return 0;
    std::memcpy(reinterpret_cast<char*>(call.first), text.c_str(), text.size() + 1);
    return 1;
}

Word defaultManager(const Call&) {
    static Object manager{"NSFileManager", false, {}};
    return word(&manager);
}

Word createDirectory(const Call& call) {
    const auto* path = reinterpret_cast<const Object*>(call.first);
    return ::mkdir(path->text.c_str(), 0777) == 0 ? 1 : 0;
}

Word lastObject(const Call& call) {
    return word(inPool(newObject("NSString", call.receiver->text)));
}

// In the notation of Objective-C: + for messages to a class, - to an object.
const std::map<std::string, Word (*)(const Call&)> kMethods = {
    {"+[NSAutoreleasePool new]", newPool},
    {"-[NSAutoreleasePool drain]", drainPool},
    {"+[NSString stringWithCString:encoding:]", stringWithCString},
    {"-[NSString lengthOfBytesUsingEncoding:]", lengthOfBytes},
    {"-[NSString getCString:maxLength:encoding:]", getCString},
    {"+[NSFileManager defaultManager]", defaultManager},
    {"-[NSFileManager "
     "createDirectoryAtPath:withIntermediateDirectories:attributes:error:]",
     createDirectory},
    {"-[NSArray lastObject]", lastObject},
};

}  // namespace

Object* classNamed(const char* name) {
    static std::map<std::string, Object> classes;
    return &classes.try_emplace(name, Object{name, true, {}}).first->second;
}

const char* selector(const char* name) {
    static std::set<std::string> names;
    return names.insert(name).first->c_str();
}

std::uintptr_t send(Object* receiver, const char* selector, std::uintptr_t first,
                    std::uintptr_t second, std::uintptr_t third, std::uintptr_t fourth) {
    if (receiver == nullptr) return 0;
    const std::string message =
        (receiver->isClass ? "+[" : "-[") + receiver->className + " " + selector + "]";
    const auto method = kMethods.find(message);
    if (method == kMethods.end()) {
        std::fprintf(stderr, "no stand-in for %s\n", message.c_str());
        std::abort();
    }
    return method->second({receiver, first, second, third, fourth});
}

Object* searchPath(unsigned long directory, unsigned long domains, signed char) {
    const bool known = directory == kUserDirectory && domains == kLocalDomain;
    return inPool(newObject("NSArray", known ? "/Users" : ""));
}

std::size_t liveObjects() {
    return living;
}

}  // namespace mac
