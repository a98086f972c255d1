#pragma once
// Messages to Objective-C objects from plain C++, through the runtime's C interface, so that the
// code around them builds with any C++ compiler and against any Foundation.

#include <objc/message.h>
#include <objc/runtime.h>

namespace objc {

inline constexpr unsigned long kUtf8 = 4;  // NSUTF8StringEncoding

// The code that answers `name` for `receiver`, as a function of the given type.
template <typename Method>
Method implementation([[maybe_unused]] id receiver, [[maybe_unused]] SEL name) {
#ifdef __APPLE__
    return reinterpret_cast<Method>(objc_msgSend);
#else
    // Through void (*)(), which compilers take for "some function" and cast without a warning.
    return reinterpret_cast<Method>(reinterpret_cast<void (*)()>(objc_msg_lookup(receiver, name)));
#endif
}

// Sends `selector` to `receiver`. Result and arguments must have the types that the method
// declares.
template <typename Result, typename... Arguments>
Result send(id receiver, const char* selector, Arguments... arguments) {
    const SEL name = sel_registerName(selector);
    return implementation<Result (*)(id, SEL, Arguments...)>(receiver, name)(receiver, name,
                                                                             arguments...);
}

// The same for a method that takes a nil-terminated list of objects: arm64 passes all but the first
// of such arguments on the stack, so the call goes through a variadic type.
template <typename... Objects>
id sendList(id receiver, const char* selector, id first, Objects... rest) {
    const SEL name = sel_registerName(selector);
    return implementation<id (*)(id, SEL, id, ...)>(receiver, name)(receiver, name, first, rest...,
                                                                    id{nullptr});
}

inline id classNamed(const char* name) {
    return reinterpret_cast<id>(objc_getClass(name));
}

// A new string object that the innermost pool releases.
inline id string(const char* utf8) {
    return send<id>(classNamed("NSString"), "stringWithCString:encoding:", utf8, kUtf8);
}

// An object that this scope created and releases at its end.
class Owned {
public:
    explicit Owned(id object) : object_(object) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { send<void>(object_, "release"); }
    id get() const { return object_; }

private:
    id object_;
};

// Objects that nobody owns live until the pool around them is drained.
class Pool {
public:
    Pool() : pool_(send<id>(classNamed("NSAutoreleasePool"), "new")) {}
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;
    ~Pool() { send<void>(pool_, "drain"); }

private:
    id pool_;
};

}
