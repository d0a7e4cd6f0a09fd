// An outline font as its document describes it: metrics, outlines by character, kerning by pairs. Immutable
// once it has been read (FontReading.h), so any number of drawings may share it.
#pragma once

#include "drawing/Path.h"
#include "ovs/Font.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace OVS {

// In font units, y up.
struct FontMetrics {
    double unitsPerEm = 1.0; // greater than 0
    double ascent = 0.0;     // 0 or more
    double descent = 0.0;    // 0 or less
    double lineGap = 0.0;

    friend bool operator==(const FontMetrics&, const FontMetrics&) = default;
};

// Stands for every character that a font lacks.
inline constexpr char16_t kReplacementCharacter = 0;

class FontDocument final : public Font {
public:
    struct Glyph {
        double advance = 0.0;
        std::optional<Drawing::Path>
            outline; // none: its path data could not be read, so it counts as missing
    };

    void setMetrics(const FontMetrics& metrics) { metrics_ = metrics; }

    // False: there is one already, and it stays.
    bool addGlyph(char16_t character, Glyph glyph);
    bool addKerning(char16_t left, char16_t right, double adjustment);

    const FontMetrics& metrics() const { return metrics_; }
    std::size_t glyphCount() const { return glyphs_.size(); }
    std::size_t kerningCount() const { return kerning_.size(); }

    // nullptr when the font lacks it.
    const Glyph* glyph(char16_t character) const;
    double kerning(char16_t left, char16_t right) const;

    // Tracking stands between characters: none after the last.
    TextRun layOut(std::u16string_view text, double size, double tracking) const override;

private:
    FontMetrics metrics_;
    std::unordered_map<char16_t, Glyph> glyphs_;
    std::unordered_map<std::uint32_t, double> kerning_; // left in the upper half
};

} // namespace OVS
