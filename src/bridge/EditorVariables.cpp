#include "bridge/EditorVariables.h"

#include "bridge/BuildFacts.h"
#include "bridge/NumberText.h"
#include "model/KeptVariables.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Numbers.h"
#include "parameters/ParameterText.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <numbers>
#include <stdexcept>

namespace Bridge {

namespace {

constexpr std::string_view kParameters = "params.";
constexpr std::string_view kHuman = ".human";
constexpr std::string_view kFeedbacks = "feedbacks.";
constexpr std::string_view kPower = "feedbacks.iirPower.";
constexpr std::string_view kMidiConfig = "midiConfig.";
constexpr std::string_view kProgramKeys = "programKeys.";
constexpr std::string_view kController = "cc.";

constexpr std::string_view kTellResize = "You need to close and reopen the window to resize.";

// Smaller and the text cannot be read, larger and the surface would not fit a screen.
constexpr double kSmallestScale = 0.25;
constexpr double kLargestScale = 8;

std::string text(bool value) {
    return value ? "true" : "false";
}

struct Feedback {
    std::string_view name;
    std::atomic<float> Engine::Feedbacks::*value;
};

constexpr std::array kFeedbackRows = {
    Feedback{"sampleRate", &Engine::Feedbacks::sampleRate}, Feedback{"pitch", &Engine::Feedbacks::pitch},
    Feedback{"frequency", &Engine::Feedbacks::frequency},   Feedback{"amplitude", &Engine::Feedbacks::amplitude},
    Feedback{"volume", &Engine::Feedbacks::volume},         Feedback{"unvoiced", &Engine::Feedbacks::unvoiced},
    Feedback{"pan", &Engine::Feedbacks::pan},               Feedback{"width", &Engine::Feedbacks::width},
};

// The preference that keeps the scale.
std::string scaleEntry() {
    return "uiScale_" + std::string(Model::kProductName);
}

Quilt::Scale readScale(std::string_view text) {
    const Quilt::Scale scale = Quilt::Scale::fromText(text);
    if (scale.factor() < kSmallestScale || scale.factor() > kLargestScale) {
        throw std::invalid_argument("Invalid scale: " + std::string(text));
    }
    return scale;
}

// FNV-1a, 64 bits (Fowler, Noll, Vo).
class Fingerprint {
public:
    void add(std::string_view bytes) {
        for (const char c : bytes) {
            hash_ = (hash_ ^ static_cast<unsigned char>(c)) * 0x100000001b3;
        }
    }
    std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_ = 0xcbf29ce484222325;
};

} // namespace

Quilt::Scale storedScale(const Model::Preferences& preferences) {
    try {
        const auto stored = preferences.get(scaleEntry());
        return stored ? readScale(*stored) : Quilt::Scale();
    } catch (const std::exception&) {
        return {};
    }
}

std::string noteName(int note) {
    static constexpr std::array<std::string_view, 12> kNames = {"C",  "C#", "D",  "D#", "E",  "F",
                                                                "F#", "G",  "G#", "A",  "A#", "B"};
    return std::string(kNames[static_cast<std::size_t>(note % 12)]) + std::to_string(note / 12 - 2);
}

EditorVariables::EditorVariables(Shell::EffectInstance& effect, Environment& environment, MidiLearn& learn)
    : effect_(effect), environment_(environment), learn_(learn), scale_(storedScale(effect.preferences())) {}

std::optional<std::string> EditorVariables::get(std::string_view name) const {
    if (name.starts_with(kParameters)) {
        return parameterText(name.substr(kParameters.size()));
    }
    if (name.starts_with(kFeedbacks)) {
        return feedback(name);
    }
    if (name.starts_with(kMidiConfig)) {
        return midiConfigText(name.substr(kMidiConfig.size()));
    }
    if (name.starts_with(kProgramKeys)) {
        return midiConfigText(name);
    }
    if (auto value = state(name)) {
        return value;
    }
    if (auto value = constantVariable(name)) {
        return value;
    }
    return effect_.keptVariables().get(name);
}

bool EditorVariables::set(std::string_view name, std::string_view value) {
    if (name.starts_with(kParameters)) {
        return setParameter(name.substr(kParameters.size()), value);
    }
    if (name == "patch.name") {
        const auto lock = effect_.lockState();
        effect_.patches().rename(std::string(value));
        return true;
    }
    if (name == "uiScale") {
        setScale(value);
        return true;
    }
    if (setKept(name, value)) {
        return true;
    }
    if (get(name)) {
        throw std::runtime_error("Variable cannot be changed: " + std::string(name));
    }
    return false;
}

bool EditorVariables::setKept(std::string_view name, std::string_view value) {
    const auto lock = effect_.lockState();
    return effect_.keptVariables().set(name, value);
}

std::optional<std::string> EditorVariables::parameterText(std::string_view name) const {
    const bool human = name.ends_with(kHuman);
    name.remove_suffix(human ? kHuman.size() : 0);
    const auto id = Parameters::find(name);
    if (!id) {
        return std::nullopt;
    }
    const float value = effect_.parameter(*id);
    return human ? Parameters::shownText(*id, value, Parameters::isOn(effect_.parameter(Parameters::sync)))
                 : numberText(value);
}

bool EditorVariables::setParameter(std::string_view name, std::string_view value) {
    const bool human = name.ends_with(kHuman);
    name.remove_suffix(human ? kHuman.size() : 0);
    const auto id = Parameters::find(name);
    if (!id) {
        return false;
    }
    const auto number =
        human ? Parameters::textToValue(*id, value, Parameters::isOn(effect_.parameter(Parameters::sync)))
              : numberOf(value);
    if (!number) {
        throw std::runtime_error((human ? "Invalid value: " : "Invalid number: ") + std::string(value));
    }
    effect_.editParameter(*id, *number);
    return true;
}

std::optional<std::string> EditorVariables::feedback(std::string_view name) const {
    const Engine::Feedbacks& feedbacks = effect_.audio().feedbacks();
    if (name.starts_with(kPower)) {
        const std::string_view angle = name.substr(kPower.size());
        const auto w = numberOf(angle);
        if (!w) {
            throw std::runtime_error("Invalid number: " + std::string(angle));
        }
        const auto power = Engine::powerResponse(feedbacks.filter(), *w);
        return power ? numberText(static_cast<float>(*power)) : "0.0";
    }
    name.remove_prefix(kFeedbacks.size());
    for (const Feedback& row : kFeedbackRows) {
        if (row.name == name) {
            return numberText((feedbacks.*row.value).load(std::memory_order_relaxed));
        }
    }
    return std::nullopt;
}

std::optional<std::string> EditorVariables::state(std::string_view name) const {
    const Model::PatchController& patches = effect_.patches();
    if (name == "patch.name") {
        return patches.current().name();
    }
    if (name == "patch.modified") {
        return text(patches.current().isModified());
    }
    if (name == "patch.identity") {
        return patchIdentity();
    }
    if (name == "undo.description") {
        return patches.history().undoDescription();
    }
    if (name == "redo.description") {
        return patches.history().redoDescription();
    }
    if (name == "isEnabled") {
        return text(effect_.enabled());
    }
    if (name == "programNumber") {
        return std::to_string(effect_.programs().current() + 1); // as people count them
    }
    if (name == "midiLearnCC" || name == "midiLearnKey") {
        const auto number = name == "midiLearnCC" ? learn_.lastController() : learn_.lastKey();
        return number ? std::to_string(*number) : std::string();
    }
    if (name == "uiScale") {
        return scale_.text();
    }
    return std::nullopt;
}

std::optional<std::string> EditorVariables::midiConfigText(std::string_view name) const {
    const Model::MidiConfig& config = effect_.midiConfigs().config();
    if (name == "assignedCount") {
        return std::to_string(config.assignments.count());
    }
    if (name.starts_with(kController)) {
        return controllerText(name.substr(kController.size()));
    }
    if (name == "programChanges") {
        return text(config.programChanges);
    }
    if (name == "inputChannel") {
        return config.inputChannel == Model::MidiConfig::kAnyChannel ? "any"
                                                                     : std::to_string(config.inputChannel + 1);
    }
    if (name == "sourcePath") {
        return Model::toUtf8(config.sourcePath);
    }
    if (name == "pitchBendRange") {
        return std::to_string(config.pitchBendRange);
    }
    if (name == "pitchBendHeldOnly") {
        return text(config.pitchBendHeldOnly);
    }
    if (name == "masterTuning") {
        return numberText(config.masterTuning);
    }
    if (name == "programKeys.enabled") {
        return text(config.programKeysEnabled);
    }
    if (name == "programKeys.baseNoteNumber") {
        return std::to_string(config.programKeysBaseNote);
    }
    if (name == "programKeys.baseNoteName") {
        return noteName(config.programKeysBaseNote);
    }
    return std::nullopt;
}

// By the controller's number: the parameter that it moves. By the parameter's name: its controller.
std::optional<std::string> EditorVariables::controllerText(std::string_view which) const {
    const Model::ControllerAssignments& assignments = effect_.midiConfigs().config().assignments;
    if (const auto id = Parameters::find(which)) {
        const int controller = assignments.controllerOf(*id);
        return controller == Model::ControllerAssignments::kNoController ? std::string()
                                                                         : std::to_string(controller);
    }
    const auto controller = wholeNumberOf(which);
    if (!controller || *controller < 0 || *controller >= Model::ControllerAssignments::kControllers) {
        return std::nullopt;
    }
    const int id = assignments.parameterOf(*controller);
    return id == Model::ControllerAssignments::kNoParameter
               ? std::string()
               : std::string(Parameters::kTable[static_cast<std::size_t>(id)].name);
}

// Another text whenever another program is current, a patch was installed, or its contents changed; saving
// changes neither.
std::string EditorVariables::patchIdentity() const {
    const Model::AtomicPatch& patch = effect_.patches().current();
    Fingerprint contents;
    contents.add(patch.name());
    for (int id = 0; id < Parameters::kCount; ++id) {
        contents.add(" ");
        contents.add(numberText(patch.value(id)));
    }
    return std::to_string(effect_.programs().current() + 1) + "-" + std::to_string(contents.value());
}

// The new scale is kept at once. It shows at once where the host lets the window grow, else when the editor is
// opened again.
void EditorVariables::setScale(std::string_view value) {
    const Quilt::Scale scale = readScale(value);
    effect_.preferences().set(scaleEntry(), scale.text());
    const bool resizes =
        effect_.host().identity().sizesWindow &&
        effect_.host().sizeWindow(scale.toPixels(kEditorWidth), scale.toPixels(kEditorHeight));
    const bool stays = scale == scale_;
    if (resizes || stays) {
        scale_ = scale;
    } else {
        environment_.tellUser(std::string(kTellResize));
    }
    environment_.reloadEditor();
}

} // namespace Bridge
