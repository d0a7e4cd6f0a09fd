// The actions of the effect as layouts call them, by name with parameters in the Stackbrace notation. The
// tables of the source say what they are called. An action that fails leaves everything as it was.
#pragma once

#include "bridge/Environment.h"
#include "bridge/MidiLearn.h"
#include "instance/EffectInstance.h"
#include "quilt/ActionHandler.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace Bridge {

class EditorActions {
public:
    EditorActions(Shell::EffectInstance& effect, Environment& environment, MidiLearn& learn)
        : effect_(effect), environment_(environment), learn_(learn) {}

    // Throw std::runtime_error "Unrecognized action: NAME" for other names, and what the action throws.
    void perform(std::string_view action, std::string_view params, Quilt::ActionContext& context);
    Quilt::ActionState state(std::string_view action, std::string_view params,
                             const Quilt::ActionContext& context) const;

private:
    struct Call {
        std::string_view action;
        std::string_view params;
        Quilt::ActionContext& context;
    };
    struct Row {
        std::string_view name;
        void (EditorActions::*perform)(const Call& call);
    };
    static const std::vector<Row>& table();

    struct MidiAssignment {
        enum class Kind { assign, learn, unassign, cancel };
        Kind kind = Kind::learn;
        LearnTarget target;
        int number = 0; // to be assigned
    };
    struct MidiConfigChange {
        Model::MidiConfig config; // as it would be
        bool checked = false;     // it is so already, or the switch to be toggled is on
    };

    void changeParam(const Call& call);

    void initPatch(const Call& call);
    void copyPatch(const Call& call);
    void pastePatch(const Call& call);
    void exchangePatch(const Call& call);
    void randomizePatch(const Call& call);
    void openPatch(const Call& call);
    void savePatch(const Call& call);
    void choosePatch(const Call& call);
    void switchPatch(const Call& call);
    void undo(const Call& call);
    void redo(const Call& call);

    void chooseProgram(const Call& call);
    void switchProgram(const Call& call);
    void makeBankDefault(const Call& call);
    void resetBankDefault(const Call& call);

    void resetMidiConfig(const Call& call);
    void loadMidiConfig(const Call& call);
    void saveMidiConfig(const Call& call);
    void makeMidiConfigDefault(const Call& call);
    void changeMidiConfig(const Call& call);
    void midiAssign(const Call& call);
    void sendMidi(const Call& call);

    void toggleVersionCheck(const Call& call);
    void unitTest(const Call& call);

    bool versionCheck() const;
    MidiConfigChange readMidiConfigChange(std::string_view params) const;
    static MidiAssignment readMidiAssignment(std::string_view params);
    Quilt::ActionState stateOfMidiAssign(std::string_view params) const;
    void openPatchFile(const std::filesystem::path& file);
    std::filesystem::path patchFolder() const;
    void rememberPatchFolder(const std::filesystem::path& folder);
    void browsePatches();

    Shell::EffectInstance& effect_;
    Environment& environment_;
    MidiLearn& learn_;
    std::filesystem::path browsed_; // the folder that the patch menu was sent to; empty: nowhere
};

} // namespace Bridge
