// The sixteen program slots and which of them sounds. Slots live as long as this object and never move; their
// values and the current index are atomics, so the audio thread reads them without asking.
#pragma once

#include "model/Patch.h"

#include <array>
#include <atomic>

namespace Model {

class Programs {
public:
    static constexpr int kCount = 16;

    AtomicPatch& operator[](int program) { return slots_.at(static_cast<std::size_t>(program)); }
    const AtomicPatch& operator[](int program) const { return slots_.at(static_cast<std::size_t>(program)); }

    // [any]
    int current() const noexcept { return current_.load(std::memory_order_relaxed); }
    // [any] Numbers beyond the slots change nothing.
    void select(int program) noexcept {
        if (program >= 0 && program < kCount) {
            current_.store(program, std::memory_order_relaxed);
        }
    }

    // [any] for values, [main] for the rest
    AtomicPatch& currentPatch() noexcept { return slots_[static_cast<std::size_t>(current())]; }
    const AtomicPatch& currentPatch() const noexcept { return slots_[static_cast<std::size_t>(current())]; }

private:
    std::array<AtomicPatch, kCount> slots_;
    std::atomic<int> current_{0};
};

} // namespace Model
