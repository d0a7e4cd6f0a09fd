// Signals that the engine's tests play, all made here so that nothing depends on files.
#pragma once

#include <cstdint>
#include <vector>

namespace TestSignals {

struct Stereo {
    std::vector<float> left;
    std::vector<float> right;

    explicit Stereo(std::size_t samples = 0) : left(samples), right(samples) {}
    std::size_t size() const { return left.size(); }
};

Stereo sine(double hertz, double amplitude, double rate, double seconds);

// White, of the root mean square `level`. `correlation` 1: the same on both sides, 0: independent, -1:
// inverted.
Stereo noise(double level, double correlation, double rate, double seconds, std::uint32_t seed = 1);

// A steady voice on both sides.
Stereo vowel(double hertz, double rate, double seconds);

// Syllables of gliding pitch, hissed consonants and pauses, wandering from left to right.
Stereo speech(double rate, double seconds);

// Measurements.
double rms(const std::vector<float>& x, std::size_t from, std::size_t to);

// The period of the strongest repetition between the two frequencies, as a frequency, by plain correlation
// with parabolic interpolation.
double pitchOf(const std::vector<float>& x, std::size_t from, std::size_t to, double rate, double lowestHz,
               double highestHz);

} // namespace TestSignals
