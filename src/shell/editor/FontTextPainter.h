// Letters for menus and message boxes: the editor's own, at the editor's scale.
#pragma once

#include "images/ImageLibrary.h"
#include "images/TextFont.h"
#include "platform/TextPainter.h"

#include <map>
#include <memory>

namespace Shell {

class FontTextPainter final : public Platform::TextPainter {
public:
    // The library outlives the painter.
    explicit FontTextPainter(Images::ImageLibrary& library) : library_(library) {}

    // Pixels a unit.
    void setScale(double scale);

    int lineHeight() override;
    int width(std::string_view utf8) override;
    void draw(const Platform::Canvas& canvas, Platform::Point topLeft, std::string_view utf8,
              Platform::Argb colour) override;
    Platform::MenuColours colours() override;

private:
    Images::TextFont& font(Platform::Argb colour);

    Images::ImageLibrary& library_;
    double scale_ = 1;
    std::map<Platform::Argb, std::unique_ptr<Images::TextFont>> fonts_; // one a colour, of the few there are
};

} // namespace Shell
