// The fonts that an editor's views write with. A font keeps the glyphs that it has drawn, so views that write
// alike share one.
#pragma once

#include "images/ImageLibrary.h"
#include "images/TextFont.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace Quilt {

class FontCache {
public:
    explicit FontCache(Images::ImageLibrary& images) : images_(images) {}

    // `key` stands for the specification. Throws what the library throws.
    std::shared_ptr<Images::TextFont> get(const std::string& key,
                                          const Images::FontSpecification& specification, double scale) {
        auto& font = fonts_[{key, scale}];
        if (font == nullptr) {
            font = images_.font(specification, scale);
        }
        return font;
    }

    void clear() { fonts_.clear(); }

private:
    Images::ImageLibrary& images_;
    std::map<std::pair<std::string, double>, std::shared_ptr<Images::TextFont>> fonts_;
};

} // namespace Quilt
