#include "bridge/EditorActions.h"

#include "bridge/ActionParams.h"
#include "bridge/ChangeParam.h"
#include "bridge/NumberText.h"
#include "bridge/SelfTest.h"
#include "notation/Compound.h"
#include "notation/Document.h"

#include <algorithm>
#include <stdexcept>

namespace Bridge {

namespace {

constexpr std::string_view kVersionCheck = "preferences.versionCheck";
constexpr int kSelfTests = 100000;

class ValuesOf final : public CurrentValues {
public:
    explicit ValuesOf(const Shell::EffectInstance& effect) : effect_(effect) {}
    float value(int id) const override { return effect_.parameter(id); }

private:
    const Shell::EffectInstance& effect_;
};

} // namespace

const std::vector<EditorActions::Row>& EditorActions::table() {
    static const std::vector<Row> kTable = {
        {"changeParam", &EditorActions::changeParam},
        {"initPatch", &EditorActions::initPatch},
        {"copyPatch", &EditorActions::copyPatch},
        {"pastePatch", &EditorActions::pastePatch},
        {"exchangePatch", &EditorActions::exchangePatch},
        {"randomizePatch", &EditorActions::randomizePatch},
        {"openPatch", &EditorActions::openPatch},
        {"savePatch", &EditorActions::savePatch},
        {"choosePatch", &EditorActions::choosePatch},
        {"switchPatch", &EditorActions::switchPatch},
        {"chooseProgram", &EditorActions::chooseProgram},
        {"switchProgram", &EditorActions::switchProgram},
        {"undo", &EditorActions::undo},
        {"redo", &EditorActions::redo},
        {"toggleVersionCheck", &EditorActions::toggleVersionCheck},
        {"unitTest", &EditorActions::unitTest},
        {"resetMidiConfig", &EditorActions::resetMidiConfig},
        {"loadMidiConfig", &EditorActions::loadMidiConfig},
        {"saveMidiConfig", &EditorActions::saveMidiConfig},
        {"makeMidiConfigDefault", &EditorActions::makeMidiConfigDefault},
        {"changeMidiConfig", &EditorActions::changeMidiConfig},
        {"midiAssign", &EditorActions::midiAssign},
        {"sendMidi", &EditorActions::sendMidi},
        {"makeBankDefault", &EditorActions::makeBankDefault},
        {"resetBankDefault", &EditorActions::resetBankDefault},
    };
    return kTable;
}

void EditorActions::perform(std::string_view action, std::string_view params, Quilt::ActionContext& context) {
    const auto row = std::ranges::find(table(), action, &Row::name);
    if (row == table().end()) {
        throw std::runtime_error("Unrecognized action: " + std::string(action));
    }
    (this->*row->perform)({action, params, context});
}

Quilt::ActionState EditorActions::state(std::string_view action, std::string_view params,
                                        const Quilt::ActionContext& context) const {
    Quilt::ActionState state;
    if (action == "changeParam") {
        const ParameterChange change = readParameterChange(params, ValuesOf(effect_), context);
        state.checked = change.equal && change.whenEqual == WhenEqual::checked;
        state.enabled = !(change.equal && change.whenEqual == WhenEqual::disabled);
    } else if (action == "undo") {
        state.enabled = effect_.patches().history().canUndo();
    } else if (action == "redo") {
        state.enabled = effect_.patches().history().canRedo();
    } else if (action == "toggleVersionCheck") {
        state.checked = versionCheck();
    } else if (action == "changeMidiConfig") {
        state.checked = readMidiConfigChange(params).checked;
    } else if (action == "midiAssign") {
        state = stateOfMidiAssign(params);
    } else if (std::ranges::find(table(), action, &Row::name) == table().end()) {
        throw std::runtime_error("Unrecognized action: " + std::string(action));
    }
    return state;
}

void EditorActions::changeParam(const Call& call) {
    const ParameterChange change = readParameterChange(call.params, ValuesOf(effect_), call.context);
    effect_.editParameter(change.id, change.value);
}

bool EditorActions::versionCheck() const {
    return effect_.keptVariables().get(kVersionCheck) == "true";
}

void EditorActions::toggleVersionCheck(const Call&) {
    effect_.keptVariables().set(kVersionCheck, versionCheck() ? "false" : "true");
}

void EditorActions::unitTest(const Call& call) {
    const Stackbrace::Document document{std::string(call.params)};
    const auto params = document.root().list();
    const auto count = params.size() == 0 ? std::optional(kSelfTests) : wholeNumberOf(params[0].text());
    if (params.size() > 1 || !count || *count < 0) {
        throw std::runtime_error("Invalid action params for unitTest: " + std::string(call.params));
    }
    selfTest(*count);
}

} // namespace Bridge
