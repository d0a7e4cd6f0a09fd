// Whatever the bytes, reading ends with messages a plug-in can be sent, in the order of their times.
#include "tool/MidiFile.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        double before = 0;
        for (const auto& message : Tool::readMidi({reinterpret_cast<const char*>(data), size})) {
            const auto [status, data1, data2] = message.bytes;
            if (!(message.seconds >= before) || !std::isfinite(message.seconds) || status < 0x80 ||
                status >= 0xF0 || data1 >= 0x80 || data2 >= 0x80) {
                std::abort();
            }
            before = message.seconds;
        }
    } catch (const Tool::MidiFileError&) {
    }
    return 0;
}
