#include "platform/LargePages.h"

#include <sys/mman.h>

#include <cstdint>

namespace Platform {

namespace {

constexpr std::uintptr_t kSmallPage = 4096;
constexpr std::size_t kWorthwhile = std::size_t{4} << 20; // two large pages at least

} // namespace

void preferLargePages(void* begin, std::size_t size) {
    if (size < kWorthwhile) {
        return;
    }
    const std::uintptr_t skipped = -reinterpret_cast<std::uintptr_t>(begin) % kSmallPage;
    madvise(static_cast<char*>(begin) + skipped, (size - skipped) / kSmallPage * kSmallPage, MADV_HUGEPAGE);
}

} // namespace Platform
