#include "images/Specifications.h"

#include "images/ImageError.h"
#include "notation/Compound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace Images {

namespace {

using Stackbrace::Element;
using Stackbrace::Structure;

// Limits of what fonts may ask for.
constexpr double kLargestFontSize = 1000.0;
constexpr double kSmallestGamma = 0.0001;
constexpr double kLargestGamma = 99.9999;
constexpr std::int32_t kFinestCacheResolution = 64;
constexpr std::int32_t kLargestScale = 100 * kScaleUnit;

bool isCompound(const Element& element) {
    return element.raw().starts_with('{');
}

// Of the numbers that are none, too, something comes out.
double clamped(double value, double low, double high) {
    return value >= low ? std::min(value, high) : low;
}

Format readFormat(const std::string& text) {
    static constexpr std::array<std::pair<std::string_view, Format>, 3> kFormats = {
        {{"rle", Format::rle}, {"mask", Format::mask}, {"rlemask", Format::rlemask}}};
    for (const auto& [name, format] : kFormats) {
        if (text == name) {
            return format;
        }
    }
    throw ImageError("Invalid image format specification: " + text);
}

std::int32_t readScale(const Element& element) {
    const double ratio = std::round(element.float64() * kScaleUnit);
    if (!(ratio >= 1.0 && ratio <= kLargestScale)) {
        throw ImageError("Image scale out of range: " + element.text());
    }
    return static_cast<std::int32_t>(ratio);
}

// Documents hold bytes; what is drawn are characters, which texts hold as UTF-8 or, where that does not fit,
// one a byte.
std::u16string toUtf16(const std::string& text) {
    std::u16string characters;
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t i) -> unsigned {
            return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0;
        };
        const auto follows = [&](std::size_t i) { return (byte(i) & 0xC0) == 0x80; };
        if (byte(0) >= 0xC2 && byte(0) <= 0xDF && follows(1)) {
            characters += static_cast<char16_t>((byte(0) & 0x1F) << 6 | (byte(1) & 0x3F));
            at += 2;
        } else if (byte(0) >= 0xE0 && byte(0) <= 0xEF && follows(1) && follows(2) &&
                   (byte(0) != 0xE0 || byte(1) >= 0xA0)) {
            characters +=
                static_cast<char16_t>((byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
            at += 3;
        } else {
            characters += static_cast<char16_t>(byte(0));
            ++at;
        }
    }
    return characters;
}

double inRange(const Element& value, double low, double high, const char* complaint) {
    const double number = value.float64();
    if (!(number >= low && number <= high)) {
        throw ImageError(complaint + value.text());
    }
    return number;
}

OutlineFontSpecification readOutlineFont(const Structure& keys) {
    OutlineFontSpecification font;
    font.name = keys.at("ovsfont").string();
    if (const Element* size = keys.find("size")) {
        font.size = inRange(*size, 0.0, kLargestFontSize, "OVS font size out of range: ");
        if (font.size == 0.0) {
            throw ImageError("OVS font size out of range: " + size->text());
        }
    }
    if (const Element* quality = keys.find("curveQuality")) {
        font.curveQuality = clamped(quality->float64(), kSmallestGamma, kLargestGamma);
    }
    if (const Element* resolution = keys.find("cacheResolution")) {
        font.cacheResolution = static_cast<std::int32_t>(
            inRange(*resolution, 1.0, kFinestCacheResolution, "OVS font cache resolution out of range: "));
    }
    if (const Element* colour = keys.find("color")) {
        font.colour = Drawing::parseColour(colour->string());
    }
    if (const Element* gamma = keys.find("gamma")) {
        font.gamma = inRange(*gamma, kSmallestGamma, kLargestGamma, "OVS font gamma out of range: ");
    }
    if (const Element* width = keys.find("outlineWidth")) {
        font.outlineWidth = inRange(*width, 0.0, HUGE_VAL, "Negative OVS font outlineWidth: ");
        font.outlineWidth = std::min(font.outlineWidth, kLargestFontSize);
    }
    if (const Element* colour = keys.find("outlineColor")) {
        font.outlineColour = Drawing::parseColour(colour->string());
    }
    return font;
}

std::u16string consecutiveCharacters(const Structure& keys, const Element& element) {
    constexpr std::int64_t kCharacters = 0x10000;
    const std::int64_t first = keys.at("first").integer();
    const std::int64_t count = keys.at("chars").integer();
    if (first < 0 || count < 1 || first + count > kCharacters) {
        throw ImageError("Invalid font specification: " + element.text());
    }
    std::u16string characters;
    for (std::int64_t code = first; code < first + count; ++code) {
        characters += static_cast<char16_t>(code);
    }
    return characters;
}

FilmFontSpecification readFilmFont(const Structure& keys, const Element& element) {
    FilmFontSpecification font;
    font.film = readFilmSpecification(keys.at("film"));
    const Element* charset = keys.find("charset");
    font.charset =
        charset != nullptr ? toUtf16(charset->string()) : consecutiveCharacters(keys, element);
    if (const Element* ascent = keys.find("ascent")) {
        font.ascent = ascent->float64();
    }
    if (const Element* leading = keys.find("leading")) {
        font.leading = leading->float64();
    }
    if (const Element* advance = keys.find("advance")) {
        font.advance = advance->float64();
    }
    const auto usable = [](double measure) { return std::abs(measure) <= kLargestFontSize; };
    if (font.charset.empty() || !usable(font.ascent.value_or(0.0)) || !usable(font.leading) ||
        !usable(font.advance.value_or(0.0))) {
        throw ImageError("Invalid font specification: " + element.text());
    }
    if (const Element* unknown = keys.find("unknown")) {
        const std::u16string character = toUtf16(unknown->string());
        if (character.size() != 1 || font.charset.find(character.front()) == std::u16string::npos) {
            throw ImageError("Replacement char not found in charset");
        }
        font.unknown = character.front();
    }
    return font;
}

} // namespace

ImageSpecification readImageSpecification(const Element& element) {
    ImageSpecification image;
    if (!isCompound(element)) {
        image.name = element.string();
    } else {
        const Structure keys = element.structure();
        image.name = keys["name"].string();
        image.ovsFile = keys["ovsFile"].string();
        if (const Element* code = keys.find("ovsCode")) {
            image.ovsCode = code->string();
        }
        if (const Element* format = keys.find("format")) {
            image.format = readFormat(format->string());
        }
        if (const Element* gamma = keys.find("gamma")) {
            image.gamma = clamped(gamma->float64(), 0.0, 4.0);
        }
        if (const Element* opacity = keys.find("opacity")) {
            image.opacity = clamped(opacity->float64(), 0.0, 1.0);
        }
        if (const Element* scale = keys.find("scale")) {
            image.scale = readScale(*scale);
        }
        if (const Element* slices = keys.find("slices")) {
            image.slices = slices->integer();
        }
        if (const Element* index = keys.find("index")) {
            image.index = index->integer();
        }
        if (const Element* defines = keys.find("defines")) {
            const Structure variables = defines->structure();
            for (const Structure::Entry& variable : variables) {
                image.defines.emplace_back(variable.key, variable.value.string());
            }
        }
    }
    if ((image.name.empty() ? 0 : 1) + (image.ovsCode ? 1 : 0) + (image.ovsFile.empty() ? 0 : 1) != 1) {
        throw ImageError("Invalid image specification: " + element.text());
    }
    if (image.slices < 1) {
        throw ImageError("Invalid image slice count");
    }
    if (image.index < 0 || image.index >= image.slices) {
        throw ImageError("Invalid image slice index");
    }
    return image;
}

FilmSpecification readFilmSpecification(const Element& element) {
    FilmSpecification film;
    if (!isCompound(element)) {
        film.image.name = element.string();
        return film;
    }
    const Structure keys = element.structure();
    film.image = readImageSpecification(keys.at("image"));
    if (const Element* frames = keys.find("frames")) {
        film.frames = frames->integer();
        if (*film.frames < 1) {
            throw ImageError("Invalid frame film count");
        }
    }
    if (const Element* interpolate = keys.find("interpolate")) {
        film.interpolate = interpolate->boolean();
    }
    return film;
}

FontSpecification readFontSpecification(const Element& element) {
    if (isCompound(element)) {
        const Structure keys = element.structure();
        if (keys.find("ovsfont") != nullptr) {
            return readOutlineFont(keys);
        }
        if (keys.find("film") != nullptr) {
            return readFilmFont(keys, element);
        }
    }
    throw ImageError("Invalid font specification: " + element.text());
}

} // namespace Images
