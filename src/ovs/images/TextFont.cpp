#include "images/TextFont.h"

#include "images/ImageError.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace Images {

FilmText::FilmText(Film film, const FilmFontSpecification& specification, double scale)
    : film_(std::move(film)), ascent_(specification.ascent ? *specification.ascent * scale : film_.height()),
      leading_(specification.leading * scale),
      advance_(specification.advance ? *specification.advance * scale : film_.width()) {
    if (film_.image().isMask()) {
        throw ImageError("Image is of incorrect type");
    }
    if (specification.charset.size() > static_cast<std::size_t>(film_.frames())) {
        throw ImageError("Invalid film image type");
    }
    for (std::size_t i = 0; i < specification.charset.size(); ++i) {
        frames_.try_emplace(specification.charset[i], static_cast<int>(i));
    }
    if (specification.unknown) {
        unknown_ = frames_.at(*specification.unknown);
    }
}

double FilmText::width(std::u16string_view text) const {
    return text.empty() ? 0.0 : advance_ * static_cast<double>(text.size() - 1) + film_.width();
}

bool FilmText::draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, double x,
                    double baseline, std::u16string_view text, unsigned opacity) {
    const int top = static_cast<int>(std::lround(baseline - ascent_));
    bool complete = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto found = frames_.find(text[i]);
        complete = complete && found != frames_.end();
        const int frame = found != frames_.end() ? found->second : unknown_;
        if (frame >= 0) {
            const int left = static_cast<int>(std::lround(x + advance_ * static_cast<double>(i)));
            film_.image().draw(target, clip, left, top, {.frame = frame, .opacity = opacity});
        }
    }
    return complete;
}

} // namespace Images
