#include "model/MidiConfigText.h"

#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Numbers.h"
#include "notation/Writer.h"

#include <utility>

namespace Model {

namespace {

constexpr std::string_view kAnyChannelText = "any";
constexpr int kChannels = 16;
constexpr float kLowestTuning = 1.0f;
constexpr float kBeyondTuning = 10000.0f;
constexpr int kLowestBaseNote = 1;
constexpr int kHighestBaseNote = 127;

int readInputChannel(const Stackbrace::Element& element) {
    if (element.string() == kAnyChannelText) {
        return MidiConfig::kAnyChannel;
    }
    const int number = element.integer();
    if (number < 1 || number > kChannels) {
        throw MidiConfigRangeError("input midi channel in midi configuration is out of range");
    }
    return number - 1;
}

ControllerAssignments readAssignments(const Stackbrace::Element& element) {
    ControllerAssignments assignments;
    const auto numbers = element.structure();
    for (int id = 0; id < Parameters::kCount; ++id) {
        if (const auto* number = numbers.find(Parameters::kTable[static_cast<std::size_t>(id)].name)) {
            assignments.assign(id, number->integer());
        }
    }
    return assignments;
}

float readMasterTuning(const Stackbrace::Element& element) {
    const float tuning = element.float32();
    if (!(tuning >= kLowestTuning && tuning < kBeyondTuning)) {
        throw MidiConfigRangeError("master tuning midi configuration is out of range");
    }
    return tuning;
}

int readBaseNote(const Stackbrace::Element& element) {
    const int note = element.integer();
    if (note < kLowestBaseNote || note > kHighestBaseNote) {
        throw MidiConfigRangeError("program change base note in midi configuration is out of range");
    }
    return note;
}

void writeAssignments(Stackbrace::Writer& writer, const ControllerAssignments& assignments) {
    writer.begin("ccAssignments");
    for (int id = 0; id < Parameters::kCount; ++id) {
        const auto controller = assignments.controllerOf(id);
        if (controller != ControllerAssignments::kNoController) {
            writer.value(Parameters::kTable[static_cast<std::size_t>(id)].name, std::to_string(controller));
        }
    }
    writer.end();
}

} // namespace

std::string writeMidiConfig(const MidiConfig& config) {
    Stackbrace::Writer writer;
    writer.begin(kMidiConfigKey);
    writer.boolean("programChanges", config.programChanges);
    writer.value("inputChannel", config.inputChannel == MidiConfig::kAnyChannel
                                     ? std::string(kAnyChannelText)
                                     : std::to_string(config.inputChannel + 1));
    writeAssignments(writer, config.assignments);
    writer.string("sourcePath", toUtf8(config.sourcePath));
    writer.value("pitchBendRange", std::to_string(config.pitchBendRange));
    writer.boolean("pitchBendHeldOnly", config.pitchBendHeldOnly);
    writer.value("masterTuning", Stackbrace::numberText(config.masterTuning));
    writer.boolean("programKeysEnabled", config.programKeysEnabled);
    writer.value("programKeysBaseNote", std::to_string(config.programKeysBaseNote));
    writer.end();
    return writer.take();
}

bool readMidiConfig(std::string text, MidiConfig& config, std::string sourceName) {
    const Stackbrace::Document document(std::move(text), std::move(sourceName));
    const auto root = document.root().structure();
    const auto* element = root.find(kMidiConfigKey);
    if (!element) {
        return false;
    }
    // A missing entry reads as an empty text, which is no number and no boolean.
    const auto content = element->structure();
    MidiConfig read;
    read.programChanges = content["programChanges"].boolean();
    read.inputChannel = readInputChannel(content["inputChannel"]);
    read.assignments = readAssignments(content["ccAssignments"]);
    read.sourcePath =
        config.sourcePath.empty() ? pathFromUtf8(content["sourcePath"].string()) : config.sourcePath;
    read.pitchBendRange = content["pitchBendRange"].integer();
    read.pitchBendHeldOnly = content["pitchBendHeldOnly"].boolean();
    read.masterTuning = readMasterTuning(content["masterTuning"]);
    read.programKeysEnabled = content["programKeysEnabled"].boolean();
    read.programKeysBaseNote = readBaseNote(content["programKeysBaseNote"]);
    config = std::move(read);
    return true;
}

} // namespace Model
