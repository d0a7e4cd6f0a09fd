// Path data that reads can be measured, filled and stroked, whatever its numbers.
#include "drawing/Canvas.h"
#include "drawing/PathData.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const Drawing::Path path = Drawing::parsePathData({reinterpret_cast<const char*>(data), size});
        path.bounds();
        Drawing::Surface surface(24, 24);
        Drawing::Canvas canvas(surface.view());
        canvas.fill(path, {}, Drawing::FillRule::evenOdd, {});
        Drawing::Pen pen{{Drawing::kBlack}, 3.0, Drawing::Caps::round, Drawing::Joints::curve};
        canvas.stroke(path, pen, {.transform = {0.5, 0.2, -0.3, 2.0, 4.0, 4.0}});
        pen.dash = pen.gap = 0.7;
        pen.joints = Drawing::Joints::miter;
        canvas.stroke(path, pen, {});
    } catch (const Drawing::PathDataError&) {
    }
    return 0;
}
