// All that happens on the audio thread: MIDI is routed, parameters are read from the current program, blocks
// are cut where MIDI moves something, the engine runs. The main thread learns afterwards what MIDI has done.
#pragma once

#include "instance/EngineGate.h"
#include "instance/Host.h"
#include "instance/MidiQueue.h"

#include "engine/VoiceEngine.h"
#include "model/MidiRouter.h"
#include "model/Programs.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

namespace Shell {

// A host's buffers for a block. One channel or two on either side; outputs may be inputs. Without an input
// channel the outputs are silent.
struct AudioBuffers {
    const float* const* in = nullptr;
    int inChannels = 2;
    float* const* out = nullptr;
    int outChannels = 2;
    int samples = 0;
    bool adding = false; // to what the outputs hold, instead of replacing it
};

// What has come in while MIDI learn is on.
struct LearnedMidi {
    enum class Kind { controller, key } kind;
    int number;

    bool operator==(const LearnedMidi&) const = default;
};

class AudioPath {
public:
    AudioPath(Model::Programs& programs, const Model::MidiMapping& mapping);

    // [main] Both forget everything that sounds and every event that waits. setSampleRate refuses what makes
    // no sense with std::invalid_argument.
    void setSampleRate(double hertz);
    void reset();

    // [any]
    double sampleRate() const noexcept { return sampleRate_.load(std::memory_order_relaxed); }
    void setBypassed(bool bypassed) noexcept { bypassed_.store(bypassed, std::memory_order_relaxed); }
    bool bypassed() const noexcept { return bypassed_.load(std::memory_order_relaxed); }
    int latencySamples() const noexcept;
    const Engine::Feedbacks& feedbacks() const noexcept { return feedbacks_; }

    // For the next block. [audio] what the host plays, [main] what the editor does.
    void receive(const Engine::MidiEvent& event) noexcept { received_.push(event); }
    void inject(Model::MidiMessage message) noexcept;

    // [audio]
    void process(const AudioBuffers& buffers, const HostTransport& host) noexcept;

    // [main] What MIDI has done since the last time: a bit for each parameter, and whether the program was
    // switched.
    std::uint32_t takeMovedParameters() noexcept { return moved_.exchange(0, std::memory_order_acquire); }
    bool takeProgramSwitch() noexcept { return switched_.exchange(false, std::memory_order_acquire); }

    // [main] The values of a parameter at the two ends of the controller that moves it: 0 and 1 unless told
    // otherwise.
    void setControllerRange(int parameter, float from, float to) noexcept;

    // [main] While on, the first controller or key that is heard waits to be taken, then the next.
    void setLearning(bool on) noexcept;
    std::optional<LearnedMidi> takeLearned() noexcept;

private:
    static constexpr std::size_t kMostEvents = 2 * MidiQueue::kCapacity;

    void forget() noexcept;
    bool takeEvents() noexcept; // true: some were lost on the way
    void sortIn(const Engine::MidiEvent& event) noexcept;
    bool learn(Model::MidiMessage message) noexcept; // true: it is what will be learned
    void apply(const Model::MidiRoute& route) noexcept;
    void runTo(const AudioBuffers& buffers, int& position, int end) noexcept;
    Engine::Block blockAt(int position) const noexcept;
    void followTransport(const HostTransport& host) noexcept;

    Model::Programs& programs_;
    const Model::MidiMapping& mapping_;
    std::atomic<double> sampleRate_{Engine::VoiceEngine::kInitialSampleRate};
    std::atomic<bool> bypassed_{false};
    std::atomic<std::uint32_t> moved_{0};
    std::atomic<bool> switched_{false};
    struct ControllerRange {
        std::atomic<float> from{0};
        std::atomic<float> to{1};
    };
    std::array<ControllerRange, Parameters::kCount> controllerRanges_;
    std::atomic<bool> learning_{false};
    std::atomic<int> learned_; // packed; see the source
    MidiQueue received_;
    MidiQueue injected_;

    // Behind the gate.
    EngineGate gate_;
    Engine::Feedbacks feedbacks_;
    Engine::VoiceEngine engine_;
    Model::MidiRouter router_;
    Engine::Transport transport_;
    std::optional<double> lastSongPosition_;
    std::array<Engine::MidiEvent, kMostEvents> events_{}; // of this block, by time
    std::size_t eventCount_ = 0;
    std::array<Engine::MidiEvent, kMostEvents + 1> engineEvents_{}; // routed and not yet played, by time
    std::size_t engineEventCount_ = 0;
};

} // namespace Shell
