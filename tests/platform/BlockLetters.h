// Letters of 8 x 16 pixels that are plain blocks: enough to see where text has been drawn.
#pragma once

#include "platform/TextPainter.h"

namespace Testing {

class BlockLetters final : public Platform::TextPainter {
public:
    static constexpr int kWidth = 8;
    static constexpr int kLine = 16;

    int lineHeight() override { return kLine; }
    int width(std::string_view utf8) override { return kWidth * static_cast<int>(utf8.size()); }
    void draw(const Platform::Canvas& canvas, Platform::Point at, std::string_view utf8,
              Platform::Argb colour) override {
        fill(canvas, {at.x, at.y + 2, width(utf8), kLine - 4}, colour);
    }
};

} // namespace Testing
