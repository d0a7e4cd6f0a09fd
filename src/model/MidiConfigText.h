// MIDI configurations as texts in the Stackbrace notation, for files, the host's state and the stored
// default.
#pragma once

#include "model/MidiConfig.h"

#include <stdexcept>
#include <string>

namespace Model {

// A number in the text is out of its range.
class MidiConfigRangeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string writeMidiConfig(const MidiConfig& config);

// Replaces everything in `config` by what the text says, but a source path that it already carries: a
// configuration that is read from a file keeps the path of that file. A text that holds no MIDI configuration
// changes nothing and gives false. Throws MidiConfigRangeError, or what the notation throws for a malformed
// text or a missing entry; then too nothing has changed.
bool readMidiConfig(std::string text, MidiConfig& config, std::string sourceName = {});

} // namespace Model
