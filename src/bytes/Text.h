#pragma once
// Texts that go into a memory block of the host's.

#include <cstring>
#include <string_view>

// Copies a text and a terminating NUL. The host gives blocks large enough for any path.
inline void copyText(char* block, std::string_view text) {
    std::memcpy(block, text.data(), text.size());
    block[text.size()] = '\0';
}
