// The real Fourier transform of one length and its inverse, planned once and shared by all instances.
#pragma once

#include <memory>

struct fftwf_plan_s;

namespace Engine {

class FourierPlans {
public:
    // [main] Transforms of `length` real values. Plans are made or found under the library's one planner
    // lock.
    static std::shared_ptr<const FourierPlans> forLength(int length);

    ~FourierPlans();
    FourierPlans(const FourierPlans&) = delete;
    FourierPlans& operator=(const FourierPlans&) = delete;

    // [audio] Any buffers aligned as AlignedFloats are. `spectrum` holds length / 2 + 1 pairs of real and
    // imaginary part.
    void forward(float* signal, float* spectrum) const noexcept;

    // [audio] Not scaled, and `spectrum` is lost.
    void inverse(float* spectrum, float* signal) const noexcept;

private:
    explicit FourierPlans(int length);

    fftwf_plan_s* forward_;
    fftwf_plan_s* inverse_;
};

} // namespace Engine
