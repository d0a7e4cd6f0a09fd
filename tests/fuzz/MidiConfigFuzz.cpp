// Any text that reads as a MIDI configuration reads the same after writing it; one that does not changes
// nothing.
#include "model/MidiConfigText.h"
#include "notation/Errors.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Model::MidiConfig config;
    bool read = false;
    try {
        read = Model::readMidiConfig(std::string(reinterpret_cast<const char*>(data), size), config, "fuzz");
    } catch (const Model::MidiConfigRangeError&) {
    } catch (const Stackbrace::Exception&) {
    }
    if (!read && config != Model::MidiConfig()) {
        std::abort();
    }
    Model::MidiConfig again;
    if (!Model::readMidiConfig(Model::writeMidiConfig(config), again) || again != config) {
        std::abort();
    }
    return 0;
}
