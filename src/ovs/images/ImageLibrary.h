// Where views get their images, films and fonts: a specification and the display's scale in, something to
// draw out. What has been made is kept and shared until the scale changes. For one thread at a time.
//
// Pictures are stored at double resolution and then have "_X2" at the end of their name, which is asked for
// without it; other pictures have a pixel a unit.
#pragma once

#include "fonts/FontLibrary.h"
#include "images/Film.h"
#include "images/Image.h"
#include "images/Specifications.h"
#include "images/TextFont.h"
#include "ovs/Document.h"
#include "resources/Lookup.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace Images {

// Pixels a unit of the layout; kOwnResolution: the pixels that a picture has, one a unit for vector images.
inline constexpr double kOwnResolution = 0.0;

class ImageLibrary {
public:
    // `trace` gets what scripts of images have to say.
    explicit ImageLibrary(Resources::Lookup resources = Resources::Lookup(),
                          std::function<void(std::string_view)> trace = {});

    // These throw ImageError, SurfaceError and, for vector images, the exceptions of their scripts.
    std::shared_ptr<const Image> image(const ImageSpecification& specification, double scale);
    Film film(const FilmSpecification& specification, double scale);
    std::unique_ptr<TextFont> font(const FontSpecification& specification, double scale);

    // The script itself, for views that run it whenever they are drawn. Throws ImageError "Image is of
    // incorrect type for OVS" for the name of a picture.
    OVS::Document vectorImage(const ImageSpecification& specification);

    OVS::FontLibrary& fonts() { return fonts_; }

    void clear();

    // For another scale: what pictures hold is kept, what was made of them is not.
    void clearScaled();

private:
    struct Source {
        Drawing::Surface pixels;
        int frames = 1;
        double pixelsPerUnit = 1.0;
        int rowsPerLine = 1; // rows of pixels that a line of the image's own height became
    };
    struct Key {
        ImageSpecification specification;
        int frames; // 0: no film
        double scale;
        auto operator<=>(const Key&) const = default;
    };

    std::shared_ptr<const Image> obtain(const ImageSpecification& specification, std::optional<int> frames,
                                        double scale);
    Image make(const ImageSpecification& specification, std::optional<int> frames, double scale);
    std::shared_ptr<const Source> source(const ImageSpecification& specification, bool inFrames,
                                         double scale);
    std::shared_ptr<const Source> picture(const std::string& name);
    std::string scriptOf(const ImageSpecification& specification) const;
    void account(std::size_t bytes);

    Resources::Lookup resources_;
    std::function<void(std::string_view)> trace_;
    OVS::FontLibrary fonts_;
    std::map<Key, std::shared_ptr<const Image>> images_;
    std::map<std::string, std::shared_ptr<const Source>> pictures_;
    std::size_t keptBytes_ = 0;
};

} // namespace Images
