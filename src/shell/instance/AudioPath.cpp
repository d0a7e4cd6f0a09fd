#include "instance/AudioPath.h"

#include <algorithm>
#include <cmath>

namespace Shell {

namespace {

constexpr int kNothingLearned = -1;
constexpr int kLearnedKey = 256; // added to a key's number

constexpr Engine::MidiEvent kAllNotesOff = {.status = 0xB0, .data1 = 123};
constexpr int kFirstModeMessage = 120; // not a controller that anybody would assign

constexpr double kSecondsPerMinute = 60;

Engine::ParameterValues valuesOf(const Model::AtomicPatch& patch) noexcept {
    using namespace Parameters;
    return {patch.value(Id::sampleRate), patch.value(Id::sync),     patch.value(Id::frameRate),
            patch.value(Id::midi),       patch.value(Id::pitch),    patch.value(Id::tracking),
            patch.value(Id::detune),     patch.value(Id::noiseAdjust), patch.value(Id::mix),
            patch.value(Id::legacyMode)};
}

void silence(const AudioBuffers& buffers) noexcept {
    for (int channel = 0; channel < buffers.outChannels && !buffers.adding; ++channel) {
        std::fill_n(buffers.out[channel], buffers.samples, 0.0f);
    }
}

} // namespace

AudioPath::AudioPath(Model::Programs& programs, const Model::MidiMapping& mapping)
    : programs_(programs), mapping_(mapping), learned_(kNothingLearned), engine_(feedbacks_) {}

void AudioPath::setSampleRate(double hertz) {
    const EngineGate::Stay stay(gate_);
    engine_.setSampleRate(hertz);
    sampleRate_.store(hertz, std::memory_order_relaxed);
    forget();
}

void AudioPath::reset() {
    const EngineGate::Stay stay(gate_);
    engine_.reset();
    forget();
}

void AudioPath::forget() noexcept {
    router_.reset();
    received_.drain([](const Engine::MidiEvent&) {});
    injected_.drain([](const Engine::MidiEvent&) {});
    engineEventCount_ = 0;
    lastSongPosition_.reset();
}

int AudioPath::latencySamples() const noexcept {
    return engine_.latencySamples(programs_.currentPatch().value(Parameters::sampleRate));
}

void AudioPath::inject(Model::MidiMessage message) noexcept {
    injected_.push({.status = message.status, .data1 = message.data1, .data2 = message.data2});
}

void AudioPath::process(const AudioBuffers& buffers, const HostTransport& host) noexcept {
    if (buffers.inChannels == 0 || !gate_.tryEnter()) {
        silence(buffers);
        return;
    }
    followTransport(host);
    const bool lost = takeEvents();
    int position = 0;
    for (std::size_t i = 0; i < eventCount_; ++i) {
        Engine::MidiEvent event = events_[i];
        event.sampleOffset = std::clamp(event.sampleOffset, position, std::max(buffers.samples, position));
        const Model::MidiMessage message = {event.status, event.data1, event.data2};
        const bool teaches = learn(message);
        Model::MidiRoute route = router_.route(mapping_, message);
        if (teaches) { // and does nothing that it has been assigned to before
            route.parameter = Model::ControllerAssignments::kNoParameter;
            route.program = -1;
        }
        if (route.parameter >= 0 || route.program >= 0) {
            runTo(buffers, position, event.sampleOffset);
            apply(route);
        }
        if (route.toEngine && engineEventCount_ < kMostEvents) {
            engineEvents_[engineEventCount_++] = event;
        }
    }
    runTo(buffers, position, buffers.samples);
    if (lost && engineEventCount_ < engineEvents_.size()) {
        engineEvents_[engineEventCount_++] = kAllNotesOff; // among what is lost may be the end of a note
    }
    for (std::size_t i = 0; i < engineEventCount_; ++i) {
        engineEvents_[i].sampleOffset = 0; // timed behind this block's end: the next one begins with it
    }
    gate_.leave();
}

// A host that stands still may go on telling where. Frames follow the song only while it moves; else they
// would be thrown back to the same point block after block.
void AudioPath::followTransport(const HostTransport& host) noexcept {
    if (host.tempo && std::isfinite(*host.tempo) && *host.tempo > 0) {
        transport_.tempo = *host.tempo;
    }
    transport_.songPosition.reset();
    if (host.songPosition && std::isfinite(*host.songPosition)) {
        if (host.playing || lastSongPosition_ != host.songPosition) {
            transport_.songPosition = host.songPosition;
        }
        lastSongPosition_ = host.songPosition;
    }
}

bool AudioPath::takeEvents() noexcept {
    eventCount_ = 0;
    injected_.drain([this](const Engine::MidiEvent& event) { sortIn(event); });
    received_.drain([this](const Engine::MidiEvent& event) { sortIn(event); });
    const bool lostReceived = received_.takeOverflow();
    return injected_.takeOverflow() || lostReceived;
}

// Hosts send events in order, nearly always.
void AudioPath::sortIn(const Engine::MidiEvent& event) noexcept {
    if (eventCount_ == kMostEvents) {
        return;
    }
    std::size_t at = eventCount_++;
    for (; at > 0 && events_[at - 1].sampleOffset > event.sampleOffset; --at) {
        events_[at] = events_[at - 1];
    }
    events_[at] = event;
}

void AudioPath::apply(const Model::MidiRoute& route) noexcept {
    if (route.parameter >= 0) {
        const ControllerRange& range = controllerRanges_[static_cast<std::size_t>(route.parameter)];
        const float from = range.from.load(std::memory_order_relaxed);
        const float to = range.to.load(std::memory_order_relaxed);
        programs_.currentPatch().setValue(route.parameter, from + (to - from) * route.value);
        moved_.fetch_or(1u << route.parameter, std::memory_order_release);
    }
    if (route.program >= 0) {
        programs_.select(route.program);
        switched_.store(true, std::memory_order_release);
    }
}

// The engine glides and ramps across what it is given at once, so that is all there is until `end`.
void AudioPath::runTo(const AudioBuffers& buffers, int& position, int end) noexcept {
    if (position == end) {
        return;
    }
    Engine::Block block = blockAt(position);
    std::size_t due = 0;
    for (; due < engineEventCount_ && engineEvents_[due].sampleOffset < end; ++due) {
        engineEvents_[due].sampleOffset -= position;
    }
    block.midiEvents = {engineEvents_.data(), due};
    block.monoOutput = buffers.outChannels == 1;
    block.adding = buffers.adding;
    const float* const in[] = {buffers.in[0] + position, buffers.in[buffers.inChannels - 1] + position};
    float* const out[] = {buffers.out[0] + position, buffers.out[buffers.outChannels - 1] + position};
    engine_.process(in, out, end - position, block);
    position = end;

    std::copy(engineEvents_.begin() + static_cast<std::ptrdiff_t>(due),
              engineEvents_.begin() + static_cast<std::ptrdiff_t>(engineEventCount_), engineEvents_.begin());
    engineEventCount_ -= due;
}

Engine::Block AudioPath::blockAt(int position) const noexcept {
    Engine::Block block;
    block.parameters = valuesOf(programs_.currentPatch());
    block.transport = transport_;
    if (block.transport.songPosition) {
        const double beatsPerSample = transport_.tempo / kSecondsPerMinute / sampleRate();
        *block.transport.songPosition += position * beatsPerSample;
    }
    block.midiSettings = {.bendRangeSemitones = mapping_.pitchBendRange(),
                          .bendHeldOnly = mapping_.pitchBendHeldOnly(),
                          .masterTuningHz = mapping_.masterTuning()};
    block.bypassed = bypassed();
    return block;
}

void AudioPath::setControllerRange(int parameter, float from, float to) noexcept {
    ControllerRange& range = controllerRanges_[static_cast<std::size_t>(parameter)];
    range.from.store(from, std::memory_order_relaxed);
    range.to.store(to, std::memory_order_relaxed);
}

void AudioPath::setLearning(bool on) noexcept {
    learned_.store(kNothingLearned, std::memory_order_relaxed);
    learning_.store(on, std::memory_order_relaxed);
}

std::optional<LearnedMidi> AudioPath::takeLearned() noexcept {
    const int learned = learned_.exchange(kNothingLearned, std::memory_order_relaxed);
    if (learned == kNothingLearned) {
        return std::nullopt;
    }
    return learned < kLearnedKey ? LearnedMidi{LearnedMidi::Kind::controller, learned}
                                 : LearnedMidi{LearnedMidi::Kind::key, learned - kLearnedKey};
}

bool AudioPath::learn(Model::MidiMessage message) noexcept {
    if (!learning_.load(std::memory_order_relaxed) || !mapping_.hearsChannel(message.status & 15)) {
        return false;
    }
    const int kind = message.status & 0xF0;
    const int number = message.data1 & 127;
    int nothing = kNothingLearned;
    if (kind == 0xB0 && number < kFirstModeMessage) {
        return learned_.compare_exchange_strong(nothing, number, std::memory_order_relaxed);
    }
    if (kind == 0x90 && (message.data2 & 127) > 0) {
        return learned_.compare_exchange_strong(nothing, kLearnedKey + number, std::memory_order_relaxed);
    }
    return false;
}

} // namespace Shell
