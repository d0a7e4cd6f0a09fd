#include "quilt/drawing/Layer.h"

#include "drawing/Canvas.h"
#include "quilt/drawing/Painting.h"

#include <algorithm>
#include <cmath>

namespace Quilt {

void Layer::clear() {
    pixels_ = {};
    valid_ = false;
}

void Layer::take(const View& view, bool childrenOnly) {
    const Rectangle area = view.area();
    if (valid_ && pixels_.width() == area.width && pixels_.height() == area.height) {
        return;
    }
    pixels_ = Drawing::Surface(area.width, area.height);
    valid_ = true;
    if (pixels_.isEmpty()) {
        return;
    }
    Drawing::Canvas canvas(pixels_.view());
    if (!childrenOnly) {
        view.drawTree({canvas, {}});
        return;
    }
    for (const auto& child : view.children()) {
        if (child->visible()) {
            child->drawTree({canvas, child->bounds().origin()});
        }
    }
}

void Layer::draw(const DrawContext& context, const Rectangle& area, const Transition::Look& look) const {
    if (pixels_.isEmpty() || look.opacity <= 0 || look.scale <= 0) {
        return;
    }
    Drawing::Rect at = placed(context, area);
    at.x += at.width * (1 - look.scale) / 2;
    at.y += at.height * (1 - look.scale) / 2;
    at.width *= look.scale;
    at.height *= look.scale;
    context.canvas.drawImage(pixels_.view(), at, std::min(look.opacity, 1.0), nullptr, {});
}

Rectangle seen(const Rectangle& area, const Transition::Look& look) {
    if (look.scale <= 1) {
        return area;
    }
    const auto more = [&look](std::int32_t side) {
        return static_cast<std::int32_t>(std::ceil(side * (look.scale - 1) / 2)) + 1;
    };
    return {area.left - more(area.width), area.top - more(area.height), area.width + 2 * more(area.width),
            area.height + 2 * more(area.height)};
}

} // namespace Quilt
