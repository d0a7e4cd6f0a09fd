// Standard MIDI files, as a player sees them: what is sent when.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Tool {

struct TimedMessage {
    double seconds = 0;
    std::array<std::uint8_t, 3> bytes{};
};

// The channel messages of all tracks in the order of their times, which the file's own tempo map gives.
// Throws std::runtime_error that names the file.
std::vector<TimedMessage> readMidiFile(const std::string& name);

} // namespace Tool
