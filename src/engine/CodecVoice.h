// The path at the internal rate: frames are analysed as their clock says, and between them excitation,
// synthesis filter, quantisation and output filter make the voice. It knows nothing of the host's rate and
// blocks.
#pragma once

#include "engine/Excitation.h"
#include "engine/Feedbacks.h"
#include "engine/FrameAnalysis.h"
#include "engine/FrameClock.h"
#include "engine/InputHistory.h"
#include "engine/MedianTracker.h"
#include "engine/OutputFilter.h"
#include "engine/SynthesisFilter.h"

#include <array>
#include <cstdint>
#include <span>

namespace Engine {

// A frame as it was found; see FrameRecord for what the fields mean.
struct TakenFrame {
    std::uint64_t number = 0;
    bool silent = false;
    float lag = 0;
    float unvoiced = 0;
    float amplitude = 0;
};

class CodecVoice {
public:
    static constexpr int kMaxRun = 256; // samples a call

    // [main] Begins at the rate step `step`.
    CodecVoice(std::span<const RateConfiguration, kRateSteps> configurations, int step, Feedbacks& feedbacks);

    // [audio] Another rate: every history is cleared and the first frame comes half a frame later.
    void setStep(int step) noexcept;

    FrameClock& clock() noexcept { return clock_; }

    // [audio] Where the next `count` input pairs of left and right are to be written before `process`.
    float* input(int count) noexcept { return history_.add(count); }

    // [audio] Turns the pairs just written into as many output pairs. Returns the position of the last frame
    // that was taken among them, or -1.
    int process(const VoiceControls& controls, float frameStep, float* out, int count) noexcept;

    const TakenFrame& taken() const noexcept { return taken_; }
    const VoiceFrame& frame() const noexcept { return frame_; }
    std::span<const float> coefficients() const noexcept;

private:
    void takeFrame(int newer, bool mono) noexcept;
    void track(const FrameResult& result, bool mono) noexcept;
    void useFilter(const FrameResult& result) noexcept;
    void publish() noexcept;
    void synthesise(const VoiceControls& controls, float* out, int count) noexcept;
    float expectedLag() const noexcept;
    const RateConfiguration& rate() const noexcept { return rates_[static_cast<std::size_t>(step_)]; }

    std::array<RateConfiguration, kRateSteps> rates_;
    Feedbacks& feedbacks_;
    int step_ = 0;

    InputHistory history_;
    FrameClock clock_;
    FrameAnalysis analysis_;
    MedianTracker<5> lagTracker_;
    MedianTracker<3> voicingTracker_;
    float lastUnvoiced_ = 1; // of the last frame that was analysed, before the tracker
    TakenFrame taken_;
    VoiceFrame frame_;
    FilterSnapshot filter_;
    bool silent_ = true;

    VoiceControls settledControls_;
    ExcitationSettings settings_;
    bool settingsValid_ = false;
    Excitation excitation_;
    SynthesisFilter synthesis_;
    OutputFilter outputFilter_;
};

} // namespace Engine
