#include "quilt/drawing/Painting.h"

#include "quilt/Document.h"

#include <algorithm>
#include <cmath>

namespace Quilt {

namespace {

// Three dots: not every font has the character.
constexpr std::u16string_view kEllipsis = u"...";

std::int32_t aligned(double part, double space) {
    return static_cast<std::int32_t>(std::floor(part * space));
}

Drawing::Path boxPath(const Drawing::Rect& rect, double radius) {
    Drawing::Path path;
    if (radius > 0) {
        path.addRoundedRect(rect, radius, radius);
    } else {
        path.addRect(rect);
    }
    return path;
}

} // namespace

double pixelsOf(const Document& document, double units) {
    return units * document.scale().factor();
}

Drawing::Rect placed(const DrawContext& context, const Rectangle& area) {
    return {static_cast<double>(context.origin.x + area.left),
            static_cast<double>(context.origin.y + area.top), static_cast<double>(area.width),
            static_cast<double>(area.height)};
}

Drawing::IntRect clipOf(const DrawContext& context, const Rectangle& area) {
    return Drawing::intersection(
        context.canvas.target().bounds(),
        {context.origin.x + area.left, context.origin.y + area.top, area.width, area.height});
}

void fillBox(const DrawContext& context, const Rectangle& area, const Drawing::Paint& paint, double radius) {
    if (!clipOf(context, area).isEmpty()) {
        context.canvas.fill(boxPath(placed(context, area), radius), paint, Drawing::FillRule::nonZero, {});
    }
}

void fillBox(const DrawContext& context, const Rectangle& area, Colour colour, double radius) {
    fillBox(context, area, Drawing::Paint{colour}, radius);
}

void frameBox(const DrawContext& context, const Rectangle& area, Colour colour, double width, double radius) {
    if (width <= 0 || clipOf(context, area).isEmpty()) {
        return;
    }
    const Drawing::Rect outer = placed(context, area);
    const double inset = std::min({width, outer.width / 2, outer.height / 2});
    Drawing::Path path = boxPath(outer, radius);
    path.append(boxPath({outer.x + inset, outer.y + inset, outer.width - 2 * inset, outer.height - 2 * inset},
                        std::max(0.0, radius - inset)),
                {});
    context.canvas.fill(path, Drawing::Paint{colour}, Drawing::FillRule::evenOdd, {});
}

void drawImage(const DrawContext& context, const Rectangle& area, const Images::Image& image,
               const ImageManner& manner) {
    const Drawing::IntRect clip = clipOf(context, area);
    if (clip.isEmpty()) {
        return;
    }
    const Images::Image::Manner how{.frame = 0, .opacity = manner.opacity, .colour = manner.colour};
    const std::int32_t left =
        context.origin.x + area.left + aligned(manner.align.x, area.width - image.width());
    const std::int32_t top =
        context.origin.y + area.top + aligned(manner.align.y, area.height - image.height());
    if (!manner.tile) {
        image.draw(context.canvas.target(), clip, left, top, how);
        return;
    }
    // From the tile that covers the clip's corner on.
    const auto first = [](std::int32_t start, std::int32_t edge, std::int32_t step) {
        const std::int32_t past = (edge - start) % step;
        return edge - (past < 0 ? past + step : past);
    };
    for (std::int32_t y = first(top, clip.y, image.height()); y < clip.y + clip.height; y += image.height()) {
        for (std::int32_t x = first(left, clip.x, image.width()); x < clip.x + clip.width;
             x += image.width()) {
            image.draw(context.canvas.target(), clip, x, y, how);
        }
    }
}

void drawFilm(const DrawContext& context, const Rectangle& area, const Images::Film& film, double position,
              Align align) {
    const Drawing::IntRect clip = clipOf(context, area);
    if (!clip.isEmpty()) {
        film.draw(context.canvas.target(), clip,
                  context.origin.x + area.left + aligned(align.x, area.width - film.width()),
                  context.origin.y + area.top + aligned(align.y, area.height - film.height()), position);
    }
}

std::u16string fitted(Images::TextFont& font, std::u16string_view text, double width) {
    if (font.width(text) <= width) {
        return std::u16string(text);
    }
    const auto cut = [text](std::size_t length) {
        return std::u16string(text.substr(0, length)).append(kEllipsis);
    };
    std::size_t fits = 0;
    std::size_t tooLong = text.size();
    while (tooLong - fits > 1) {
        const std::size_t middle = fits + (tooLong - fits) / 2;
        (font.width(cut(middle)) <= width ? fits : tooLong) = middle;
    }
    // No blank and no half of a character before the ellipsis.
    while (fits > 0 && (text[fits - 1] == u' ' || (text[fits - 1] >= 0xD800 && text[fits - 1] < 0xDC00))) {
        --fits;
    }
    return cut(fits);
}

std::vector<std::u16string> linesOf(Images::TextFont& font, std::u16string_view text, double width,
                                    bool wrap) {
    std::vector<std::u16string> lines;
    while (true) {
        const std::size_t end = std::min(text.find(u'\n'), text.size());
        std::u16string_view rest = text.substr(0, end);
        while (wrap && font.width(rest) > width) {
            std::size_t taken = rest.find(u' ');
            for (std::size_t next = taken;
                 next != std::u16string_view::npos && font.width(rest.substr(0, next)) <= width;
                 next = rest.find(u' ', next + 1)) {
                taken = next;
            }
            if (taken == std::u16string_view::npos) {
                break; // one word that is too long
            }
            lines.emplace_back(rest.substr(0, taken));
            rest.remove_prefix(taken + 1);
        }
        lines.emplace_back(rest);
        if (end == text.size()) {
            return lines;
        }
        text.remove_prefix(end + 1);
    }
}

void drawText(const DrawContext& context, const Rectangle& area, Images::TextFont& font,
              std::u16string_view text, const TextManner& manner) {
    const Drawing::IntRect clip = clipOf(context, area);
    if (clip.isEmpty() || text.empty()) {
        return;
    }
    const double space = std::max(0, area.width - std::abs(manner.offset.x));
    const double oneLine = font.ascent() + font.descent();
    auto lines = linesOf(font, text, space, manner.wrap);
    const double room = area.height - oneLine;
    const std::size_t most =
        room < font.lineHeight() ? 1 : 1 + static_cast<std::size_t>(room / font.lineHeight());
    if (manner.wrap && lines.size() > most) {
        // The last line that there is room for says that there are more.
        lines.resize(most);
        lines.back() += kEllipsis;
    }
    const double height = oneLine + font.lineHeight() * static_cast<double>(lines.size() - 1);
    double baseline = context.origin.y + area.top + manner.offset.y +
                      manner.align.y * (area.height - height) + font.ascent();
    for (const auto& line : lines) {
        const std::u16string shown = fitted(font, line, space);
        const double x = context.origin.x + area.left + manner.offset.x +
                         manner.align.x * (area.width - font.width(shown));
        font.draw(context.canvas.target(), clip, x, std::round(baseline), shown, manner.opacity);
        baseline += font.lineHeight();
    }
}

Box::Box(const Properties& properties, const Document& document, std::string_view fill)
    : fill_(properties, fill), frame_(properties, "frame"),
      radius_(pixelsOf(document, properties.number("rounded"))),
      frameWidth_(std::max(1.0, pixelsOf(document, properties.number("frameWidth")))) {}

void Box::load(Document& document) {
    fill_.load(document);
    frame_.load(document);
}

void Box::draw(const DrawContext& context, const Rectangle& area, std::optional<Colour> fill,
               unsigned opacity) const {
    if (!fill) {
        fill = fill_.get();
    }
    if (fill) {
        fillBox(context, area, Drawing::scaled(*fill, opacity), radius_);
    }
    if (frame_.get()) {
        frameBox(context, area, Drawing::scaled(*frame_.get(), opacity), frameWidth_, radius_);
    }
}

} // namespace Quilt
