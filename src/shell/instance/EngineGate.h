// Lets one thread at a time at the engine. The audio thread never waits for it: while the main thread rebuilds
// the engine, whose histories are gone anyway, a block is silent.
#pragma once

#include <atomic>
#include <thread>

namespace Shell {

class EngineGate {
public:
    // [any]
    bool tryEnter() noexcept { return !taken_.exchange(true, std::memory_order_acquire); }
    void leave() noexcept { taken_.store(false, std::memory_order_release); }

    // [main] Waits for the end of a block at most.
    class Stay {
    public:
        explicit Stay(EngineGate& gate) : gate_(gate) {
            while (!gate_.tryEnter()) {
                std::this_thread::yield();
            }
        }
        ~Stay() { gate_.leave(); }
        Stay(const Stay&) = delete;
        Stay& operator=(const Stay&) = delete;

    private:
        EngineGate& gate_;
    };

private:
    std::atomic<bool> taken_{false};
};

} // namespace Shell
