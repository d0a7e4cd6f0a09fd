// How incoming MIDI drives the effect: which channel is heard, which controller moves which parameter,
// whether program changes and keys switch programs, how far the pitch bends. It belongs to the plug-in
// instance, not to a patch. A plain value of the main thread; the audio thread sees it as a MidiMapping.
#pragma once

#include "parameters/ParameterTable.h"

#include <array>
#include <cstdint>
#include <filesystem>

namespace Model {

// Which controller moves which parameter, looked up from both sides. A controller moves one parameter at most
// and a parameter has one controller at most: a new assignment ends the older ones of both.
class ControllerAssignments {
public:
    static constexpr int kControllers = 128;
    static constexpr std::uint8_t kNoController = 255;
    static constexpr int kNoParameter = -1;

    ControllerAssignments() {
        controllers_.fill(kNoController);
        parameters_.fill(kNoParameter);
    }

    // Controllers beyond 0..127 are brought to the nearer end.
    void assign(int parameter, int controller);
    void unassign(int parameter);

    std::uint8_t controllerOf(int parameter) const {
        return controllers_.at(static_cast<std::size_t>(parameter));
    }
    int parameterOf(int controller) const { return parameters_.at(static_cast<std::size_t>(controller)); }
    int count() const; // parameters that have a controller

    bool operator==(const ControllerAssignments&) const = default;

private:
    std::array<std::uint8_t, Parameters::kCount> controllers_;
    std::array<int, kControllers> parameters_;
};

struct MidiConfig {
    static constexpr int kAnyChannel = -1;

    std::filesystem::path sourcePath; // the file it was loaded from or saved to
    bool programChanges = false;      // program changes switch programs
    int inputChannel = kAnyChannel;   // else 0..15
    ControllerAssignments assignments;
    int pitchBendRange = 12;         // semitones
    bool pitchBendHeldOnly = false;  // the pitch bends only while a note is held
    float masterTuning = 440.0f;     // hertz
    bool programKeysEnabled = false; // keys from the base note up switch programs
    int programKeysBaseNote = 60;

    bool operator==(const MidiConfig&) const = default;
};

} // namespace Model
