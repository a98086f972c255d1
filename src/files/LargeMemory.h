#pragma once
// LargeMemory: memory for whole files.

#include <cstddef>
#include <cstdint>
#include <memory>

// Memory that is written before it is read; null when there is too little. The system gives it in
// large pages where it has them: the first touch of each small page would take, together, several
// times as long as reading the file.
std::unique_ptr<std::uint8_t[]> largeMemory(std::size_t bytes);
