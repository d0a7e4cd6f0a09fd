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

enum class Toggle { turns, isOn };

std::string_view toggled(std::string_view present, Toggle toggle) {
    return toggle == Toggle::isOn || present == "false" ? "true" : "false";
}

// The configuration's text with some of its entries replaced. `toggle` as the value of a switch turns it; asking
// for what is, it stands for a switch that is on.
std::string withChanges(const Model::MidiConfig& config, std::string_view params, Toggle toggle) {
    const Stackbrace::Document changeDocument{std::string(params)};
    const auto changes = changeDocument.root().structure();
    const Stackbrace::Document document(Model::writeMidiConfig(config));
    const auto root = document.root().structure();
    const auto present = root.at(Model::kMidiConfigKey).structure();
    for (const auto& [key, value] : changes) {
        const auto* const now = present.find(key);
        if (now == nullptr || (value.raw() == "toggle" && now->raw() != "true" && now->raw() != "false")) {
            throw std::runtime_error("Invalid action params for changeMidiConfig: " + std::string(params));
        }
    }
    Stackbrace::Writer writer;
    writer.begin(Model::kMidiConfigKey);
    for (const auto& [key, value] : present) {
        const auto* const changed = changes.find(key);
        const std::string_view raw = changed == nullptr ? value.raw() : changed->raw();
        writer.value(key, raw == "toggle" ? toggled(value.raw(), toggle) : raw);
    }
    writer.end();
    return writer.take();
}

Model::MidiConfig changed(const Model::MidiConfig& present, std::string_view params, Toggle toggle) {
    Model::MidiConfig config;
    Model::readMidiConfig(withChanges(present, params, toggle), config);
    return config;
}

} // namespace

void EditorActions::resetMidiConfig(const Call&) {
    effect_.midiConfigs().reset();
}

void EditorActions::loadMidiConfig(const Call&) {
    environment_.chooseFile(midiConfigQuestion(FileQuestion::Kind::open, effect_.midiConfigs().config()),
                            [this](const fs::path& file) { effect_.midiConfigs().load(file); });
}

void EditorActions::saveMidiConfig(const Call&) {
    environment_.chooseFile(midiConfigQuestion(FileQuestion::Kind::save, effect_.midiConfigs().config()),
                            [this](const fs::path& file) { effect_.midiConfigs().save(file); });
}

void EditorActions::makeMidiConfigDefault(const Call&) {
    effect_.midiConfigs().makeDefault();
}

// Takes any of the keys of the configuration's text. "ccAssignments" replaces all assignments.
void EditorActions::changeMidiConfig(const Call& call) {
    effect_.midiConfigs().replace(changed(effect_.midiConfigs().config(), call.params, Toggle::turns));
}

bool EditorActions::isMidiConfig(std::string_view params) const {
    const Model::MidiConfig& present = effect_.midiConfigs().config();
    return changed(present, params, Toggle::isOn) == present;
}

// { variable: params.pitch, learn: true }, { …, cc: 20 }, { …, unassign: true } or { …, cancel: true }. For the
// program keys the variable is midiConfig.programKeys.baseNoteNumber, and `key` gives the note.
void EditorActions::midiAssign(const Call& call) {
    const ActionParams params(call.action, call.params,
                              {"variable", "learn", "cc", "key", "unassign", "cancel"});
    const auto target = learnTarget(params.string("variable").value_or(std::string()));
    if (!target) {
        params.refuse();
    }
    const auto number = params.integer(target->parameter ? "cc" : "key");
    if (number) {
        learn_.assign(*target, *number);
    } else if (params.boolean("learn", false)) {
        learn_.start(*target);
    } else if (params.boolean("unassign", false)) {
        learn_.unassign(*target);
    } else if (params.boolean("cancel", false)) {
        learn_.cancel();
    } else {
        params.refuse();
    }
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
