// Standard MIDI files, as a player sees them: what is sent when.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

struct TimedMessage {
    double seconds = 0;
    std::array<std::uint8_t, 3> bytes{};
};

class MidiFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The channel messages of all tracks in the order of their times, which the file's own tempo map gives. At
// one time, earlier tracks come first. Throws MidiFileError for contents that are damaged.
std::vector<TimedMessage> readMidi(std::string_view file);

// Of the file with this name, or standard input. Errors name the file.
std::vector<TimedMessage> readMidiFile(const std::string& name);

} // namespace Tool
