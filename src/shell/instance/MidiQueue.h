// MIDI events on their way to the audio thread: one thread pushes, one takes, neither waits.
#pragma once

#include "engine/Midi.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace Shell {

class MidiQueue {
public:
    static constexpr std::size_t kCapacity = 2048; // far more than a MIDI cable carries in any block

    // What does not fit is dropped; takeOverflow tells.
    void push(const Engine::MidiEvent& event) noexcept {
        const std::size_t end = end_.load(std::memory_order_relaxed);
        if (end - begin_.load(std::memory_order_acquire) == kCapacity) {
            overflow_.store(true, std::memory_order_relaxed);
            return;
        }
        events_[end % kCapacity] = event;
        end_.store(end + 1, std::memory_order_release);
    }

    // Hands every waiting event to `take`, the oldest first.
    template <typename Take> void drain(Take take) noexcept {
        std::size_t begin = begin_.load(std::memory_order_relaxed);
        const std::size_t end = end_.load(std::memory_order_acquire);
        for (; begin != end; ++begin) {
            take(events_[begin % kCapacity]);
        }
        begin_.store(begin, std::memory_order_release);
    }

    // Whether something has been dropped since the last time.
    bool takeOverflow() noexcept { return overflow_.exchange(false, std::memory_order_relaxed); }

private:
    std::array<Engine::MidiEvent, kCapacity> events_{};
    std::atomic<std::size_t> begin_{0}; // the taker's
    std::atomic<std::size_t> end_{0};   // the pusher's
    std::atomic<bool> overflow_{false};
};

} // namespace Shell
