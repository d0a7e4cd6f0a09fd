// An image whose frames show a control or an animation at its positions.
#pragma once

#include "images/Image.h"

#include <memory>

namespace Images {

class Film {
public:
    // Throws ImageError "Invalid film image type": between the frames of coded pictures and masks there is
    // nothing.
    Film(std::shared_ptr<const Image> image, bool interpolate);

    int width() const { return image_->width(); }
    int height() const { return image_->height(); }
    int frames() const { return image_->frames(); }
    const Image& image() const { return *image_; }

    // `position` counts frames from 0. Between two frames shows the nearer one, or with interpolation as much
    // of each as it is near.
    void draw(const Drawing::SurfaceView& target, const Drawing::IntRect& clip, int x, int y, double position,
              unsigned opacity = 255) const;

private:
    std::shared_ptr<const Image> image_;
    bool interpolate_;
};

} // namespace Images
