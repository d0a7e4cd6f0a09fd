// What the instructions of an image set for those that follow; `context` copies it and comes back to it.
#pragma once

#include "drawing/Canvas.h"
#include "drawing/Paint.h"
#include "ovs/Font.h"

#include <memory>
#include <optional>

namespace OVS {

struct TextSettings {
    std::shared_ptr<const Font> font;
    Drawing::Paint colour;
    std::optional<Drawing::Pen> outline;
    Drawing::Transform transform;
    double size = 16.0;
    double tracking = 0.0;
    Drawing::Point position;
};

struct DrawingState {
    Drawing::Transform transform;
    Drawing::Pen pen;
    Drawing::Paint fill;
    Drawing::FillRule rule = Drawing::FillRule::nonZero;
    TextSettings text;
    double gamma = 1.0;
    double curveQuality = 1.0;
    double patternResolution = 1.0;
    std::shared_ptr<const Drawing::Mask> mask;

    // As they were when this state began: what `reset` and an empty `mask` go back to.
    Drawing::Transform firstTransform;
    std::shared_ptr<const Drawing::Mask> firstMask;

    // The state of a context inside this one.
    DrawingState nested() const {
        DrawingState copy = *this;
        copy.firstTransform = transform;
        copy.firstMask = mask;
        return copy;
    }
};

} // namespace OVS
