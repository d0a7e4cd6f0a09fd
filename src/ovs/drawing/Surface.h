// Pixels: 32-bit ARGB, alpha in the top byte (0xAARRGGBB in a native integer), the colour channels pre-multiplied by
// it. A Surface owns its pixels; a SurfaceView is what drawing is handed: anybody's pixels, a window's included.
#pragma once

#include "drawing/Geometry.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>

namespace Drawing {

using Pixel = std::uint32_t;

// A surface of these sides cannot be had; the message says which and why.
class SurfaceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A document asks for surfaces: 64 megapixels are a quarter of a gigabyte, and more than any screen or film of
// ours. A side fits twice into the rasteriser's 24.8 fixed point.
inline constexpr int kMaxSurfaceSide = 1 << 17;
inline constexpr std::int64_t kMaxSurfacePixels = std::int64_t{1} << 26;

// `stride` counts pixels from a row to the next.
template <class P>
struct BasicSurfaceView {
    P* pixels = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0;

    P* row(int y) const { return pixels + y * stride; }
    P& at(int x, int y) const { return row(y)[x]; }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    IntRect bounds() const { return {0, 0, width, height}; }

    // The part of the view inside `rect`.
    BasicSurfaceView part(const IntRect& rect) const {
        const IntRect inside = intersection(bounds(), rect);
        if (inside.isEmpty()) {
            return {};
        }
        return {row(inside.y) + inside.x, inside.width, inside.height, stride};
    }
};

using SurfaceView = BasicSurfaceView<Pixel>;

struct ConstSurfaceView : BasicSurfaceView<const Pixel> {
    ConstSurfaceView() = default;
    ConstSurfaceView(const Pixel* start, int w, int h, std::ptrdiff_t rowStride)
        : BasicSurfaceView{start, w, h, rowStride} {}
    ConstSurfaceView(const BasicSurfaceView<const Pixel>& view) : BasicSurfaceView(view) {}
    ConstSurfaceView(const SurfaceView& view)
        : BasicSurfaceView{view.pixels, view.width, view.height, view.stride} {}
};

class Surface {
public:
    Surface() = default;
    // Fully transparent. Throws SurfaceError for sides that are negative or beyond the limits above, and when
    // memory is out. A side of 0 makes an empty surface.
    Surface(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    bool isEmpty() const { return width_ == 0 || height_ == 0; }
    SurfaceView view() { return {pixels_.get(), width_, height_, width_}; }
    ConstSurfaceView view() const { return {pixels_.get(), width_, height_, width_}; }

private:
    struct Free {
        void operator()(Pixel* pixels) const noexcept;
    };
    std::unique_ptr<Pixel[], Free> pixels_;
    int width_ = 0;
    int height_ = 0;
};

// Throws the SurfaceError that the constructor would: to ask before other work is done.
void checkSurfaceSize(std::int64_t width, std::int64_t height);

} // namespace Drawing
