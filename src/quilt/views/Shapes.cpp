#include "quilt/Document.h"
#include "quilt/drawing/Painting.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <memory>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kRectangle[] = {
    {"color", color, "", "Fills the bounds."},
    {"rounded", number, "0", "Radius of the corners, in units.", "", 0, 1000},
    {"frame", color, "", "A line within the edge of the bounds."},
    {"frameWidth", number, "1", "Its width, in units.", "", 0, 100},
};

constexpr Property kGradient[] = {
    {"colors", colors, "", "Two or more, from top to bottom or from left to right."},
    {"stops", numbers, "",
     "Where each color stands, 0 to 1 and rising; without them they are evenly spread."},
    {"rounded", number, "0", "Radius of the corners, in units.", "", 0, 1000},
};

class BoxView : public View {
public:
    explicit BoxView(const ViewSetup& setup) : View(setup), box_(setup.properties, document(), "color") {}

    void prepare() override { box_.load(document()); }
    void draw(const DrawContext& context) const override { box_.draw(context, area()); }

private:
    Box box_;
};

class Gradient : public View {
public:
    explicit Gradient(const ViewSetup& setup)
        : View(setup), stops_(setup.properties.numbers("stops")),
          radius_(pixelsOf(document(), setup.properties.number("rounded"))),
          horizontal_(setup.properties.string("orientation") == "horizontal") {
        for (const auto& text : setup.properties.strings("colors")) {
            colours_.emplace_back(text);
        }
        if (!stops_.empty() && stops_.size() != colours_.size()) {
            setup.properties.fail("stops", "as many as there are colors are needed");
        }
        if (!std::ranges::is_sorted(stops_)) {
            setup.properties.fail("stops", "they have to rise");
        }
    }

    void prepare() override {
        std::vector<Drawing::GradientStop> stops;
        for (std::size_t i = 0; i < colours_.size(); ++i) {
            colours_[i].load(document());
            const double even =
                colours_.size() < 2 ? 0 : static_cast<double>(i) / static_cast<double>(colours_.size() - 1);
            stops.push_back(
                {stops_.empty() ? even : stops_[i], colours_[i].get().value_or(Drawing::kTransparent)});
        }
        if (!stops.empty()) {
            table_ = std::make_shared<const Drawing::GradientTable>(std::move(stops));
        }
    }

    void draw(const DrawContext& context) const override {
        if (table_ == nullptr) {
            return;
        }
        const Drawing::Rect all = placed(context, area());
        const Drawing::Point end =
            horizontal_ ? Drawing::Point{all.right(), all.y} : Drawing::Point{all.x, all.bottom()};
        fillBox(context, area(), Drawing::Paint{Drawing::LinearGradient{{all.x, all.y}, end, table_}},
                radius_);
    }

private:
    std::vector<ColourAsset> colours_;
    std::vector<double> stops_;
    double radius_;
    bool horizontal_;
    std::shared_ptr<const Drawing::GradientTable> table_;
};

} // namespace

ViewType rectangleType() {
    return {"rectangle", "A rectangle of one color, with a frame or without.", {kRectangle}, make<BoxView>};
}

ViewType gradientType() {
    return {
        "gradient", "A rectangle whose color changes along it.", {kGradient, kOrientation}, make<Gradient>};
}

} // namespace Quilt
