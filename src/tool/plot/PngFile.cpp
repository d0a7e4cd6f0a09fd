#include "tool/plot/PngFile.h"

#include "tool/PixelFile.h"
#include "tool/plot/Canvas.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Tool {

namespace {

std::vector<std::uint8_t> bytesOf(const Canvas& canvas) {
    const auto byte = [](float level) {
        return static_cast<std::uint8_t>(std::clamp(level, 0.0f, 1.0f) * 255 + 0.5f);
    };
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Colour colour = canvas.at(x, y);
            bytes.insert(bytes.end(), {byte(colour.r), byte(colour.g), byte(colour.b)});
        }
    }
    return bytes;
}

} // namespace

void writePng(const std::filesystem::path& path, const Canvas& canvas) {
    writePixels(path, canvas.width(), canvas.height(), PixelBytes::rgb, bytesOf(canvas));
}

} // namespace Tool
