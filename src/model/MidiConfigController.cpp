#include "model/MidiConfigController.h"

#include "model/MidiConfigText.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Writer.h"

namespace Model {

void MidiConfigController::replace(const MidiConfig& config) {
    config_ = config;
    mapping_.publish(config_);
}

void MidiConfigController::load(const std::filesystem::path& file) {
    MidiConfig loaded;
    loaded.sourcePath = file;
    if (readMidiConfig(files_.read(file), loaded, toUtf8(file.filename()))) {
        replace(loaded);
    }
}

void MidiConfigController::save(const std::filesystem::path& file) {
    MidiConfig saved = config_;
    saved.sourcePath = file;
    files_.write(file, Stackbrace::withFileLineEnds(writeMidiConfig(saved)));
    config_ = saved;
}

void MidiConfigController::makeDefault() {
    preferences_.set(kMidiConfigEntry, writeMidiConfig(config_));
}

void MidiConfigController::loadDefault() {
    MidiConfig config;
    if (const auto text = preferences_.get(kMidiConfigEntry)) {
        readMidiConfig(*text, config);
    }
    replace(config);
}

} // namespace Model
