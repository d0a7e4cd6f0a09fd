// Expands any text, which includes itself under some names, and looks every stretch of the expansion up.
#include "tombola/Processor.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (size > 4096) {
        return 0; // growth is bounded in bytes, which take their time
    }
    Tombola::Processor processor(
        [&](const std::string& name) { return name.size() < 3 ? std::optional(text) : std::nullopt; });
    std::string output = "before";
    Tombola::PositionMap map;
    try {
        processor.process("fuzz", text, output, &map);
    } catch (const Tombola::Exception& error) {
        if (output != "before" || error.line() < 1 || error.column() < 1 || *error.what() == '\0') {
            std::abort();
        }
        return 0;
    }
    const std::size_t step = std::max<std::size_t>(1, output.size() / 256);
    for (std::size_t i = 6; i < output.size(); i += step) {
        const auto position = map.locate(i);
        if (position.offset >= text.size() || text[position.offset] != output[i]) {
            std::abort();
        }
    }
    // Without a map the same comes out, and in a processor of its own it is defined anew.
    std::string again;
    Tombola::Processor([&](const std::string& name) {
        return name.size() < 3 ? std::optional(text) : std::nullopt;
    }).process("fuzz", text, again);
    if (again != output.substr(6)) {
        std::abort();
    }
    return 0;
}
