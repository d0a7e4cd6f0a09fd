#include "model/MidiRouter.h"

#include "model/Programs.h"

#include <utility>

namespace Model {

namespace {

enum Kind : int {
    kNoteOff = 0x80,
    kNoteOn = 0x90,
    kController = 0xB0,
    kProgramChange = 0xC0,
    kPitchBend = 0xE0,
    kSystem = 0xF0,
};

constexpr int kSustainController = 64;
constexpr int kFirstModeMessage = 120; // all sound off, reset, all notes off: no controllers in truth
constexpr int kBendCentre = 8192;
constexpr float kLargestData = 127;

} // namespace

MidiRoute MidiRouter::route(const MidiMapping& mapping, MidiMessage message) noexcept {
    if (message.status < kNoteOff || message.status >= kSystem) {
        return {};
    }
    message.data1 &= 127;
    message.data2 &= 127;
    Channel& channel = channels_[message.status & 15];
    const bool heard = mapping.hearsChannel(message.status & 15);
    switch (message.status & 0xF0) {
    case kNoteOn:
        return message.data2 > 0 ? noteOn(mapping, channel, message.data1, heard)
                                 : noteOff(channel, message.data1);
    case kNoteOff:
        return noteOff(channel, message.data1);
    case kController:
        return controller(mapping, channel, message, heard);
    case kPitchBend:
        return pitchBend(channel, message, heard);
    case kProgramChange:
        if (heard && mapping.programChanges() && message.data1 < Programs::kCount) {
            return {.program = message.data1};
        }
        return {};
    default:
        return {}; // pressure moves nothing here
    }
}

void MidiRouter::reset() noexcept {
    channels_ = {};
}

MidiRoute MidiRouter::noteOn(const MidiMapping& mapping, Channel& channel, int note, bool heard) noexcept {
    if (!heard) {
        return {};
    }
    if (const int program = mapping.programOfKey(note); program >= 0) {
        return {.program = program};
    }
    channel.notes[static_cast<std::size_t>(note)] = true;
    return {.toEngine = true};
}

MidiRoute MidiRouter::noteOff(Channel& channel, int note) noexcept {
    const bool sounding = channel.notes[static_cast<std::size_t>(note)];
    channel.notes[static_cast<std::size_t>(note)] = false;
    return {.toEngine = sounding};
}

MidiRoute MidiRouter::controller(const MidiMapping& mapping, Channel& channel, MidiMessage message,
                                 bool heard) noexcept {
    MidiRoute route;
    route.parameter = heard ? mapping.parameterOf(message.data1) : ControllerAssignments::kNoParameter;
    route.value = static_cast<float>(message.data2) / kLargestData;
    // A controller that moves a parameter does that alone, but a mode message is always obeyed.
    route.toEngine = heard && (route.parameter < 0 || message.data1 >= kFirstModeMessage);
    if (message.data1 == kSustainController) {
        route.toEngine = route.toEngine || (message.data2 == 0 && channel.sustain);
        channel.sustain = route.toEngine ? message.data2 > 0 : channel.sustain;
    }
    return route;
}

MidiRoute MidiRouter::pitchBend(Channel& channel, MidiMessage message, bool heard) noexcept {
    const bool centred = message.data1 + message.data2 * 128 == kBendCentre;
    const bool toEngine = heard || (centred && channel.bend);
    channel.bend = toEngine ? !centred : channel.bend;
    return {.toEngine = toEngine};
}

} // namespace Model
