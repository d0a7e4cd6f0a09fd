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

// The configuration's text with some of its entries replaced.
std::string withChanges(const Model::MidiConfig& config, const Stackbrace::Structure& changes,
                        std::string_view params) {
    const Stackbrace::Document document(Model::writeMidiConfig(config));
    const auto root = document.root().structure();
    const auto present = root.at(Model::kMidiConfigKey).structure();
    for (const auto& [key, value] : changes) {
        if (!present.find(key)) {
            throw std::runtime_error("Invalid action params for changeMidiConfig: " + std::string(params));
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
    const Stackbrace::Document document{std::string(call.params)};
    const Model::MidiConfig& present = effect_.midiConfigs().config();
    Model::MidiConfig config;
    Model::readMidiConfig(withChanges(present, document.root().structure(), call.params), config);
    effect_.midiConfigs().replace(config);
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
