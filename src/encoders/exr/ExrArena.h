#pragma once
// ExrArena: the memory that tinyexr takes while it loads a file. The loader forgets some of it,
// frees some of it twice and does not ask whether it got any; here it is counted, given back at the
// end and an empty answer becomes an exception.

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

    void* take(std::size_t bytes) { return keep(std::malloc(bytes > 0 ? bytes : 1)); }
    void* takeZeroed(std::size_t count, std::size_t size) {
        return keep(std::calloc(count > 0 ? count : 1, size > 0 ? size : 1));
    }
    char* takeCopy(const char* text) {
        const std::size_t bytes = std::strlen(text) + 1;
        return static_cast<char*>(std::memcpy(take(bytes), text, bytes));
    }
    // A block that is not in use any more is left alone.
    void give(void* block) {
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
