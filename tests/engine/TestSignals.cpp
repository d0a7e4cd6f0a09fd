#include "TestSignals.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace TestSignals {

namespace {

constexpr double kTau = 2 * std::numbers::pi;

std::size_t samplesOf(double rate, double seconds) {
    return static_cast<std::size_t>(rate * seconds);
}

// A glottal wave: the harmonics of a phase in turns, each 3 dB or so below the one before.
double voice(double phase) {
    return std::sin(kTau * phase) / (1.3 - std::cos(kTau * phase));
}

} // namespace

Stereo sine(double hertz, double amplitude, double rate, double seconds) {
    Stereo s(samplesOf(rate, seconds));
    for (std::size_t i = 0; i < s.size(); ++i) {
        s.left[i] = static_cast<float>(amplitude * std::sin(kTau * hertz * static_cast<double>(i) / rate));
    }
    s.right = s.left;
    return s;
}

Stereo noise(double level, double correlation, double rate, double seconds, std::uint32_t seed) {
    Stereo s(samplesOf(rate, seconds));
    std::mt19937 random(seed);
    std::normal_distribution<double> normal(0, level);
    for (std::size_t i = 0; i < s.size(); ++i) {
        const double a = normal(random);
        const double b = normal(random);
        s.left[i] = static_cast<float>(a);
        s.right[i] = static_cast<float>(correlation * a + std::sqrt(1 - correlation * correlation) * b);
    }
    return s;
}

Stereo vowel(double hertz, double rate, double seconds) {
    Stereo s(samplesOf(rate, seconds));
    for (std::size_t i = 0; i < s.size(); ++i) {
        s.left[i] = static_cast<float>(0.2 * voice(hertz / rate * static_cast<double>(i)));
    }
    s.right = s.left;
    return s;
}

Stereo speech(double rate, double seconds) {
    Stereo s(samplesOf(rate, seconds));
    std::mt19937 random(7);
    std::normal_distribution<double> normal(0, 1);
    double phase = 0, hissBefore = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        // Half a second each of syllables: a vowel, a hiss, a pause.
        const double t = static_cast<double>(i) / rate;
        const double beat = t * 2 - std::floor(t * 2);
        const double hertz = 120 + 60 * std::sin(kTau * 0.7 * t) + 20 * std::floor(t * 2);
        phase += hertz / rate;
        phase -= std::floor(phase);
        const double white = normal(random);
        const double hiss = beat > 0.5 && beat < 0.8 ? white - 0.8 * hissBefore : 0;
        hissBefore = white;
        const double x =
            (beat < 0.55 ? 0.2 * voice(phase) : 0) + 0.03 * hiss + (beat < 0.8 ? 0.002 * white : 0);
        const double side = 0.5 + 0.4 * std::sin(kTau * 0.4 * t);
        s.left[i] = static_cast<float>(x * side);
        s.right[i] = static_cast<float>(x * (1 - side) + 0.01 * hiss);
    }
    return s;
}

double rms(const std::vector<float>& x, std::size_t from, std::size_t to) {
    double sum = 0;
    for (std::size_t i = from; i < to; ++i) {
        sum += static_cast<double>(x[i]) * static_cast<double>(x[i]);
    }
    return std::sqrt(sum / static_cast<double>(to - from));
}

double pitchOf(const std::vector<float>& x, std::size_t from, std::size_t to, double rate, double lowestHz,
               double highestHz) {
    const auto shortest = static_cast<std::size_t>(rate / highestHz);
    const auto longest = static_cast<std::size_t>(rate / lowestHz) + 2;
    std::vector<double> r(longest + 1);
    for (std::size_t lag = shortest - 1; lag <= longest; ++lag) {
        double cross = 0, energy = 1e-30;
        for (std::size_t i = from; i + longest < to; ++i) {
            cross += static_cast<double>(x[i]) * static_cast<double>(x[i + lag]);
            energy += static_cast<double>(x[i + lag]) * static_cast<double>(x[i + lag]);
        }
        r[lag] = cross / std::sqrt(energy);
    }
    const auto peak = static_cast<std::size_t>(
        std::max_element(r.begin() + static_cast<long>(shortest), r.end() - 1) - r.begin());
    const double curve = r[peak - 1] - 2 * r[peak] + r[peak + 1];
    const double offset = curve < 0 ? 0.5 * (r[peak - 1] - r[peak + 1]) / curve : 0;
    return rate / (static_cast<double>(peak) + offset);
}

} // namespace TestSignals
