// MIDI as it reaches the engine.
#pragma once

#include <cstdint>

namespace Engine {

struct MidiEvent {
    std::int32_t sampleOffset = 0; // from the start of the block; events are handled in the order given
    std::uint8_t status = 0;
    std::uint8_t data1 = 0;
    std::uint8_t data2 = 0;
};

// How MIDI moves the pitch, from the instance's MIDI configuration.
struct MidiSettings {
    int bendRangeSemitones = 12;
    bool bendHeldOnly = false;
    float masterTuningHz = 440;
};

} // namespace Engine
