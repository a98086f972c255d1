#include "files/LargeMemory.h"

#include <sys/mman.h>

#include <new>

namespace {

// Less than this would seldom hold a whole large page.
[[maybe_unused]] constexpr std::size_t kWorthLargePages = std::size_t{4} << 20;

// No system's small pages are larger.
[[maybe_unused]] constexpr std::size_t kSmallPage = std::size_t{64} << 10;

// Nothing is lost where the system does not have them.
void askForLargePages([[maybe_unused]] std::uint8_t* memory, [[maybe_unused]] std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    if (bytes < kWorthLargePages) return;
    const std::size_t skipped = -reinterpret_cast<std::uintptr_t>(memory) % kSmallPage;
    ::madvise(memory + skipped, (bytes - skipped) / kSmallPage * kSmallPage, MADV_HUGEPAGE);
#endif
}

}  // namespace

std::unique_ptr<std::uint8_t[]> largeMemory(std::size_t bytes) {
    std::unique_ptr<std::uint8_t[]> memory(new (std::nothrow) std::uint8_t[bytes]);
    if (memory != nullptr) askForLargePages(memory.get(), bytes);
    return memory;
}
