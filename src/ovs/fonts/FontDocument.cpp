#include "fonts/FontDocument.h"

#include <utility>

namespace OVS {

namespace {

std::uint32_t pairOf(char16_t left, char16_t right) {
    return static_cast<std::uint32_t>(left) << 16 | right;
}

} // namespace

bool FontDocument::addGlyph(char16_t character, Glyph glyph) {
    return glyphs_.try_emplace(character, std::move(glyph)).second;
}

bool FontDocument::addKerning(char16_t left, char16_t right, double adjustment) {
    return kerning_.try_emplace(pairOf(left, right), adjustment).second;
}

const FontDocument::Glyph* FontDocument::glyph(char16_t character) const {
    const auto found = glyphs_.find(character);
    return found != glyphs_.end() ? &found->second : nullptr;
}

double FontDocument::kerning(char16_t left, char16_t right) const {
    const auto found = kerning_.find(pairOf(left, right));
    return found != kerning_.end() ? found->second : 0.0;
}

TextRun FontDocument::layOut(std::u16string_view text, double size, double tracking) const {
    TextRun run;
    run.scale = size / metrics_.unitsPerEm;
    run.glyphs.reserve(text.size());
    double pen = 0.0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Glyph* shown = glyph(text[i]);
        if (shown == nullptr || !shown->outline) {
            run.complete = false;
            shown = glyph(kReplacementCharacter);
        }
        if (i > 0) {
            pen += kerning(text[i - 1], text[i]) * run.scale + tracking;
        }
        if (shown != nullptr) {
            if (shown->outline) {
                run.glyphs.push_back({&*shown->outline, pen});
            }
            pen += shown->advance * run.scale;
        }
    }
    run.width = pen;
    return run;
}

} // namespace OVS
