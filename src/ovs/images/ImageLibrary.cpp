#include "images/ImageLibrary.h"

#include "images/ImageAdjustment.h"
#include "images/ImageError.h"
#include "images/OutlineText.h"
#include "images/Png.h"
#include "images/Resample.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Images {

namespace {

constexpr std::string_view kDoubleResolution = "_X2";

// When the library keeps more, it forgets everything that nobody uses any more and reads it again if need be.
constexpr std::size_t kMostKeptBytes = 128U << 20;

int scaledSide(int side, double factor) {
    const double scaled = std::round(side * factor);
    return static_cast<int>(
        std::clamp(scaled, 1.0, Drawing::kMaxSurfaceSide + 1.0)); // beyond: refused as a surface
}

std::size_t bytesOf(const Drawing::Surface& surface) {
    return static_cast<std::size_t>(surface.width()) * static_cast<std::size_t>(surface.height()) *
           sizeof(Drawing::Pixel);
}

} // namespace

ImageLibrary::ImageLibrary(Resources::Lookup resources, std::function<void(std::string_view)> trace)
    : resources_(std::move(resources)), trace_(std::move(trace)), fonts_(resources_) {}

std::shared_ptr<const Image> ImageLibrary::image(const ImageSpecification& specification, double scale) {
    return obtain(specification, std::nullopt, scale);
}

Film ImageLibrary::film(const FilmSpecification& specification, double scale) {
    return {obtain(specification.image, specification.frames.value_or(0), scale), specification.interpolate};
}

std::unique_ptr<TextFont> ImageLibrary::font(const FontSpecification& specification, double scale) {
    if (const auto* outline = std::get_if<OutlineFontSpecification>(&specification)) {
        auto document = fonts_.document(outline->name);
        if (document == nullptr) {
            throw ImageError("Could not obtain OVS font: " + outline->name);
        }
        return std::make_unique<OutlineText>(std::move(document), *outline,
                                             scale == kOwnResolution ? 1.0 : scale);
    }
    FilmFontSpecification font = std::get<FilmFontSpecification>(specification);
    if (!font.film.frames) {
        font.film.frames = static_cast<std::int32_t>(font.charset.size());
    }
    Film characters = film(font.film, scale);
    return std::make_unique<FilmText>(std::move(characters), font, scale == kOwnResolution ? 1.0 : scale);
}

OVS::Document ImageLibrary::vectorImage(const ImageSpecification& specification) {
    if (!specification.isVector()) {
        throw ImageError("Image is of incorrect type for OVS");
    }
    return OVS::Document(scriptOf(specification));
}

void ImageLibrary::clear() {
    images_.clear();
    pictures_.clear();
    keptBytes_ = 0;
}

void ImageLibrary::clearScaled() {
    images_.clear();
    keptBytes_ = 0;
    for (const auto& [name, source] : pictures_) {
        keptBytes_ += bytesOf(source->pixels);
    }
}

// `frames` of 0: as many as the picture has by itself.
std::shared_ptr<const Image> ImageLibrary::obtain(const ImageSpecification& specification,
                                                  std::optional<int> frames, double scale) {
    const Key key = {specification, frames ? *frames + 1 : 0, scale};
    if (const auto kept = images_.find(key); kept != images_.end()) {
        return kept->second;
    }
    const auto made = std::make_shared<const Image>(make(specification, frames, scale));
    account(made->bytes());
    images_.emplace(key, made);
    return made;
}

Image ImageLibrary::make(const ImageSpecification& specification, std::optional<int> frames, double scale) {
    const bool inFrames = specification.slices > 1 || frames;
    const std::shared_ptr<const Source> source = this->source(specification, inFrames, scale);
    Drawing::ConstSurfaceView cut = source->pixels.view();
    const auto requireDividable = [&](int count) {
        if (cut.height / source->rowsPerLine % count != 0) {
            throw ImageError("Image height not dividable by slice count");
        }
    };
    int shownFrames = source->frames; // which have to be scaled one by one
    if (specification.slices > 1) {
        requireDividable(specification.slices);
        const int height = cut.height / specification.slices;
        cut = cut.part({0, specification.index * height, cut.width, height});
        shownFrames = 1;
    }
    if (frames) {
        shownFrames = *frames > 0 ? *frames : shownFrames;
        requireDividable(shownFrames);
    }
    const double ratio = static_cast<double>(specification.scale) / kScaleUnit;
    const double factor = scale == kOwnResolution
                              ? ratio / (specification.isVector() ? source->pixelsPerUnit : 1.0)
                              : ratio * scale / source->pixelsPerUnit;
    Drawing::Surface pixels = resampledFrames(cut, shownFrames, scaledSide(cut.width, factor),
                                              scaledSide(cut.height / shownFrames, factor));
    const bool isMask = specification.format == Format::mask || specification.format == Format::rlemask;
    adjust(pixels.view(), specification.gamma, specification.opacity, isMask);
    return Image(std::move(pixels), specification.format, frames ? shownFrames : 1);
}

std::shared_ptr<const ImageLibrary::Source> ImageLibrary::source(const ImageSpecification& specification,
                                                                 bool inFrames, double scale) {
    if (!specification.isVector()) {
        return picture(specification.name);
    }
    double pixelsPerUnit = (scale == kOwnResolution ? 1.0 : scale) * specification.scale / kScaleUnit;
    if (inFrames) {
        pixelsPerUnit = std::ceil(pixelsPerUnit); // whole pixels a unit: bands begin where they should
    }
    OVS::Environment environment;
    environment.scale = pixelsPerUnit;
    environment.variables = specification.defines;
    environment.fonts = &fonts_;
    environment.trace = trace_;
    auto made = std::make_shared<Source>();
    made->pixels = OVS::Document(scriptOf(specification)).renderImage(environment);
    made->pixelsPerUnit = pixelsPerUnit;
    made->rowsPerLine = inFrames ? static_cast<int>(pixelsPerUnit) : 1;
    return made;
}

std::shared_ptr<const ImageLibrary::Source> ImageLibrary::picture(const std::string& name) {
    if (const auto kept = pictures_.find(name); kept != pictures_.end()) {
        return kept->second;
    }
    auto made = std::make_shared<Source>();
    made->pixelsPerUnit = 2.0;
    auto bytes = resources_.find(Resources::Type::png, name + std::string(kDoubleResolution));
    if (!bytes) {
        bytes = resources_.find(Resources::Type::png, name);
        if (!name.ends_with(kDoubleResolution)) {
            made->pixelsPerUnit = 1.0;
        }
    }
    if (!bytes) {
        throw ImageError("Missing image: " + name);
    }
    Picture picture = readPng(*bytes);
    made->pixels = std::move(picture.pixels);
    made->frames = picture.frames;
    account(bytesOf(made->pixels));
    pictures_.emplace(name, made);
    return made;
}

std::string ImageLibrary::scriptOf(const ImageSpecification& specification) const {
    if (specification.ovsCode) {
        return *specification.ovsCode;
    }
    if (auto text = resources_.find(Resources::Type::ovs, specification.ovsFile)) {
        return std::move(*text);
    }
    throw ImageError("Missing image: " + specification.ovsFile);
}

void ImageLibrary::account(std::size_t bytes) {
    keptBytes_ += bytes;
    if (keptBytes_ > kMostKeptBytes) {
        clear();
        keptBytes_ = bytes;
    }
}

} // namespace Images
