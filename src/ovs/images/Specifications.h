// What layouts ask for: images, films and fonts, as objects of the text notation. Reading checks what can be
// told from the text alone; ImageLibrary.h makes the thing.
#pragma once

#include "drawing/Colour.h"
#include "notation/Document.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace Images {

// How pixels are kept. Masks have alpha alone and take their colour from whoever draws them; the run-length
// coded ones are smaller and quicker to draw where much of a picture is transparent or plain.
enum class Format { colour, mask, rle, rlemask };

// The ratio of a "scale" counts ten-thousandths.
inline constexpr std::int32_t kScaleUnit = 10000;

struct ImageSpecification {
    // One of the three says where the image comes from.
    std::string name;
    std::optional<std::string> ovsCode;
    std::string ovsFile;

    Format format = Format::colour;
    double gamma = 1.0;
    double opacity = 1.0;
    std::int32_t scale = kScaleUnit;
    std::int32_t slices = 1;
    std::int32_t index = 0;
    std::vector<std::pair<std::string, std::string>> defines;

    bool isVector() const { return ovsCode || !ovsFile.empty(); }

    // Orders them for caches: which is less has no meaning.
    auto operator<=>(const ImageSpecification&) const = default;
};

struct FilmSpecification {
    ImageSpecification image;
    std::optional<std::int32_t> frames; // else as many as the picture's pixel strip had
    bool interpolate = false;
};

struct OutlineFontSpecification {
    std::string name;
    double size = 12.0;               // units an em
    double curveQuality = 1.0;        // 1: curves stray up to a tenth of a pixel
    std::int32_t cacheResolution = 4; // places within a pixel at which a glyph may stand
    Drawing::Colour colour = Drawing::kBlack;
    double gamma = 1.0; // edge pixels are raised to this power
    double outlineWidth = 0.0;
    Drawing::Colour outlineColour = Drawing::kBlack;

    friend bool operator==(const OutlineFontSpecification&, const OutlineFontSpecification&) = default;
};

// Characters are the frames of a film. Measures are units.
struct FilmFontSpecification {
    FilmSpecification film;
    std::u16string charset;          // in the order of the frames
    std::optional<double> ascent;    // of the baseline below the top of a frame; else the frame's height
    double leading = 0.0;            // between lines
    std::optional<double> advance;   // from a character to the next; else the frame's width
    std::optional<char16_t> unknown; // shown for characters that are not in the set
};

using FontSpecification = std::variant<OutlineFontSpecification, FilmFontSpecification>;

// A text that is no object is the name of an image. Each throws ImageError or what the notation throws.
ImageSpecification readImageSpecification(const Stackbrace::Element& element);
FilmSpecification readFilmSpecification(const Stackbrace::Element& element);
FontSpecification readFontSpecification(const Stackbrace::Element& element);

} // namespace Images
