// Any text that reads as a patch reads the same after writing it.
#include "model/PatchText.h"
#include "notation/Errors.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::optional<Model::AtomicPatch> patch;
    try {
        patch.emplace(Model::readPatch(text, "fuzz"));
    } catch (const Model::PatchFormatError&) {
    } catch (const Stackbrace::Exception&) {
    }
    if (patch) {
        const std::string written = Model::writePatch(*patch);
        if (!Model::isPatchText(text) || Model::writePatch(Model::readPatch(written)) != written) {
            std::abort();
        }
    }
    return 0;
}
