#pragma once
// The built library as the host has it: loaded by its path, each export found by its name and
// called with the host's seven arguments.

#include <array>
#include <string>
#include <string_view>

// The arguments that an export may read; a test names the ones that matter.
struct Arguments {
    const char* text = nullptr;
    double value = 0.0;
    char* buffer1 = nullptr;
};

// Loads the library and unloads it at the end, so that each test has a library that was never
// called.
class Plugin {
public:
    Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin();

    // Calls an export and returns its status. The arguments that no export reads are unusable.
    float call(const char* exportName, const Arguments& arguments = {}) const;

    // The address of a symbol as the dynamic symbol table names it.
    void* symbol(const char* name) const;

private:
    void* library_;
};

// A host's memory block with a text: large enough for any path. What a call does not write stays.
class Block {
public:
    explicit Block(std::string_view text = "untouched");
    operator char*() { return bytes_.data(); }
    std::string text() const { return bytes_.data(); }

private:
    std::array<char, 4096> bytes_;
};
