// The assignment of a controller to a parameter, or of a key to the first program, as a control beside them
// shows it: unassigned, assigning, assigned. One at a time is being learned; the next controller or key that
// comes in ends that.
#pragma once

#include "instance/EffectInstance.h"

#include <optional>
#include <string>
#include <string_view>

namespace Bridge {

enum class AssignState { unassigned, assigned, assigning };

// "unassigned" and so on, as layouts name the states.
std::string_view stateName(AssignState state);

// What can be learned: a parameter, or the program keys' base note. From the name of its variable
// ("params.pitch", "midiConfig.programKeys.baseNoteNumber").
struct LearnTarget {
    std::optional<int> parameter; // none: the program keys

    bool operator==(const LearnTarget&) const = default;
};
std::optional<LearnTarget> learnTarget(std::string_view variable);

class MidiLearn {
public:
    explicit MidiLearn(Shell::EffectInstance& effect) : effect_(effect) {}
    ~MidiLearn();
    MidiLearn(const MidiLearn&) = delete;
    MidiLearn& operator=(const MidiLearn&) = delete;

    AssignState state(const LearnTarget& target) const;

    // What the control does when it is clicked: begins to learn, or calls it off.
    void toggle(const LearnTarget& target);
    void start(const LearnTarget& target);
    void cancel();
    bool active() const { return target_.has_value(); }

    // Ends learning too, if it is this target that is learned.
    void assign(const LearnTarget& target, int number);
    void unassign(const LearnTarget& target);

    // The controller or base key; nullopt when there is none.
    std::optional<int> numberOf(const LearnTarget& target) const;

    // The parameter's values at the controller's two ends, in this instance from now on.
    void setControllerRange(int parameter, float from, float to);

    // Takes what has come in.
    void poll();

    std::optional<int> lastController() const { return lastController_; }
    std::optional<int> lastKey() const { return lastKey_; }

private:
    void replace(const Model::MidiConfig& config);

    Shell::EffectInstance& effect_;
    std::optional<LearnTarget> target_;
    std::optional<int> lastController_;
    std::optional<int> lastKey_;
};

} // namespace Bridge
