// Decides what an incoming MIDI message is for. The effect instance asks on the audio thread and carries the
// answer out.
//
// What has been begun is always ended: a note off, a released pedal and a bend that returns to the centre
// reach the engine when the engine has heard the beginning, whatever the configuration says by then. Nothing
// hangs because somebody has changed the channel with a key down.
#pragma once

#include "model/MidiMapping.h"

#include <array>
#include <bitset>
#include <cstdint>

namespace Model {

struct MidiMessage {
    std::uint8_t status = 0;
    std::uint8_t data1 = 0;
    std::uint8_t data2 = 0;
};

struct MidiRoute {
    bool toEngine = false; // notes, sustain, bend
    int parameter = -1;    // to be set to `value`
    float value = 0;       // 0..1
    int program = -1;      // to be switched to
};

class MidiRouter {
public:
    // [audio]
    MidiRoute route(const MidiMapping& mapping, MidiMessage message) noexcept;

    // [audio] The engine has forgotten all notes, sustain and bend.
    void reset() noexcept;

private:
    // What the engine holds from one channel.
    struct Channel {
        std::bitset<128> notes;
        bool sustain = false;
        bool bend = false;
    };

    static MidiRoute noteOn(const MidiMapping& mapping, Channel& channel, int note, bool heard) noexcept;
    static MidiRoute noteOff(Channel& channel, int note) noexcept;
    static MidiRoute controller(const MidiMapping& mapping, Channel& channel, MidiMessage message,
                                bool heard) noexcept;
    static MidiRoute pitchBend(Channel& channel, MidiMessage message, bool heard) noexcept;

    std::array<Channel, 16> channels_{};
};

} // namespace Model
