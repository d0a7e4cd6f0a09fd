// The notes that are held on the keyboard, the pitch wheel and the sustain pedal, and the pitch they make.
#pragma once

#include "engine/Midi.h"

#include <array>

namespace Engine {

class NoteStack {
public:
    static constexpr int kMaxHeld = 32;

    // True when the event is a first note: one pressed while none was held.
    bool handle(const MidiEvent& event) noexcept;

    // After the events of a sample: the last note pressed sounds; with none held, the last one that sounded.
    void settle() noexcept;

    bool anyHeld() const noexcept { return count_ > 0; }
    bool sustained() const noexcept { return sustain_; }

    // Octaves relative to note 60.
    float pitch(const MidiSettings& settings) const noexcept;

private:
    bool press(std::uint8_t note) noexcept;
    void release(std::uint8_t note) noexcept;
    void control(std::uint8_t controller, std::uint8_t value) noexcept;

    std::array<std::uint8_t, kMaxHeld> notes_{}; // in the order they were pressed
    int count_ = 0;
    int current_ = 60;
    bool sustain_ = false;
    float bend_ = 0; // -1..1
};

} // namespace Engine
