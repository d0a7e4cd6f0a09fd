// A MIDI configuration as the audio thread sees it: one atomic for each setting, so that publishing a new
// configuration never makes it wait. For an instant it may see some settings of the old and some of the new
// one; no setting depends on another in a way that this could harm.
#pragma once

#include "model/MidiConfig.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace Model {

class MidiMapping {
public:
    MidiMapping() { publish({}); }

    // [main]
    void publish(const MidiConfig& config) noexcept;

    // [any]
    bool programChanges() const noexcept { return programChanges_.load(kOrder); }
    bool hearsChannel(int channel) const noexcept {
        const int wanted = inputChannel_.load(kOrder);
        return wanted == MidiConfig::kAnyChannel || wanted == channel;
    }
    int parameterOf(int controller) const noexcept {
        return parameters_[static_cast<std::size_t>(controller)].load(kOrder);
    }
    int pitchBendRange() const noexcept { return pitchBendRange_.load(kOrder); }
    bool pitchBendHeldOnly() const noexcept { return pitchBendHeldOnly_.load(kOrder); }
    float masterTuning() const noexcept { return masterTuning_.load(kOrder); }

    // The program that a key stands for; -1 when it is played as a note.
    int programOfKey(int note) const noexcept;

private:
    // The settings stand each for itself: nothing else is published with them.
    static constexpr auto kOrder = std::memory_order_relaxed;
    static constexpr int kNoKeys = 128; // a base note that no key reaches

    std::atomic<bool> programChanges_;
    std::atomic<int> inputChannel_;
    std::array<std::atomic<std::int8_t>, ControllerAssignments::kControllers> parameters_;
    std::atomic<int> pitchBendRange_;
    std::atomic<bool> pitchBendHeldOnly_;
    std::atomic<float> masterTuning_;
    std::atomic<int> programKeysBaseNote_; // kNoKeys when keys do not switch programs
};

} // namespace Model
