#include "engine/FourierPlans.h"

#include "engine/AlignedFloats.h"

#include <fftw3.h>

#include <map>
#include <mutex>
#include <new>

namespace Engine {

namespace {

// The planner is the one part of the library that threads cannot share.
std::mutex& plannerLock() {
    static std::mutex lock;
    return lock;
}

int livingPlans = 0; // under the lock

// The planner ends the whole process where memory runs out. Here that is found out before it is asked.
void ensureMemoryForPlanner() {
    constexpr std::size_t kPlannerTakes = 1 << 20; // at the first time a third of this, later next to nothing
    ::operator delete(::operator new(kPlannerTakes));
}

fftwf_complex* complex(float* spectrum) {
    return reinterpret_cast<fftwf_complex*>(spectrum);
}

} // namespace

std::shared_ptr<const FourierPlans> FourierPlans::forLength(int length) {
    static std::mutex mapLock;
    static std::map<int, std::weak_ptr<const FourierPlans>> made;
    const std::scoped_lock guard(mapLock);
    auto& known = made[length];
    auto plans = known.lock();
    if (!plans) {
        plans.reset(new FourierPlans(length));
        known = plans;
    }
    return plans;
}

FourierPlans::FourierPlans(int length) {
    AlignedFloats signal(static_cast<std::size_t>(length));
    AlignedFloats spectrum(static_cast<std::size_t>(length) + 2);
    const std::scoped_lock guard(plannerLock());
    ensureMemoryForPlanner();
    forward_ = fftwf_plan_dft_r2c_1d(length, signal.data(), complex(spectrum.data()), FFTW_ESTIMATE);
    inverse_ = fftwf_plan_dft_c2r_1d(length, complex(spectrum.data()), signal.data(), FFTW_ESTIMATE);
    if (forward_ == nullptr || inverse_ == nullptr) {
        throw std::bad_alloc();
    }
    ++livingPlans;
}

FourierPlans::~FourierPlans() {
    const std::scoped_lock guard(plannerLock());
    fftwf_destroy_plan(forward_);
    fftwf_destroy_plan(inverse_);
    if (--livingPlans == 0) {
        fftwf_cleanup(); // hosts load plug-ins only to look at them: what is unloaded leaves nothing behind
    }
}

void FourierPlans::forward(float* signal, float* spectrum) const noexcept {
    fftwf_execute_dft_r2c(forward_, signal, complex(spectrum));
}

void FourierPlans::inverse(float* spectrum, float* signal) const noexcept {
    fftwf_execute_dft_c2r(inverse_, complex(spectrum), signal);
}

} // namespace Engine
