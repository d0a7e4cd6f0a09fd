#include "drawing/Colour.h"

#include "zekt/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

namespace Drawing {

namespace {

constexpr std::array<std::pair<std::string_view, Colour>, 17> kNames = {{
    {"aqua", 0xFF00FFFF},   {"black", 0xFF000000}, {"blue", 0xFF0000FF}, {"fuchsia", 0xFFFF00FF},
    {"gray", 0xFF808080},   {"green", 0xFF008000}, {"lime", 0xFF00FF00}, {"maroon", 0xFF800000},
    {"navy", 0xFF000080},   {"none", 0x00000000},  {"olive", 0xFF808000}, {"purple", 0xFF800080},
    {"red", 0xFFFF0000},    {"silver", 0xFFC0C0C0}, {"teal", 0xFF008080}, {"white", 0xFFFFFFFF},
    {"yellow", 0xFFFFFF00},
}};

std::string folded(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

Colour hexColour(std::string_view text) {
    const std::string_view digits = text.substr(1);
    Colour value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    const bool allDigits = error == std::errc() && end == digits.data() + digits.size();
    if (!allDigits || (digits.size() != 6 && digits.size() != 8)) {
        throw ColourError("Invalid color: " + std::string(text));
    }
    if (digits.size() == 6) {
        return value | kBlack;
    }
    if (!isPremultiplied(value)) {
        throw ColourError("Invalid pre-multiplied alpha color: " + std::string(digits));
    }
    return value;
}

double component(std::string_view kind, std::size_t position, std::string_view text) {
    double value = 0.0;
    switch (ZEKT::readNumber(text, value)) {
    case ZEKT::Numeric::yes:
        break;
    case ZEKT::Numeric::overflow:
        throw ColourError("Number overflow");
    default:
        throw ColourError("Invalid number: " + std::string(text));
    }
    if (!(value >= 0.0 && value <= 1.0)) {
        throw ColourError(std::string(kind) + " value number " + std::to_string(position) +
                          " out of range [0..1]: " + std::string(text));
    }
    return value;
}

Colour componentColour(std::string_view kind, std::string_view list) {
    constexpr std::size_t kFewest = 3;
    constexpr std::size_t kMost = 4;
    std::array<std::string_view, kMost> parts;
    std::size_t count = 0;
    for (;;) {
        const auto comma = list.find(',');
        if (count < kMost) {
            parts[count] = trimmed(list.substr(0, comma));
        }
        ++count;
        if (comma == std::string_view::npos) {
            break;
        }
        list.remove_prefix(comma + 1);
    }
    if (count < kFewest) {
        throw ColourError("Too few list elements (got " + std::to_string(count) + ", expected at least 3)");
    }
    if (count > kMost) {
        throw ColourError("Too many list elements (got " + std::to_string(count) + ", expected at most 4)");
    }
    std::array<double, kMost> values = {0.0, 0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = component(kind, i + 1, parts[i]);
    }
    return kind == "rgb" ? colourFromRGB(values[0], values[1], values[2], values[3])
                         : colourFromHSV(values[0], values[1], values[2], values[3]);
}

unsigned byteOf(double value) {
    return static_cast<unsigned>(std::lround(value * 255.0));
}

double clamped(double value) {
    return value >= 0.0 ? std::min(value, 1.0) : 0.0; // not a number becomes 0
}

} // namespace

Colour parseColour(std::string_view text) {
    if (text.starts_with('#')) {
        return hexColour(text);
    }
    const std::string name = folded(text);
    if (name.size() >= 5 && name.ends_with(')')) {
        for (const std::string_view kind : {"rgb", "hsv"}) {
            if (name.starts_with(kind) && name[3] == '(') {
                return componentColour(kind, text.substr(4, text.size() - 5));
            }
        }
    }
    for (const auto& [known, colour] : kNames) {
        if (known == name) {
            return colour;
        }
    }
    throw ColourError("Invalid color name: " + std::string(text));
}

Colour colourFromRGB(double red, double green, double blue, double alpha) {
    const double a = clamped(alpha);
    return pixelOf(byteOf(a), byteOf(clamped(red) * a), byteOf(clamped(green) * a), byteOf(clamped(blue) * a));
}

Colour colourFromHSV(double hue, double saturation, double value, double alpha) {
    const double sector = clamped(hue) * 6.0;
    const double s = clamped(saturation);
    const double v = clamped(value);
    // A channel falls from v to v (1 - s) as the hue leaves its third of the circle.
    const auto channel = [&](double offset) {
        const double k = std::fmod(offset + sector, 6.0);
        return v - v * s * std::max(0.0, std::min({k, 4.0 - k, 1.0}));
    };
    return colourFromRGB(channel(5.0), channel(3.0), channel(1.0), alpha);
}

} // namespace Drawing
