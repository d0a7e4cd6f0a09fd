#include "engine/VoiceEngine.h"

#include "engine/AlignedFloats.h"
#include "engine/CodecVoice.h"
#include "engine/DryDelay.h"
#include "engine/InputGuard.h"
#include "engine/InternalClock.h"
#include "engine/NoteStack.h"
#include "engine/OutputMix.h"
#include "engine/ParameterGlide.h"
#include "engine/RateConfiguration.h"

#include "parameters/ParameterTable.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

namespace Engine {

namespace {

constexpr int kRun = CodecVoice::kMaxRun; // host samples at a time; there are never more internal ones
constexpr double kSlowestHost = 1;
constexpr double kFastestHost = 1e7; // Hz: far beyond any converter, within what the delay lines can hold

constexpr double kBeatsPerWholeNote = 4;
constexpr float kTempoPerWholeNoteRate = 240; // beats a minute at which a whole note takes a second

ParameterValues clampNormalised(const ParameterValues& v) noexcept {
    using Parameters::clampNormalised;
    return {clampNormalised(v.sampleRate), clampNormalised(v.sync),        clampNormalised(v.frameRate),
            clampNormalised(v.midi),       clampNormalised(v.pitch),       clampNormalised(v.tracking),
            clampNormalised(v.detune),     clampNormalised(v.noiseAdjust), clampNormalised(v.mix),
            clampNormalised(v.legacyMode)};
}

float framesPerWholeNote(float frameRate) noexcept {
    return Parameters::kFramesPerWholeNote[static_cast<std::size_t>(Parameters::syncDivision(frameRate))];
}

} // namespace

// Everything that depends on the host's rate, made anew when it is set.
class VoiceEngine::State {
public:
    // Begins at the rate step `step`, as if a block had just asked for it.
    State(double hertz, int step, Feedbacks& feedbacks);

    void process(const float* const* in, float* const* out, int samples, const Block& block) noexcept;
    FrameRecord lastFrame() const noexcept;

    const std::array<RateConfiguration, kRateSteps>& rates() const noexcept { return rates_; }
    double hostRate() const noexcept { return hostRate_; }
    int step() const noexcept { return step_; }

private:
    // What holds for a whole block.
    struct BlockPlan {
        bool sync = false;
        bool midi = false;
        bool mono = false;
        float frameStep = 0;
        MidiSettings midiSettings;
        bool monoOutput = false;
        bool adding = false;
    };

    void beginBlock(const Block& block, int samples) noexcept;
    void setStep(int step) noexcept;
    void glideParameters(const ParameterValues& parameters, int samples) noexcept;
    float frameStep(const ParameterValues& parameters, const Transport& transport) const noexcept;
    std::size_t handleEvents(std::span<const MidiEvent> events, std::size_t next, int position) noexcept;
    void run(const float* const* in, float* const* out, int offset, int count) noexcept;
    void readInput(const float* const* in, int offset, int count) noexcept;
    void synthesise(int count) noexcept;
    void writeOutput(float* const* out, int offset, int count) noexcept;
    void joinOutput(float* const* out, int offset, int count) noexcept;
    bool frozen() const noexcept { return plan_.midi && notes_.sustained(); }
    VoiceControls controls() const noexcept;
    const RateConfiguration& rate() const noexcept { return rates_[static_cast<std::size_t>(step_)]; }

    double hostRate_;
    std::array<RateConfiguration, kRateSteps> rates_;
    int step_;
    bool started_ = false;
    BlockPlan plan_;
    GlidingParameters gliding_;
    NoteStack notes_;
    InternalClock clock_;
    CodecVoice voice_;
    std::array<DryDelay, 2> dryDelay_;
    OutputMix mix_;
    std::uint64_t samplesDone_ = 0;
    std::uint64_t frameSample_ = 0; // host samples done when the last frame was taken

    // Each channel's run of input begins at kBefore, behind the last sample of the run before.
    static constexpr int kBefore = 4;
    static constexpr int kRoom = 4; // for vectors that reach beyond the end
    using Run = std::array<float, kBefore + kRun + kRoom>;
    alignas(16) std::array<Run, 2> input_{};
    alignas(16) std::array<Run, 2> dry_{};
    alignas(16) std::array<float, 2 * (kRun + kRoom)> internal_{}; // output pairs at the internal rate
    alignas(16) std::array<float, 2 * (kRun + kRoom)> wet_{};      // the same at the host's rate
    std::array<std::array<float, kRun>, 2> mixed_{}; // for outputs that cannot be written at once
};

VoiceEngine::State::State(double hertz, int step, Feedbacks& feedbacks)
    : hostRate_(hertz), rates_(makeRateConfigurations(hertz)), step_(step), voice_(rates_, step, feedbacks),
      mix_(hertz) {
    const int longest = std::ranges::max(rates_, {}, &RateConfiguration::latency).latency;
    for (DryDelay& delay : dryDelay_) {
        delay = DryDelay(longest, kRun);
    }
}

void VoiceEngine::State::process(const float* const* in, float* const* out, int samples,
                                 const Block& block) noexcept {
    samples = std::max(samples, 0);
    beginBlock(block, samples);
    std::size_t next = 0;
    for (int position = 0; position < samples;) {
        next = handleEvents(block.midiEvents, next, position);
        int end = std::min(samples, position + kRun);
        if (next < block.midiEvents.size()) {
            end = std::min(end, block.midiEvents[next].sampleOffset);
        }
        run(in, out, position, end - position);
        position = end;
    }
    // Whatever is timed behind the block comes before the next one rather than never.
    handleEvents(block.midiEvents, next, std::numeric_limits<int>::max());
    mix_.endBlock();
}

void VoiceEngine::State::beginBlock(const Block& block, int samples) noexcept {
    const ParameterValues parameters = clampNormalised(block.parameters);
    setStep(Parameters::sampleRateStep(parameters.sampleRate));
    glideParameters(parameters, samples);
    plan_.sync = Parameters::isOn(parameters.sync);
    plan_.midi = Parameters::isOn(parameters.midi);
    plan_.mono = Parameters::isOn(parameters.legacyMode);
    plan_.frameStep = frameStep(parameters, block.transport);
    plan_.midiSettings = block.midiSettings;
    plan_.monoOutput = block.monoOutput;
    plan_.adding = block.adding;
    if (plan_.sync && block.transport.songPosition && !frozen()) {
        const auto frames = static_cast<double>(framesPerWholeNote(parameters.frameRate));
        voice_.clock().follow(frames * *block.transport.songPosition / kBeatsPerWholeNote);
    }
    mix_.beginBlock(parameters.mix, block.bypassed, samples);
    started_ = true;
}

void VoiceEngine::State::setStep(int step) noexcept {
    if (step == step_) {
        return;
    }
    step_ = step;
    voice_.setStep(step);
    clock_.clear();
}

void VoiceEngine::State::glideParameters(const ParameterValues& p, int samples) noexcept {
    const GlidingParameters target = {p.pitch, p.tracking, p.detune, p.noiseAdjust};
    if (started_) {
        glide(gliding_, target, samples, hostRate_);
    } else {
        gliding_ = target; // nothing sounded that could zip
    }
}

float VoiceEngine::State::frameStep(const ParameterValues& p, const Transport& transport) const noexcept {
    if (!plan_.sync) {
        return p.frameRate * p.frameRate * p.frameRate * rate().frameStepMax;
    }
    const auto tempo = static_cast<float>(transport.tempo);
    const float step =
        framesPerWholeNote(p.frameRate) * tempo * rate().secondsPerSample / kTempoPerWholeNoteRate;
    return step > 0 ? std::min(step, rate().frameStepMax) : 0;
}

std::size_t VoiceEngine::State::handleEvents(std::span<const MidiEvent> events, std::size_t next,
                                             int position) noexcept {
    for (; next < events.size() && events[next].sampleOffset <= position; ++next) {
        const bool firstNote = notes_.handle(events[next]);
        if (firstNote && plan_.midi && !plan_.sync) {
            voice_.clock().restart();
        }
    }
    notes_.settle();
    return next;
}

VoiceControls VoiceEngine::State::controls() const noexcept {
    return {.parameters = gliding_,
            .midiPitch = plan_.midi ? notes_.pitch(plan_.midiSettings) : 0,
            .gate = !plan_.midi || notes_.anyHeld(),
            .mono = plan_.mono};
}

void VoiceEngine::State::run(const float* const* in, float* const* out, int offset, int count) noexcept {
    readInput(in, offset, count);
    synthesise(count);
    writeOutput(out, offset, count);
    samplesDone_ += static_cast<std::uint64_t>(count);
}

// Both channels are read before either is written: the host's buffers may be the same.
void VoiceEngine::State::readInput(const float* const* in, int offset, int count) noexcept {
    for (std::size_t channel = 0; channel < 2; ++channel) {
        float* const samples = input_[channel].data() + kBefore;
        const bool loud = copyFinite(in[channel] + offset, samples, count);
        dryDelay_[channel].write(samples, count);
        if (loud) {
            limitLoudness(samples, count);
        }
    }
}

void VoiceEngine::State::synthesise(int count) noexcept {
    float* const left = input_[0].data() + kBefore;
    float* const right = input_[1].data() + kBefore;
    const int ticks = clock_.advance(rate(), count);
    float* const pairs = voice_.input(ticks);
    clock_.sampleInput(left, right, ticks, pairs);
    if (plan_.mono) {
        for (int i = 0; i < 2 * ticks; i += 2) {
            pairs[i] = pairs[i + 1] = (pairs[i] + pairs[i + 1]) / 2;
        }
    }
    left[-1] = left[count - 1];
    right[-1] = right[count - 1];
    const float step = frozen() ? 0 : plan_.frameStep;
    const int frame = voice_.process(controls(), step, internal_.data(), ticks);
    if (frame >= 0) {
        frameSample_ = samplesDone_ + static_cast<std::uint64_t>(clock_.position(frame)) + 1;
    }
    clock_.holdOutput(internal_.data(), ticks, count, wet_.data());
}

void VoiceEngine::State::writeOutput(float* const* out, int offset, int count) noexcept {
    if (mix_.needsDry()) {
        for (std::size_t channel = 0; channel < 2; ++channel) {
            dryDelay_[channel].read(rate().latency, dry_[channel].data(), count);
        }
    }
    const OutputMix::Signals signals = {wet_.data(), {dry_[0].data(), dry_[1].data()}, plan_.mono};
    if (plan_.monoOutput || plan_.adding) {
        float* const mixed[] = {mixed_[0].data(), mixed_[1].data()};
        mix_.process(signals, mixed, 0, count);
        joinOutput(out, offset, count);
    } else {
        mix_.process(signals, out, offset, count);
    }
}

void VoiceEngine::State::joinOutput(float* const* out, int offset, int count) noexcept {
    if (plan_.monoOutput) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            mixed_[0][i] = (mixed_[0][i] + mixed_[1][i]) / 2;
        }
    }
    for (std::size_t channel = 0; channel < (plan_.monoOutput ? 1 : 2); ++channel) {
        float* const target = out[channel] + offset;
        for (int i = 0; i < count; ++i) {
            target[i] = mixed_[channel][static_cast<std::size_t>(i)] + (plan_.adding ? target[i] : 0.0f);
        }
    }
}

FrameRecord VoiceEngine::State::lastFrame() const noexcept {
    const TakenFrame& taken = voice_.taken();
    const VoiceFrame& frame = voice_.frame();
    return {.number = taken.number,
            .hostSample = frameSample_,
            .silent = taken.silent,
            .lag = taken.lag,
            .pitch = frame.pitch,
            .unvoiced = taken.unvoiced,
            .amplitude = taken.amplitude,
            .pan = frame.image.pan,
            .width = frame.image.width(),
            .coefficients = voice_.coefficients()};
}

VoiceEngine::VoiceEngine(Feedbacks& feedbacks) : feedbacks_(feedbacks) {
    prepare(kInitialSampleRate, Parameters::sampleRateStep(ParameterValues{}.sampleRate));
}

VoiceEngine::~VoiceEngine() = default;

void VoiceEngine::prepare(double hertz, int step) {
    state_ = std::make_unique<State>(hertz, step, feedbacks_);
    for (std::size_t i = 0; i < latencies_.size(); ++i) {
        latencies_[i].store(state_->rates()[i].latency, std::memory_order_relaxed);
    }
}

void VoiceEngine::setSampleRate(double hertz) {
    if (!(hertz >= kSlowestHost && hertz <= kFastestHost)) {
        throw std::invalid_argument("Sample rate is out of range");
    }
    prepare(hertz, state_->step());
}

void VoiceEngine::reset() {
    prepare(state_->hostRate(), state_->step());
}

int VoiceEngine::latencySamples(float sampleRateParameter) const noexcept {
    const auto step = static_cast<std::size_t>(Parameters::sampleRateStep(sampleRateParameter));
    return latencies_[step].load(std::memory_order_relaxed);
}

void VoiceEngine::process(const float* const* in, float* const* out, int samples,
                          const Block& block) noexcept {
    state_->process(in, out, samples, block);
}

FrameRecord VoiceEngine::lastFrame() const noexcept {
    return state_->lastFrame();
}

} // namespace Engine
