// Four floats at a time for the engine's kernels, on the compilers' own vector type: SSE2 on every x86-64,
// and whatever the target has elsewhere. Only what arithmetic operators cannot say stands here.
#pragma once

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Engine {

using Float4 = float __attribute__((vector_size(16)));
using Double2 = double __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));

inline Float4 load(const float* p) noexcept {
    Float4 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// `p` is aligned to 16 bytes: the compiler may read it as an operand instead of into a register.
inline Float4 loadAligned(const float* p) noexcept {
    Float4 v;
    std::memcpy(&v, __builtin_assume_aligned(p, 16), sizeof v);
    return v;
}

inline void store(float* p, Float4 v) noexcept {
    std::memcpy(p, &v, sizeof v);
}

// Two floats into the lower lanes, zero above.
inline Float4 loadPair(const float* p) noexcept {
#if defined(__SSE2__)
    double both;
    std::memcpy(&both, p, sizeof both);
    return reinterpret_cast<Float4>(_mm_set_sd(both));
#else
    return Float4{p[0], p[1], 0, 0};
#endif
}

inline void storePair(float* p, Float4 v) noexcept {
    std::memcpy(p, &v, 2 * sizeof(float));
}

inline Double2 load(const double* p) noexcept {
    Double2 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline void store(double* p, Double2 v) noexcept {
    std::memcpy(p, &v, sizeof v);
}

inline Float4 splat(float x) noexcept {
    return Float4{x, x, x, x};
}

// As the comparison says it: where a lane of `a` is not a number, the lane of `b` is taken.
inline Float4 smaller(Float4 a, Float4 b) noexcept {
#if defined(__SSE2__)
    return _mm_min_ps(a, b);
#else
    return a < b ? a : b;
#endif
}

inline Float4 larger(Float4 a, Float4 b) noexcept {
#if defined(__SSE2__)
    return _mm_max_ps(a, b);
#else
    return a > b ? a : b;
#endif
}

inline Float4 clamped(Float4 v, float limit) noexcept {
    return smaller(larger(v, splat(-limit)), splat(limit));
}

// The lanes of `v` where `mask` is all ones, zero elsewhere.
inline Float4 keep(Int4 mask, Float4 v) noexcept {
    return reinterpret_cast<Float4>(mask & reinterpret_cast<Int4>(v));
}

inline Float4 select(Int4 mask, Float4 a, Float4 b) noexcept {
    return reinterpret_cast<Float4>((mask & reinterpret_cast<Int4>(a)) | (~mask & reinterpret_cast<Int4>(b)));
}

inline Float4 magnitude(Float4 v) noexcept {
    return keep(Int4{} + 0x7fffffff, v);
}

// One bit a lane, the lowest lane in bit 0, from a mask of all ones or zeros.
inline int laneBits(Int4 mask) noexcept {
#if defined(__SSE2__)
    return _mm_movemask_ps(reinterpret_cast<Float4>(mask));
#else
    return (mask[0] & 1) | (mask[1] & 2) | (mask[2] & 4) | (mask[3] & 8);
#endif
}

// To the nearest whole number, for magnitudes below 2^31.
inline Float4 rounded(Float4 v) noexcept {
#if defined(__SSE2__)
    return _mm_cvtepi32_ps(_mm_cvtps_epi32(v));
#else
    return Float4{__builtin_nearbyintf(v[0]), __builtin_nearbyintf(v[1]), __builtin_nearbyintf(v[2]),
                  __builtin_nearbyintf(v[3])};
#endif
}

// Rounded down, for magnitudes below 2^31.
inline Float4 floored(Float4 v) noexcept {
    const Float4 nearest = rounded(v);
    return nearest - keep(nearest > v, splat(1));
}

inline float sumOfLanes(Float4 v) noexcept {
    return (v[0] + v[2]) + (v[1] + v[3]);
}

} // namespace Engine
