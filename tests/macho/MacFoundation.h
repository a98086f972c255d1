#pragma once
// MacFoundation: as much of Objective-C and of Foundation as the exports need: strings, the default
// file manager, autorelease pools. Any other message ends the program with its name.

#include <cstdint>

namespace mac {

struct Object;

Object* classNamed(const char* name);
const char* selector(const char* name);

// Answers a message with up to four arguments, none of them variadic.
std::uintptr_t send(Object* receiver, const char* selector, std::uintptr_t first,
                    std::uintptr_t second, std::uintptr_t third, std::uintptr_t fourth);

// The list of folders that has "/Users" as its last.
Object* searchPath(unsigned long directory, unsigned long domains, signed char expandTilde);

// How many objects live: none between calls of the exports, which release what they make.
std::size_t liveObjects();

}
