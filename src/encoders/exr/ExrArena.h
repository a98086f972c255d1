#pragma once
// ExrArena: the memory that tinyexr allocates while it loads a file. The loader leaks some blocks,
// frees some twice and does not check for null. The arena keeps track of each block, frees what is
// left at the end and throws std::bad_alloc when there is no memory.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <unordered_set>

class ExrArena {
public:
    ExrArena() = default;
    ExrArena(const ExrArena&) = delete;
    ExrArena& operator=(const ExrArena&) = delete;
    ~ExrArena() {
        for (void* block : blocks_)
            std::free(block);
    }

    void* allocate(std::size_t bytes) { return keep(std::malloc(bytes > 0 ? bytes : 1)); }
    void* allocateZeroed(std::size_t count, std::size_t size) {
        return keep(std::calloc(count > 0 ? count : 1, size > 0 ? size : 1));
    }
    char* copyOf(const char* text) {
        const std::size_t bytes = std::strlen(text) + 1;
        return static_cast<char*>(std::memcpy(allocate(bytes), text, bytes));
    }
    // Frees a block, unless it has been freed before.
    void release(void* block) {
        if (blocks_.erase(block) > 0) std::free(block);
    }

private:
    void* keep(void* block) {
        if (block == nullptr) throw std::bad_alloc();
        try {
            blocks_.insert(block);
        } catch (...) {
            std::free(block);
            throw;
        }
        return block;
    }

    std::unordered_set<void*> blocks_;
};
