// What tells the instances of one process apart.
#pragma once

#include <cstdint>

namespace Shell {

struct InstanceIdentity {
    int number;         // 1 for the first
    std::uint32_t seed; // for whatever is to differ between instances

    static InstanceIdentity next();
};

} // namespace Shell
