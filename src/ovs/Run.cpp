#include "ovs/Run.h"

#include "ovs/Values.h"

#include <utility>

namespace OVS {

// The share is given back when the last holder lets go.
std::shared_ptr<void> Run::reserve(std::int64_t pixels) {
    if (pixels > *pixelsLeft_) {
        fail("Image memory limit reached");
    }
    *pixelsLeft_ -= pixels;
    return {static_cast<void*>(pixelsLeft_.get()),
            [counter = pixelsLeft_, pixels](void*) { *counter += pixels; }};
}

std::shared_ptr<Drawing::Surface> Run::makeSurface(int width, int height) {
    struct Counted {
        std::shared_ptr<void> share;
        Drawing::Surface surface;
    };
    try {
        Drawing::checkSurfaceSize(width, height);
        effort_.spend(static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height));
        auto counted = std::make_shared<Counted>();
        counted->share = reserve(static_cast<std::int64_t>(width) * height);
        counted->surface = Drawing::Surface(width, height);
        return {counted, &counted->surface};
    } catch (const Drawing::SurfaceError& error) {
        fail(error.what());
    }
}

std::shared_ptr<const Drawing::Mask> Run::makeMask(const Drawing::ConstSurfaceView& drawing, bool inverted,
                                                   const Drawing::Mask* outer) {
    struct Counted {
        std::shared_ptr<void> share;
        Drawing::Mask mask;
    };
    constexpr std::int64_t kMasksToAPixel = 4; // in memory
    effort_.spend(static_cast<std::uint64_t>(drawing.width) * static_cast<std::uint64_t>(drawing.height));
    auto share = reserve(static_cast<std::int64_t>(drawing.width) * drawing.height / kMasksToAPixel);
    auto counted =
        std::make_shared<Counted>(Counted{std::move(share), Drawing::Mask(drawing, inverted, outer)});
    return {counted, &counted->mask};
}

void Run::defineFont(const std::string& name, std::shared_ptr<const Font> font) {
    fonts_.emplace(name, std::move(font));
}

void Run::defineImage(const std::string& name, Image image) {
    images_.emplace(name, std::move(image));
}

std::shared_ptr<const Font> Run::font(const std::string& name) const {
    if (const auto found = fonts_.find(name); found != fonts_.end()) {
        return found->second;
    }
    if (environment_.fonts) {
        if (auto font = environment_.fonts->find(name)) {
            return font;
        }
    }
    fail("Missing font: " + name);
}

const Image& Run::image(const std::string& name) const {
    const auto found = images_.find(name);
    if (found == images_.end()) {
        fail("Missing image: " + name);
    }
    return found->second;
}

} // namespace OVS
