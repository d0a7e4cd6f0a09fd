// What all drawings of one run of a document share: the definitions, the environment, and the time and memory that
// they may take together.
#pragma once

#include "drawing/Canvas.h"
#include "drawing/Surface.h"
#include "ovs/Document.h"
#include "ovs/Font.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace OVS {

// Some seconds, ten or so at the worst.
inline constexpr std::uint64_t kMostEffort = 5'000'000'000;

// Half a gigabyte: two pictures of the largest size.
inline constexpr std::int64_t kMostPixelsAlive = 2 * Drawing::kMaxSurfacePixels;

// An image made by `define`.
struct Image {
    std::shared_ptr<const Drawing::Surface> pixels;
    Drawing::Rect bounds; // in the image's own units
};

class Run {
public:
    explicit Run(const Environment& environment) : environment_(environment) {}

    const Environment& environment() const { return environment_; }
    Drawing::Effort& effort() { return effort_; }

    // These count as long as anybody holds them. A run that wants more fails with "Image memory limit reached".
    std::shared_ptr<Drawing::Surface> makeSurface(int width, int height);
    std::shared_ptr<const Drawing::Mask> makeMask(const Drawing::ConstSurfaceView& drawing, bool inverted,
                                                  const Drawing::Mask* outer);

    void defineFont(const std::string& name, std::shared_ptr<const Font> font);
    void defineImage(const std::string& name, Image image);
    bool hasFont(const std::string& name) const { return fonts_.contains(name); }
    bool hasImage(const std::string& name) const { return images_.contains(name); }

    // One that the document has defined, else one of the host's: "Missing font: NAME".
    std::shared_ptr<const Font> font(const std::string& name) const;
    const Image& image(const std::string& name) const; // "Missing image: NAME"

private:
    std::shared_ptr<void> reserve(std::int64_t pixels);

    const Environment& environment_;
    Drawing::Effort effort_{kMostEffort};
    std::shared_ptr<std::int64_t> pixelsLeft_ = std::make_shared<std::int64_t>(kMostPixelsAlive);
    std::map<std::string, std::shared_ptr<const Font>> fonts_;
    std::map<std::string, Image> images_;
};

} // namespace OVS
