// One drawing in the making: where its pixels are and how the document's units lie on them. The document itself, each
// defined image, pattern and mask has one.
#pragma once

#include "drawing/Canvas.h"
#include "ovs/Run.h"

#include <memory>
#include <optional>

namespace OVS {

class Picture {
public:
    // How `bounds` is taken.
    enum class Kind {
        resource, // declares the canvas, and has to lie at 0,0
        image,    // declares the canvas
        pattern,  // declares the canvas, which has fewer pixels where the scale would make too many of them
        view,     // the canvas is the host's; bounds may be declared and change nothing
        mask      // the canvas is that of the drawing around; there is nothing to declare
    };

    // Without a canvas yet; `scaleX` and `scaleY` pixels a unit.
    Picture(Run& run, Kind kind, double scaleX, double scaleY)
        : run_(run), kind_(kind), placement_(Drawing::Transform::scale(scaleX, scaleY)) {}

    // The canvas is there from the start.
    Picture(Run& run, Kind kind, int width, int height, const Drawing::Transform& placement);

    void declareBounds(const Drawing::IntRect& bounds);
    void requireBounds() const; // "Undeclared bounds"

    Run& run() const { return run_; }
    Drawing::Canvas& canvas() { // of a picture with bounds
        requireBounds();
        return *canvas_;
    }
    // From the document's units to pixels.
    // With no canvas yet, the scale alone.
    const Drawing::Transform& placement() const { return placement_; }
    const Drawing::IntRect& bounds() const { return bounds_; }
    const std::shared_ptr<Drawing::Surface>& pixels() const { return pixels_; }

private:
    void makeCanvas(int width, int height);

    Run& run_;
    Kind kind_;
    bool declared_ = false;
    Drawing::IntRect bounds_;
    Drawing::Transform placement_;
    std::shared_ptr<Drawing::Surface> pixels_;
    std::unique_ptr<Drawing::Canvas> canvas_;
};

} // namespace OVS
