// A view's picture kept apart, for views that show what they hold moved, scaled or faint.
#pragma once

#include "drawing/Surface.h"
#include "quilt/Transition.h"
#include "quilt/View.h"

namespace Quilt {

class Layer {
public:
    void invalidate() { valid_ = false; }
    bool empty() const { return pixels_.isEmpty(); }
    void clear();

    // The view with all within it, or only what is within; drawn anew if it is out of date.
    void take(const View& view, bool childrenOnly);

    // Where `area` is, relative to the context's view, as `look` has it.
    void draw(const DrawContext& context, const Rectangle& area, const Transition::Look& look) const;

private:
    Drawing::Surface pixels_;
    bool valid_ = false;
};

// What of the surroundings a change within `area` concerns when it is seen as `look` has it.
Rectangle seen(const Rectangle& area, const Transition::Look& look);

} // namespace Quilt
