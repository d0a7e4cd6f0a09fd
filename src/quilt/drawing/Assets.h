// What views draw with, as their layout names it: read and loaded when a view is about to be drawn for the
// first time, so that a layout can be loaded where there is nothing to draw with. What cannot be had is
// reported to the document and missing from the picture; the view works without it.
#pragma once

#include "drawing/Colour.h"
#include "images/Film.h"
#include "images/Image.h"
#include "images/TextFont.h"
#include "quilt/Properties.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Quilt {

class Document;

using Drawing::Colour;

// `source` is the specification as the layout has it. The statement at which a script failed goes to the log,
// and is shown to those who asked for verbose errors: in a long script the message alone helps nobody.
void reportAssetError(Document& document, const char* title, const std::exception& error,
                      const std::string& source);

class ColourAsset {
public:
    ColourAsset() = default;
    ColourAsset(const Properties& properties, std::string_view name) : text_(properties.string(name)) {}
    explicit ColourAsset(std::string text) : text_(std::move(text)) {}

    bool given() const { return !text_.empty(); }
    void load(Document& document);
    const std::optional<Colour>& get() const { return colour_; }

private:
    std::string text_;
    std::optional<Colour> colour_;
};

class ImageAsset {
public:
    ImageAsset() = default;
    ImageAsset(const Properties& properties, std::string_view name) : raw_(properties.raw(name)) {}
    explicit ImageAsset(std::string raw) : raw_(std::move(raw)) {}

    bool given() const { return !raw_.empty(); }
    void load(Document& document);
    const Images::Image* get() const { return image_.get(); }

private:
    std::string raw_;
    std::shared_ptr<const Images::Image> image_;
};

class FilmAsset {
public:
    FilmAsset() = default;
    FilmAsset(const Properties& properties, std::string_view name) : raw_(properties.raw(name)) {}

    bool given() const { return !raw_.empty(); }
    void load(Document& document);
    const Images::Film* get() const { return film_ ? &*film_ : nullptr; }

private:
    std::string raw_;
    std::optional<Images::Film> film_;
};

// A font in one color or another.
class FontAsset {
public:
    FontAsset() = default;
    // `fallback` is the name of the font where the layout has none.
    FontAsset(const Properties& properties, std::string_view name, std::string fallback)
        : raw_(properties.raw(name)), fallback_(std::move(fallback)) {}

    void load(Document& document, std::optional<Colour> colour = std::nullopt);
    Images::TextFont* get() const { return font_.get(); }

private:
    std::string raw_;
    std::string fallback_ = "sans-serif";
    std::shared_ptr<Images::TextFont> font_;
};

// Something for each of some states of a control.
template <typename Asset>
class StateAssets {
public:
    StateAssets() = default;
    StateAssets(const Properties& properties, std::string_view name) {
        if (properties.has(name)) {
            const auto structure = properties.element(name).structure();
            for (const auto& [state, value] : structure) {
                assets_.emplace_back(std::string(state), Asset(textOf(value)));
            }
        }
    }

    void load(Document& document) {
        for (auto& [state, asset] : assets_) {
            asset.load(document);
        }
    }
    const Asset* find(std::string_view state) const {
        for (const auto& [name, asset] : assets_) {
            if (name == state) {
                return &asset;
            }
        }
        return nullptr;
    }

private:
    static std::string textOf(const Stackbrace::Element& value) {
        if constexpr (std::is_same_v<Asset, ColourAsset>) {
            return value.empty() ? std::string() : value.string();
        } else {
            return std::string(value.raw());
        }
    }

    std::vector<std::pair<std::string, Asset>> assets_;
};

} // namespace Quilt
