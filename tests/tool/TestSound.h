// Sounds for tests: signals, and the plain form of WAV files, 32-bit floats behind a header of 44 bytes.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace TestSound {

inline void append(std::string& bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i) {
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    }
}

// `samples` interleaved.
inline std::string wav(int rate, int channels, const std::vector<float>& samples) {
    const auto size = static_cast<std::uint32_t>(samples.size() * 4);
    const auto frame = static_cast<std::uint32_t>(channels * 4);
    std::string bytes = "RIFF";
    append(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    append(bytes, 16, 4);
    append(bytes, 3, 2); // floats
    append(bytes, static_cast<std::uint32_t>(channels), 2);
    append(bytes, static_cast<std::uint32_t>(rate), 4);
    append(bytes, static_cast<std::uint32_t>(rate) * frame, 4);
    append(bytes, frame, 2);
    append(bytes, 32, 2);
    bytes += "data";
    append(bytes, size, 4);
    for (const float sample : samples) {
        append(bytes, std::bit_cast<std::uint32_t>(sample), 4);
    }
    return bytes;
}

// The samples of the file's data chunk, interleaved.
inline std::vector<float> samplesOf(const std::string& file) {
    const auto data = file.find("data");
    if (!file.starts_with("RIFF") || data == std::string::npos) {
        throw std::runtime_error("This is no WAV file");
    }
    std::vector<float> samples((file.size() - data - 8) / 4);
    std::memcpy(samples.data(), file.data() + data + 8, samples.size() * 4);
    return samples;
}

// Noise of half level, always the same.
inline std::vector<float> noise(std::size_t count) {
    std::vector<float> samples;
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < count; ++i) {
        state = state * 1664525 + 1013904223;
        samples.push_back(static_cast<float>(static_cast<std::int32_t>(state)) / 4294967296.0f);
    }
    return samples;
}

// Something like a sung vowel: pulses of a frequency through two resonances.
inline std::vector<float> vowel(int rate, double hertz, std::size_t count) {
    std::vector<float> samples;
    double phase = 0;
    double low[2] = {};
    double high[2] = {};
    for (std::size_t i = 0; i < count; ++i) {
        phase += hertz / rate;
        const double pulse = phase >= 1 ? 1 : 0;
        phase -= pulse;
        const double a = 0.05 * pulse + 1.96 * low[0] - 0.97 * low[1]; // some 700 Hz at 44.1 kHz
        low[1] = low[0];
        low[0] = a;
        const double b = a + 1.88 * high[0] - 0.93 * high[1]; // some 1600 Hz
        high[1] = high[0];
        high[0] = b;
        samples.push_back(static_cast<float>(0.05 * b));
    }
    return samples;
}

} // namespace TestSound
