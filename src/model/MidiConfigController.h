// The instance's MIDI configuration and what the editor does with it: reset, load, save, make it the default
// of new instances. Whatever changes it, the audio thread hears of it. Everything is the main thread's.
#pragma once

#include "model/MidiConfig.h"
#include "model/MidiMapping.h"
#include "model/Preferences.h"
#include "model/TextFiles.h"

#include <filesystem>

namespace Model {

class MidiConfigController {
public:
    // Starts with the reset values, not with the stored default: loadDefault may fail.
    MidiConfigController(MidiMapping& mapping, TextFiles& files, Preferences& preferences)
        : mapping_(mapping), files_(files), preferences_(preferences) {
        mapping_.publish(config_);
    }

    const MidiConfig& config() const { return config_; }
    void replace(const MidiConfig& config);

    // When one of these throws (files, preferences, or what readMidiConfig throws) nothing has changed.
    void reset() { replace({}); }
    void load(const std::filesystem::path& file);
    void save(const std::filesystem::path& file);
    void makeDefault();
    void loadDefault(); // the reset values when there is none

private:
    MidiMapping& mapping_;
    TextFiles& files_;
    Preferences& preferences_;
    MidiConfig config_;
};

} // namespace Model
