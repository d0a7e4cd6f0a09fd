#include "quilt/drawing/Assets.h"

#include "images/ImageLibrary.h"
#include "notation/Document.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "zekt/Errors.h"

#include <exception>

namespace Quilt {

namespace {

// Runs `load`, and reports what it throws.
template <typename Load>
void attempt(Document& document, const char* title, const std::string& source, const Load& load) {
    try {
        load();
    } catch (const std::exception& error) {
        reportAssetError(document, title, error, source);
    }
}

} // namespace

void reportAssetError(Document& document, const char* title, const std::exception& error,
                      const std::string& source) {
    const auto* const script = dynamic_cast<const ZEKT::Exception*>(&error);
    if (script == nullptr || script->statement().empty()) {
        document.reportError(title, error.what(), source);
        return;
    }
    const std::string place = "in: " + script->statement();
    document.editor().services().host.log(std::string(title) + ": " + error.what() + ", " + place);
    document.reportError(title, error.what(), place + "\n\n" + source);
}

void ColourAsset::load(Document& document) {
    if (given() && !colour_) {
        attempt(document, "Error reading color", text_, [this] { colour_ = Drawing::parseColour(text_); });
    }
}

void ImageAsset::load(Document& document) {
    if (!given() || image_) {
        return;
    }
    attempt(document, "Error loading image", raw_, [&] {
        const Stackbrace::Document text(raw_);
        image_ = document.editor().services().images.image(Images::readImageSpecification(text.root()),
                                                           document.scale().factor());
    });
}

void FilmAsset::load(Document& document) {
    if (!given() || film_) {
        return;
    }
    attempt(document, "Error loading film", raw_, [&] {
        const Stackbrace::Document text(raw_);
        film_ = document.editor().services().images.film(Images::readFilmSpecification(text.root()),
                                                         document.scale().factor());
    });
}

void FontAsset::load(Document& document, std::optional<Colour> colour) {
    if (font_) {
        return;
    }
    attempt(document, "Error loading font", raw_, [&] {
        Images::FontSpecification specification = Images::OutlineFontSpecification{.name = fallback_};
        if (!raw_.empty()) {
            const Stackbrace::Document text(raw_);
            specification = Images::readFontSpecification(text.root());
        }
        if (auto* const outline = std::get_if<Images::OutlineFontSpecification>(&specification)) {
            outline->colour = colour.value_or(raw_.empty() ? 0xFFFFFFFF : outline->colour);
        }
        const std::string key =
            raw_ + '\n' + fallback_ + '\n' + (colour ? std::to_string(*colour) : std::string());
        font_ = document.editor().fonts().get(key, specification, document.scale().factor());
    });
}

} // namespace Quilt
