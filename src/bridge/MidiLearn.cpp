#include "bridge/MidiLearn.h"

#include <algorithm>

namespace Bridge {

namespace {

constexpr std::string_view kParameters = "params.";

} // namespace

std::string_view stateName(AssignState state) {
    switch (state) {
    case AssignState::assigned:
        return "assigned";
    case AssignState::assigning:
        return "assigning";
    case AssignState::unassigned:
        break;
    }
    return "unassigned";
}

std::optional<LearnTarget> learnTarget(std::string_view variable) {
    if (variable.starts_with(kParameters)) {
        if (const auto id = Parameters::find(variable.substr(kParameters.size()))) {
            return LearnTarget{*id};
        }
    } else if (variable == "midiConfig.programKeys.baseNoteNumber" || variable == "programKeys.baseNoteNumber") {
        return LearnTarget{};
    }
    return std::nullopt;
}

MidiLearn::~MidiLearn() {
    cancel();
}

AssignState MidiLearn::state(const LearnTarget& target) const {
    if (target_ == target) {
        return AssignState::assigning;
    }
    return numberOf(target) ? AssignState::assigned : AssignState::unassigned;
}

std::optional<int> MidiLearn::numberOf(const LearnTarget& target) const {
    const Model::MidiConfig& config = effect_.midiConfigs().config();
    if (!target.parameter) {
        return config.programKeysEnabled ? std::optional(config.programKeysBaseNote) : std::nullopt;
    }
    const int controller = config.assignments.controllerOf(*target.parameter);
    return controller != Model::ControllerAssignments::kNoController ? std::optional(controller) : std::nullopt;
}

void MidiLearn::setControllerRange(int parameter, float from, float to) {
    effect_.audio().setControllerRange(parameter, from, to);
}

void MidiLearn::toggle(const LearnTarget& target) {
    target_ == target ? cancel() : start(target);
}

void MidiLearn::start(const LearnTarget& target) {
    effect_.audio().setLearning(false); // what came in for another target is not for this one
    effect_.audio().setLearning(true);
    target_ = target;
}

void MidiLearn::cancel() {
    if (target_) {
        effect_.audio().setLearning(false);
        target_.reset();
    }
}

void MidiLearn::assign(const LearnTarget& target, int number) {
    Model::MidiConfig config = effect_.midiConfigs().config();
    if (target.parameter) {
        config.assignments.assign(*target.parameter, number);
    } else {
        config.programKeysEnabled = true;
        config.programKeysBaseNote = std::clamp(number, 1, 127);
    }
    replace(config);
    if (target_ == target) {
        cancel();
    }
}

void MidiLearn::unassign(const LearnTarget& target) {
    Model::MidiConfig config = effect_.midiConfigs().config();
    if (target.parameter) {
        config.assignments.unassign(*target.parameter);
    } else {
        config.programKeysEnabled = false;
    }
    replace(config);
    if (target_ == target) {
        cancel();
    }
}

void MidiLearn::replace(const Model::MidiConfig& config) {
    const auto lock = effect_.lockState();
    effect_.midiConfigs().replace(config);
}

void MidiLearn::poll() {
    while (target_) {
        const auto learned = effect_.audio().takeLearned();
        if (!learned) {
            return;
        }
        const bool controller = learned->kind == Shell::LearnedMidi::Kind::controller;
        (controller ? lastController_ : lastKey_) = learned->number;
        if (controller == target_->parameter.has_value()) {
            assign(*target_, learned->number);
        }
    }
}

} // namespace Bridge
