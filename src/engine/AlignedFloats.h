// A fixed run of floats, zero at first, aligned for vector code and for the Fourier transform.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace Engine {

class AlignedFloats {
public:
    static constexpr std::align_val_t kAlignment{64};

    AlignedFloats() = default;
    explicit AlignedFloats(std::size_t size)
        : floats_(static_cast<float*>(::operator new(size * sizeof(float), kAlignment))), size_(size) {
        std::fill_n(floats_.get(), size, 0.0f);
    }

    float* data() noexcept { return floats_.get(); }
    const float* data() const noexcept { return floats_.get(); }
    std::size_t size() const noexcept { return size_; }
    float& operator[](std::size_t i) noexcept { return floats_[i]; }
    const float& operator[](std::size_t i) const noexcept { return floats_[i]; }
    std::span<float> span() noexcept { return {floats_.get(), size_}; }
    std::span<const float> span() const noexcept { return {floats_.get(), size_}; }
    void clear() noexcept { std::fill_n(floats_.get(), size_, 0.0f); }

private:
    struct Delete {
        void operator()(float* p) const noexcept { ::operator delete(p, kAlignment); }
    };
    std::unique_ptr<float[], Delete> floats_;
    std::size_t size_ = 0;
};

} // namespace Engine
