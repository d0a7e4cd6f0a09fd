#include "model/MidiMapping.h"

#include "model/Programs.h"

#include <algorithm>

namespace Model {

namespace {

// As far as there are notes; a text may hold any number.
constexpr int kWidestBend = 128;

} // namespace

void MidiMapping::publish(const MidiConfig& config) noexcept {
    programChanges_.store(config.programChanges, kOrder);
    inputChannel_.store(config.inputChannel, kOrder);
    for (int controller = 0; controller < ControllerAssignments::kControllers; ++controller) {
        const int parameter = config.assignments.parameterOf(controller);
        parameters_[static_cast<std::size_t>(controller)].store(static_cast<std::int8_t>(parameter), kOrder);
    }
    pitchBendRange_.store(std::clamp(config.pitchBendRange, -kWidestBend, kWidestBend), kOrder);
    pitchBendHeldOnly_.store(config.pitchBendHeldOnly, kOrder);
    masterTuning_.store(config.masterTuning, kOrder);
    programKeysBaseNote_.store(config.programKeysEnabled ? config.programKeysBaseNote : kNoKeys, kOrder);
}

int MidiMapping::programOfKey(int note) const noexcept {
    const int program = note - programKeysBaseNote_.load(kOrder);
    return program >= 0 && program < Programs::kCount ? program : -1;
}

} // namespace Model
