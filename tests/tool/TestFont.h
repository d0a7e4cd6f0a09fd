// The smallest TrueType font that has everything a converter meets: an empty sign for missing characters, a
// glyph of lines, one of curves whose points between the control points are left out, and a pair that is
// kerned.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace TestFont {

class Table {
public:
    Table& u8(unsigned value) {
        bytes_ += static_cast<char>(value & 255U);
        return *this;
    }
    Table& u16(int value) { return u8(static_cast<unsigned>(value) >> 8).u8(static_cast<unsigned>(value)); }
    Table& u32(std::uint32_t value) {
        return u16(static_cast<int>(value >> 16)).u16(static_cast<int>(value & 0xFFFF));
    }
    Table& words(std::initializer_list<int> values) {
        for (const int value : values) {
            u16(value);
        }
        return *this;
    }
    Table& text(const std::string& bytes) {
        bytes_ += bytes;
        return *this;
    }
    Table& pad() {
        while (bytes_.size() % 4 != 0) {
            u8(0);
        }
        return *this;
    }
    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

// One contour of points (x, y), each on the curve or not.
inline std::string glyph(const std::vector<std::pair<int, int>>& points, bool onCurve) {
    Table table;
    const auto left = std::ranges::min(points).first; // has to agree with the bearing in hmtx
    table.words({1, left, -1000, 1000, 1000, static_cast<int>(points.size()) - 1, 0});
    for (std::size_t i = 0; i < points.size(); ++i) {
        table.u8(onCurve ? 1 : 0);
    }
    int before = 0;
    for (const auto& point : points) {
        table.u16(point.first - before);
        before = point.first;
    }
    before = 0;
    for (const auto& point : points) {
        table.u16(point.second - before);
        before = point.second;
    }
    return table.pad().bytes();
}

inline std::string file() {
    const std::string lines = glyph({{100, 0}, {100, 500}, {400, 500}, {400, 0}}, true);
    const std::string curves = glyph({{100, 100}, {100, 300}, {-100, 300}, {-100, 100}}, false);
    std::string name;
    for (const char c : std::string("Test Font")) {
        name += std::string(1, '\0') + c;
    }
    const auto length = [](const std::string& bytes) { return static_cast<int>(bytes.size()); };
    const std::vector<std::pair<std::string, std::string>> tables = {
        {"cmap", Table()
                     .words({0,   1,   3,      1, 0,   12,  4,      40,      0,       6, 4, 1, 2,
                             '$', 'A', 0xFFFF, 0, '$', 'A', 0xFFFF, 1 - '$', 2 - 'A', 1, 0, 0, 0})
                     .bytes()},
        {"glyf", lines + curves},
        {"head", Table()
                     .u32(0x10000)
                     .u32(0x10000)
                     .u32(0)
                     .u32(0x5F0F3CF5)
                     .words({0, 1000})
                     .u32(0)
                     .u32(0)
                     .u32(0)
                     .u32(0)
                     .words({-100, 0, 700, 800, 0, 8, 2, 0, 0})
                     .bytes()},
        {"hhea",
         Table().u32(0x10000).words({800, -200, 90, 700, 0, 0, 700, 1, 0, 0, 0, 0, 0, 0, 0, 3}).bytes()},
        {"hmtx", Table().words({500, 0, 600, 100, 700, -100}).bytes()},
        {"kern", Table().words({0, 1, 0, 20, 1, 1, 6, 0, 0, 1, 2, -50}).bytes()},
        {"loca", Table().words({0, 0, length(lines) / 2, length(lines + curves) / 2}).bytes()},
        {"maxp", Table().u32(0x10000).words({3, 4, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}).bytes()},
        {"name", Table().words({0, 1, 18, 3, 1, 0x409, 4, length(name), 0}).text(name).bytes()},
    };
    Table header;
    header.u32(0x10000).words({static_cast<int>(tables.size()), 128, 3, 16});
    std::string body;
    for (const auto& [tag, bytes] : tables) {
        header.text(tag)
            .u32(0)
            .u32(static_cast<std::uint32_t>(12 + 16 * tables.size() + body.size()))
            .u32(static_cast<std::uint32_t>(bytes.size()));
        body += Table().text(bytes).pad().bytes();
    }
    return header.bytes() + body;
}

} // namespace TestFont
