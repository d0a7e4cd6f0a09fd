#include "drawing/Compose.h"
#include "images/ImageLibrary.h"
#include "notation/Document.h"
#include "ovs/Document.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/drawing/Painting.h"
#include "quilt/views/Control.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <utility>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kRaster[] = {
    {"image", image, "", "The picture."},
    {"align", align, "left top", "Where it stands in the bounds."},
    {"tile", boolean, "false", "Whether it is repeated to fill the bounds."},
};

constexpr Property kVector[] = {
    {"image", image, "", "The picture: a specification with `ovsCode` or `ovsFile`."},
    {"align", align, "left top", "Where it stands in the bounds."},
    {"live", boolean, "false", "Whether it is drawn anew when variables change that it reads."},
    {"interval", number, "0.033", "At least so many seconds between two of those drawings.", "", 0, 60},
};

constexpr Property kAnimation[] = {
    {"film", film, "", "The frames."},
    {"variable", variable, "", "Whose value chooses the frame; without one the frames go by themselves."},
    {"range", range, "{ 0, 1 }",
     "The variable's values for the first and the last frame; true is 1, false 0."},
    {"interval", number, "0.04", "Seconds a frame.", "", 0.001, 3600},
    {"loop", boolean, "true", "Whether the last frame is followed by the first."},
    {"running", condition, "true", "Whether the frames go by."},
    {"align", align, "left top", "Where the frames stand in the bounds."},
};

constexpr Property kMarker[] = {
    {"variable", variable, "", "Whose value moves the mark."},
    {"range", range, "{ 0, 1 }", "Its values at both ends."},
    {"image", image, "", "The mark."},
    {"color", color, "white", "Of the mark when it has no image."},
    {"size", number, "2", "Its length along the way, in units, when it has no image.", "", 0, 1000},
    {"rounded", number, "0", "Radius of its corners, in units.", "", 0, 1000},
};

std::chrono::milliseconds milliseconds(double seconds) {
    return std::chrono::milliseconds(std::max<std::int64_t>(1, std::llround(seconds * 1000)));
}

class Raster : public View {
public:
    explicit Raster(const ViewSetup& setup)
        : View(setup), image_(setup.properties, "image"), manner_{setup.properties.align("align"),
                                                                  setup.properties.knows("tile") &&
                                                                      setup.properties.boolean("tile")} {}

    void prepare() override { image_.load(document()); }
    void draw(const DrawContext& context) const override {
        if (const auto* const image = image_.get()) {
            drawImage(context, area(), *image, manner_);
        }
    }

private:
    ImageAsset image_;
    ImageManner manner_;
};

// A script that reads the layout's variables as its own. It runs when one that it has read is another, no
// sooner than `interval` after it ran last; between that its picture is kept.
class LiveVector : public View {
public:
    explicit LiveVector(const ViewSetup& setup)
        : View(setup), raw_(setup.properties.raw("image")),
          interval_(milliseconds(setup.properties.number("interval"))) {}

    void prepare() override {
        try {
            const Stackbrace::Document text(raw_);
            const auto specification = Images::readImageSpecification(text.root());
            script_.emplace(library().vectorImage(specification));
            defines_ = specification.defines;
        } catch (const std::exception& error) {
            reportAssetError(document(), "Error loading image", error, raw_);
            return;
        }
        run();
        ran_ = document().editor().services().clock.now();
    }

    void refresh() override {
        View::refresh();
        asked_ = true;
    }

    bool ticking() const override { return asked_ && script_; }
    void tick(std::chrono::milliseconds now) override {
        if (now - ran_ < interval_) {
            return;
        }
        asked_ = false;
        const Variables& variables = document().variables();
        const bool same = std::ranges::all_of(read_, [&variables](const auto& variable) {
            return variables.find(variable.first) == variable.second;
        });
        if (!same) {
            ran_ = now;
            run();
            invalidate();
        }
    }

    void draw(const DrawContext& context) const override {
        const Drawing::IntRect clip = clipOf(context, area());
        if (!clip.isEmpty() && !pixels_.isEmpty()) {
            Drawing::compose(context.canvas.target(), pixels_.view(), context.origin.x, context.origin.y);
        }
    }

private:
    Images::ImageLibrary& library() const { return document().editor().services().images; }

    void run() {
        read_.clear();
        OVS::Environment environment;
        environment.scale = document().scale().factor();
        environment.variables = defines_;
        environment.fonts = &library().fonts();
        environment.outerVariable = [this](std::string_view name) {
            const auto known = read_.find(name);
            return known != read_.end()
                       ? known->second
                       : read_.emplace(name, document().variables().find(name)).first->second;
        };
        try {
            Drawing::Surface pixels(area().width, area().height);
            script_->draw(pixels.view(), environment);
            pixels_ = std::move(pixels);
            failed_ = false;
        } catch (const std::exception& error) {
            if (!std::exchange(failed_, true)) {
                reportAssetError(document(), "Error drawing image", error, raw_);
            }
        }
    }

    std::string raw_;
    std::chrono::milliseconds interval_;
    std::optional<OVS::Document> script_;
    std::vector<std::pair<std::string, std::string>> defines_;
    std::map<std::string, std::optional<std::string>, std::less<>> read_; // in the last run
    Drawing::Surface pixels_;
    std::chrono::milliseconds ran_{0};
    bool asked_ = false; // variables may have changed since the last look
    bool failed_ = false;
};

std::unique_ptr<View> makeVector(const ViewSetup& setup) {
    if (setup.properties.boolean("live")) {
        return std::make_unique<LiveVector>(setup);
    }
    return std::make_unique<Raster>(setup);
}

class Animation : public View {
public:
    explicit Animation(const ViewSetup& setup)
        : View(setup), film_(setup.properties, "film"), variable_(setup.properties.string("variable")),
          range_(setup.properties.range("range")),
          interval_(milliseconds(setup.properties.number("interval"))),
          loop_(setup.properties.boolean("loop")), running_(setup.properties.string("running")),
          align_(setup.properties.align("align")) {}

    void prepare() override { film_.load(document()); }

    void refresh() override {
        View::refresh();
        const bool ran = isRunning();
        running_.refresh(document());
        if (isRunning() && !ran) {
            next_.reset();
        }
        if (!variable_.empty()) {
            const auto text = document().variables().find(variable_);
            const double position =
                range_.position((text ? numberOf(*text) : std::nullopt).value_or(range_.from));
            if (std::exchange(position_, position) != position) {
                invalidate();
            }
        }
    }

    bool ticking() const override { return variable_.empty() && isRunning() && frames() > 1; }
    void tick(std::chrono::milliseconds now) override {
        if (!next_) {
            next_ = now + interval_;
        }
        if (now < *next_) {
            return;
        }
        // Frames whose time has passed unseen are left out.
        const auto steps = (now - *next_) / interval_ + 1;
        *next_ += steps * interval_;
        const std::int64_t frame = frame_ + steps;
        const std::int64_t shown = loop_ ? frame % frames() : std::min<std::int64_t>(frame, frames() - 1);
        if (std::exchange(frame_, shown) != shown) {
            invalidate();
        }
    }

    void draw(const DrawContext& context) const override {
        if (const auto* const film = film_.get()) {
            drawFilm(context, area(), *film,
                     variable_.empty() ? static_cast<double>(frame_) : position_ * (film->frames() - 1),
                     align_);
        }
    }

private:
    bool isRunning() const { return running_.boolean().value_or(false); }
    int frames() const { return film_.get() == nullptr ? 0 : film_.get()->frames(); }

    FilmAsset film_;
    std::string variable_;
    Range range_;
    std::chrono::milliseconds interval_;
    bool loop_;
    LiveText running_;
    Align align_;
    double position_ = 0;
    std::int64_t frame_ = 0;
    std::optional<std::chrono::milliseconds> next_;
};

class Marker : public View {
public:
    explicit Marker(const ViewSetup& setup)
        : View(setup), variable_(setup.properties.string("variable")),
          range_(setup.properties.range("range")), image_(setup.properties, "image"),
          colour_(setup.properties, "color"),
          size_(std::max(1, static_cast<std::int32_t>(
                                std::lround(pixelsOf(document(), setup.properties.number("size")))))),
          radius_(pixelsOf(document(), setup.properties.number("rounded"))),
          horizontal_(setup.properties.string("orientation") == "horizontal") {}

    void prepare() override {
        image_.load(document());
        colour_.load(document());
    }
    void refresh() override {
        View::refresh();
        const auto text = document().variables().find(variable_);
        const double position =
            range_.position((text ? numberOf(*text) : std::nullopt).value_or(range_.from));
        if (position != position_) {
            invalidate(mark());
            position_ = position;
            invalidate(mark());
        }
    }
    void draw(const DrawContext& context) const override {
        if (const auto* const image = image_.get()) {
            drawImage(context, mark(), *image, {.align = {0.5, 0.5}});
        } else if (colour_.get()) {
            fillBox(context, mark(), *colour_.get(), radius_);
        }
    }

private:
    Rectangle mark() const {
        const auto* const image = image_.get();
        const std::int32_t length = image == nullptr ? size_ : horizontal_ ? image->width() : image->height();
        const std::int32_t way = std::max(0, (horizontal_ ? area().width : area().height) - length);
        const auto at =
            static_cast<std::int32_t>(std::lround(way * (horizontal_ ? position_ : 1 - position_)));
        return horizontal_ ? Rectangle{at, 0, length, area().height} : Rectangle{0, at, area().width, length};
    }

    std::string variable_;
    Range range_;
    ImageAsset image_;
    ColourAsset colour_;
    std::int32_t size_;
    double radius_;
    bool horizontal_;
    double position_ = 0;
};

} // namespace

ViewType rasterType() {
    return {"raster", "A picture.", {kRaster}, make<Raster>};
}

ViewType vectorType() {
    return {"vector", "A picture that a script draws, in the scale at hand.", {kVector}, makeVector};
}

ViewType animationType() {
    return {
        "animation", "One frame of a film, chosen by a variable or by time.", {kAnimation}, make<Animation>};
}

ViewType markerType() {
    return {"marker",
            "A mark that moves across its bounds with a variable's value.",
            {kMarker, kOrientation},
            make<Marker>};
}

} // namespace Quilt
