// The end of the chain at the host's rate: wet and dry with gains that ramp across a block, and bypass.
#pragma once

namespace Engine {

class OutputMix {
public:
    // [main]
    explicit OutputMix(double hostRate) noexcept;

    // [audio] The next block has `samples` samples and ends at these targets. The first block starts there,
    // too.
    void beginBlock(float mix, bool bypassed, int samples) noexcept;
    void endBlock() noexcept;

    // [audio] Whether the next samples need the dry signal at all.
    bool needsDry() const noexcept;

    struct Signals {
        const float* wet; // pairs of left and right
        const float* dry[2];
        bool monoDry; // the average of both, but under bypass
    };

    // [audio] The next `count` samples of the block. Signals have room for a multiple of four.
    void process(const Signals& signals, float* const* out, int offset, int count) noexcept;

private:
    struct Ramp {
        float value = 0; // at the start of the block
        float step = 0;  // a sample
        float target = 0;
        void begin(float newTarget, int samples) noexcept;
        bool isZero() const noexcept { return value == 0 && target == 0; }
    };
    struct Four;

    int fade(const Signals& signals, float* left, float* right, int count) const noexcept;
    void mixFour(const Signals& signals, int i, Four& out) const noexcept;
    void blendBypass(const Signals& signals, int i, Four& out) const noexcept;
    bool bypassing() const noexcept { return bypass_ > 0 || bypassStep_ > 0; }

    float bypassSpeed_; // a sample
    bool started_ = false;
    int position_ = 0; // in the block
    Ramp wet_;
    Ramp dry_;
    float bypass_ = 0;     // 0 active .. 1 bypassed
    float bypassStep_ = 0; // towards where this block goes; 0: there
};

} // namespace Engine
