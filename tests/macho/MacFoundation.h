#pragma once
// MacFoundation: the parts of Objective-C and Foundation that the exports need: strings, the default file
// manager, autorelease pools. Any other message is printed and ends the program.

#include <cstdint>

namespace mac {

struct Object;

Object* classNamed(const char* name);
const char* selector(const char* name);

// Sends a message with up to four arguments, none of them variadic.
std::uintptr_t send(Object* receiver, const char* selector, std::uintptr_t first,
                    std::uintptr_t second, std::uintptr_t third, std::uintptr_t fourth);

// Returns a list of folders of which "/Users" is the last.
Object* searchPath(unsigned long directory, unsigned long domains, signed char expandTilde);

// The number of objects alive: 0 between calls of the exports, which release what they create.
std::size_t liveObjects();

}
