#include "instance/InstanceIdentity.h"

#include <atomic>
#include <mutex>

namespace Shell {

namespace {

std::uint32_t nextSeed() {
    static std::mutex mutex;
    static std::uint32_t a = 0x6D656C6F; // any start but two zeros
    static std::uint32_t b = 0x6E766F78;
    const std::lock_guard lock(mutex);
    const std::uint32_t t = a ^ (a << 10); // these three shifts run through all 2^64 - 1 states
    a = b;
    b = (b ^ (b >> 10)) ^ (t ^ (t >> 13));
    return b;
}

} // namespace

InstanceIdentity InstanceIdentity::next() {
    static std::atomic<int> instances{0};
    return {.number = instances.fetch_add(1, std::memory_order_relaxed) + 1, .seed = nextSeed()};
}

} // namespace Shell
