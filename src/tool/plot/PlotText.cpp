#include "tool/plot/PlotText.h"

#include <algorithm>
#include <iterator>

namespace Tool {

namespace {

// A letter is a few strokes, apart by blanks. A point is a digit for x and a letter for y: c is the base
// line, g the height of small letters, i of capitals, a the descent. ~ begins a stroke whose corners are
// rounded.
struct Letter {
    char character;
    int width;
    const char* strokes;
};

constexpr Letter kLetters[] = {
    {'0', 4, "~2i0i0c4c4i2i"},
    {'1', 3, "0g2i2c"},
    {'2', 4, "~0g0i4i4f0d0c 0c4c"},
    {'3', 4, "~0i4i4f1f ~1f4f4c0c0d"},
    {'4', 4, "3c3i0e4e"},
    {'5', 4, "4i0i0f ~0f1g4g4c1c0d"},
    {'6', 4, "~3i0i0c4c4g1g0e"},
    {'7', 4, "0i4i1c"},
    {'8', 4, "~2i0i0f4f4i2i ~2f0f0c4c4f2f"},
    {'9', 4, "~1c4c4i0i0e3e4g"},
    {'a', 4, "~4e4c0c0g4g4e 4g4c"},
    {'b', 4, "0i0c ~0e0g4g4c0c0e"},
    {'c', 4, "~4f4g0g0c4c4d"},
    {'d', 4, "4i4c ~4e4c0c0g4g4e"},
    {'e', 4, "~0e4e4g0g0c4c4d 0e3e"},
    {'f', 3, "~3i1i1f 1f1c 0g3g"},
    {'g', 4, "~4e4c0c0g4g4e 4g4c ~4c4a0a"},
    {'h', 4, "0i0c ~0e0g4g4e 4e4c"},
    {'i', 0, "0g0c 0i0i"},
    {'j', 1, "1g1c ~1c1a0a 1i1i"},
    {'k', 3, "0i0c 3g0e3c"},
    {'l', 0, "0i0c"},
    {'m', 6, "0g0c ~0e0g3g3e 3e3c ~3e3g6g6e 6e6c"},
    {'n', 4, "0g0c ~0e0g4g4e 4e4c"},
    {'o', 4, "~2g0g0c4c4g2g"},
    {'p', 4, "0g0a ~0e0g4g4c0c0e"},
    {'q', 4, "4g4a ~4e4c0c0g4g4e"},
    {'r', 2, "0g0c ~0e0g2g"},
    {'s', 3, "~3g0g0e3e3c0c"},
    {'t', 3, "1i1e ~1e1c3c 0g3g"},
    {'u', 4, "0g0e ~0e0c4c4e 4g4c"},
    {'v', 4, "0g2c4g"},
    {'w', 6, "0g1c3g5c6g"},
    {'x', 4, "0g4c 4g0c"},
    {'y', 4, "0g2c 4g1a"},
    {'z', 4, "0g4g0c4c"},
    {'B', 4, "0c0i ~0i4i4f0f ~0f4f4c0c"},
    {'H', 4, "0i0c 4i4c 0f4f"},
    {'.', 0, "0c0c"},
    {',', 1, "1c0b"},
    {'-', 3, "0e3e"},
    {'/', 3, "0b3i"},
};

constexpr float kUnit = kCapHeight / 6;
constexpr int kGap = 2; // units between letters
constexpr int kBlank = 3;
constexpr float kLineWidth = 1.5f;

const Letter* letterOf(char character) {
    const auto* const found = std::ranges::find(kLetters, character, &Letter::character);
    return found == std::end(kLetters) ? nullptr : found;
}

// Cuts the corners off, twice; the ends stay.
Stroke rounded(Stroke stroke) {
    for (int round = 0; round < 2; ++round) {
        Stroke next = {stroke.front()};
        for (std::size_t i = 1; i < stroke.size(); ++i) {
            const auto between = [a = stroke[i - 1], b = stroke[i]](float part) {
                return Point{a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
            };
            next.push_back(between(0.25f));
            next.push_back(between(0.75f));
        }
        next.push_back(stroke.back());
        stroke = std::move(next);
    }
    return stroke;
}

void addStrokes(const Letter& letter, Point origin, std::vector<Stroke>& strokes) {
    std::string_view rest = letter.strokes;
    while (!rest.empty()) {
        const bool round = rest.front() == '~';
        rest.remove_prefix(round ? 1 : 0);
        Stroke stroke;
        for (; !rest.empty() && rest.front() != ' '; rest.remove_prefix(2)) {
            stroke.push_back({origin.x + static_cast<float>(rest[0] - '0') * kUnit,
                              origin.y - static_cast<float>(rest[1] - 'c') * kUnit});
        }
        rest.remove_prefix(rest.empty() ? 0 : 1);
        strokes.push_back(round ? rounded(std::move(stroke)) : std::move(stroke));
    }
}

} // namespace

float textWidth(std::string_view text) {
    int units = 0;
    for (const char c : text) {
        const Letter* const letter = letterOf(c);
        units += (letter ? letter->width : kBlank) + kGap;
    }
    return static_cast<float>(std::max(units - kGap, 0)) * kUnit;
}

void drawText(Canvas& canvas, Point at, Align align, std::string_view text, Colour colour) {
    const float shift = align == Align::left ? 0 : align == Align::right ? 1.0f : 0.5f;
    at.x -= shift * textWidth(text);
    std::vector<Stroke> strokes;
    for (const char c : text) {
        const Letter* const letter = letterOf(c);
        if (letter) {
            addStrokes(*letter, at, strokes);
        }
        at.x += static_cast<float>((letter ? letter->width : kBlank) + kGap) * kUnit;
    }
    canvas.draw(strokes, kLineWidth, colour);
}

} // namespace Tool
