// Actions on the MIDI configuration, and incoming MIDI by action.
#include "bridge/ActionParams.h"
#include "bridge/EditorActions.h"
#include "bridge/NumberText.h"
#include "model/MidiConfigText.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"
#include "notation/Writer.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Bridge {

namespace fs = std::filesystem;

namespace {

FileQuestion midiConfigQuestion(FileQuestion::Kind kind, const Model::MidiConfig& config) {
    FileQuestion question;
    question.kind = kind;
    question.title = "MIDI Config";
    question.proposed = config.sourcePath;
    question.types = {{"Korvanta MIDI Config", std::string(Model::kMidiConfigExtension)}, {"All Files", ""}};
    return question;
}

[[noreturn]] void refuseChange(std::string_view params) {
    throw std::runtime_error("Invalid action params for changeMidiConfig: " + std::string(params));
}

// The configuration's text with some of its entries replaced.
std::string withChanges(const Model::MidiConfig& config, const Stackbrace::Structure& changes,
                        std::string_view params) {
    const Stackbrace::Document document(Model::writeMidiConfig(config));
    const auto root = document.root().structure();
    const auto present = root.at(Model::kMidiConfigKey).structure();
    for (const auto& [key, value] : changes) {
        if (!present.find(key)) {
            refuseChange(params);
        }
    }
    Stackbrace::Writer writer;
    writer.begin(Model::kMidiConfigKey);
    for (const auto& [key, value] : present) {
        const auto* changed = changes.find(key);
        writer.value(key, changed ? changed->raw() : value.raw());
    }
    writer.end();
    return writer.take();
}

bool* switchOf(Model::MidiConfig& config, std::string_view key) {
    return key == "programChanges"       ? &config.programChanges
           : key == "pitchBendHeldOnly"  ? &config.pitchBendHeldOnly
           : key == "programKeysEnabled" ? &config.programKeysEnabled
                                         : nullptr;
}

} // namespace

void EditorActions::resetMidiConfig(const Call&) {
    const auto lock = effect_.lockState();
    effect_.midiConfigs().reset();
}

void EditorActions::loadMidiConfig(const Call&) {
    environment_.chooseFile(midiConfigQuestion(FileQuestion::Kind::open, effect_.midiConfigs().config()),
                            [this](const fs::path& file) {
                                const auto lock = effect_.lockState();
                                effect_.midiConfigs().load(file);
                            });
}

void EditorActions::saveMidiConfig(const Call&) {
    environment_.chooseFile(midiConfigQuestion(FileQuestion::Kind::save, effect_.midiConfigs().config()),
                            [this](const fs::path& file) {
                                const auto lock = effect_.lockState();
                                effect_.midiConfigs().save(file);
                            });
}

void EditorActions::makeMidiConfigDefault(const Call&) {
    effect_.midiConfigs().makeDefault();
}

void EditorActions::changeMidiConfig(const Call& call) {
    const Model::MidiConfig config = readMidiConfigChange(call.params).config;
    const auto lock = effect_.lockState();
    effect_.midiConfigs().replace(config);
}

// { toggle: KEY } of a switch, or any of the keys of the configuration's text: "ccAssignments" replaces all
// assignments.
EditorActions::MidiConfigChange EditorActions::readMidiConfigChange(std::string_view params) const {
    const Model::MidiConfig& present = effect_.midiConfigs().config();
    const Stackbrace::Document document{std::string(params)};
    const auto changes = document.root().structure();
    MidiConfigChange change;
    if (const auto* const key = changes.find("toggle")) {
        change.config = present;
        bool* const value = switchOf(change.config, key->text());
        if (!value || changes.size() > 1) {
            refuseChange(params);
        }
        change.checked = *value;
        *value = !*value;
    } else {
        Model::readMidiConfig(withChanges(present, changes, params), change.config);
        change.checked = change.config == present;
    }
    return change;
}

// { variable: params.pitch, learn: true }, { …, cc: 20 }, { …, unassign: true } or { …, cancel: true }. For
// the program keys the variable is midiConfig.programKeys.baseNoteNumber, and `key` gives the note.
EditorActions::MidiAssignment EditorActions::readMidiAssignment(std::string_view text) {
    using enum MidiAssignment::Kind;
    const ActionParams params("midiAssign", text, {"variable", "learn", "cc", "key", "unassign", "cancel"});
    const auto target = learnTarget(params.string("variable").value_or(std::string()));
    if (!target) {
        params.refuse();
    }
    if (const auto number = params.integer(target->parameter ? "cc" : "key")) {
        return {assign, *target, *number};
    }
    if (params.boolean("learn", false)) {
        return {learn, *target};
    }
    if (params.boolean("unassign", false)) {
        return {unassign, *target};
    }
    if (params.boolean("cancel", false)) {
        return {cancel, *target};
    }
    params.refuse();
}

void EditorActions::midiAssign(const Call& call) {
    const MidiAssignment wish = readMidiAssignment(call.params);
    switch (wish.kind) {
    case MidiAssignment::Kind::assign:
        learn_.assign(wish.target, wish.number);
        break;
    case MidiAssignment::Kind::learn:
        learn_.start(wish.target);
        break;
    case MidiAssignment::Kind::unassign:
        learn_.unassign(wish.target);
        break;
    case MidiAssignment::Kind::cancel:
        learn_.cancel();
        break;
    }
}

Quilt::ActionState EditorActions::stateOfMidiAssign(std::string_view params) const {
    const MidiAssignment wish = readMidiAssignment(params);
    Quilt::ActionState state;
    switch (wish.kind) {
    case MidiAssignment::Kind::assign:
        state.checked = learn_.numberOf(wish.target) == wish.number;
        break;
    case MidiAssignment::Kind::learn:
        state.checked = learn_.state(wish.target) == AssignState::assigning;
        break;
    case MidiAssignment::Kind::unassign:
        state.enabled = learn_.numberOf(wish.target).has_value();
        break;
    case MidiAssignment::Kind::cancel:
        state.enabled = learn_.active();
        break;
    }
    return state;
}

// As if the message had come in through the host.
void EditorActions::sendMidi(const Call& call) {
    const Stackbrace::Document document{std::string(call.params)};
    std::array<std::uint8_t, 3> bytes{};
    std::size_t count = 0;
    Stackbrace::Element message;
    try {
        const auto structure = document.root().structure();
        message = structure["message"];
        for (const auto& element : message.list()) {
            const auto byte = wholeNumberOf(element.text());
            if (!byte || *byte < 0 || *byte > 255) {
                throw Stackbrace::Exception("not a byte");
            }
            if (count < bytes.size()) {
                bytes[count] = static_cast<std::uint8_t>(*byte);
            }
            ++count;
        }
        if (count == 0) {
            throw Stackbrace::Exception("no bytes");
        }
    } catch (const Stackbrace::Exception&) {
        throw std::runtime_error("Invalid sendMidi byte array: " + std::string(message.raw()));
    }
    if (count <= bytes.size()) { // longer ones are system exclusive, which nothing here listens to
        effect_.audio().inject({bytes[0], bytes[1], bytes[2]});
    }
}

} // namespace Bridge
