// A font document is refused with an exception of the language, or can be written with.
#include "fonts/FontReading.h"
#include "zekt/Errors.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto font = OVS::readFont({reinterpret_cast<const char*>(data), size});
        const OVS::TextRun run = font->layOut(u"AV \u00E9\u4E00", 12.0, 0.5);
        for (const OVS::PlacedGlyph& glyph : run.glyphs) {
            if (glyph.outline == nullptr) {
                std::abort();
            }
        }
        if (font->kerningCount() > OVS::kMostKerningPairs || !(font->metrics().unitsPerEm > 0.0)) {
            std::abort();
        }
    } catch (const ZEKT::Exception&) {
        return 0;
    }
    return 0;
}
