#include "engine/VoiceEngine.h"

#include <algorithm>

namespace Engine {

struct VoiceEngine::State {};

VoiceEngine::VoiceEngine(Feedbacks&) : state_(std::make_unique<State>()) {}
VoiceEngine::~VoiceEngine() = default;
void VoiceEngine::setSampleRate(double) {}
void VoiceEngine::reset() {}
int VoiceEngine::latencySamples(float) const noexcept {
    return 0;
}
FrameRecord VoiceEngine::lastFrame() const noexcept {
    return {};
}

void VoiceEngine::process(const float* const* in, float* const* out, int samples, const Block&) noexcept {
    for (int channel = 0; channel < 2; ++channel) {
        std::copy_n(in[channel], samples, out[channel]);
    }
}

} // namespace Engine
