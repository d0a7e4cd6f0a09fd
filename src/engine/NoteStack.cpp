#include "engine/NoteStack.h"

#include <algorithm>
#include <cmath>

namespace Engine {

namespace {

enum Message : std::uint8_t { noteOff = 0x80, noteOn = 0x90, controlChange = 0xb0, pitchBend = 0xe0 };

enum Controller : std::uint8_t {
    sustainPedal = 64,
    allSoundOff = 120,
    resetAllControllers = 121,
    allNotesOff = 123
};

constexpr int kBendCentre = 8192;
// Up and down have 8191 and 8192 steps; each scale reaches a whole 1 at its end.
constexpr float kBendUpScale = 0.00012208521f;   // 1 / 8191
constexpr float kBendDownScale = 0.00012207031f; // 1 / 8192
constexpr float kPlainBendRange = 12;            // semitones: a full bend is one octave
constexpr double kConcertPitchHz = 440;

} // namespace

bool NoteStack::handle(const MidiEvent& event) noexcept {
    const auto data1 = static_cast<std::uint8_t>(event.data1 & 0x7f);
    const auto data2 = static_cast<std::uint8_t>(event.data2 & 0x7f);
    switch (event.status & 0xf0) {
    case noteOn:
        if (data2 > 0) {
            return press(data1);
        }
        release(data1);
        break;
    case noteOff:
        release(data1);
        break;
    case controlChange:
        control(data1, data2);
        break;
    case pitchBend: {
        const int v = (data2 << 7 | data1) - kBendCentre;
        bend_ = static_cast<float>(v) * (v >= 0 ? kBendUpScale : kBendDownScale);
        break;
    }
    default:
        break;
    }
    return false;
}

bool NoteStack::press(std::uint8_t note) noexcept {
    if (count_ == kMaxHeld) {
        return false;
    }
    notes_[static_cast<std::size_t>(count_)] = note;
    return ++count_ == 1;
}

void NoteStack::release(std::uint8_t note) noexcept {
    const auto end = std::remove(notes_.begin(), notes_.begin() + count_, note);
    count_ = static_cast<int>(end - notes_.begin());
}

void NoteStack::control(std::uint8_t controller, std::uint8_t value) noexcept {
    switch (controller) {
    case sustainPedal:
        sustain_ = value != 0;
        break;
    case allSoundOff:
    case allNotesOff:
        count_ = 0;
        break;
    case resetAllControllers:
        bend_ = 0;
        sustain_ = false;
        break;
    default:
        break;
    }
}

void NoteStack::settle() noexcept {
    if (count_ > 0) {
        current_ = notes_[static_cast<std::size_t>(count_ - 1)];
    }
}

float NoteStack::pitch(const MidiSettings& settings) const noexcept {
    const float range = static_cast<float>(settings.bendRangeSemitones) / kPlainBendRange;
    const float bend = settings.bendHeldOnly && !anyHeld() ? 0 : bend_ * range;
    const auto tuning = static_cast<double>(settings.masterTuningHz);
    const bool tuned = tuning > 0 && std::isfinite(tuning);
    const auto offset = tuned ? static_cast<float>(std::log2(tuning / kConcertPitchHz)) : 0.0f;
    return static_cast<float>(current_ - 60) / 12 + bend + offset;
}

} // namespace Engine
