// Sound files, whole in memory.
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace Tool {

// Always left and right. What was mono sounds the same in both.
struct Sound {
    int rate = 0; // Hz
    std::array<std::vector<float>, 2> channels;

    std::size_t length() const { return channels[0].size(); }
    double seconds() const { return static_cast<double>(length()) / rate; }
};

// Any format the sound-file library reads; "-" is standard input. Throws std::runtime_error that names the
// file when it is none, holds no samples, or has more than two channels.
Sound readSound(const std::string& name);

// The kinds of file that are written, told by the extension: .wav holds 32-bit floats, .flac 24-bit integers,
// which clip. Throws std::runtime_error for any other extension.
int soundFormatOf(const std::filesystem::path& path);

void writeSound(const std::filesystem::path& path, const Sound& sound);

} // namespace Tool
