// Views that hold others: all at once, in cells, one page at a time.
#include "notation/Compound.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/ViewBuilder.h"
#include "quilt/drawing/Layer.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <string>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kViews[] = {
    {"views", views, "", "What it holds, the later ones on top."},
};

class Group : public View {
public:
    explicit Group(const ViewSetup& setup) : View(setup) {
        setup.builder.addViews(*this, setup.properties.element("views"), setup.units);
    }
};

constexpr Property kTransformed[] = {
    {"scale", level, "100", "Percent, about the middle of the bounds."},
    {"opacity", level, "1", "0 to 1."},
    {"time", number, "0", "Seconds in which scale and opacity go over to new values.", "", 0, 60},
};

class Transformed : public Group {
public:
    explicit Transformed(const ViewSetup& setup)
        : Group(setup), scale_(setup.properties.string("scale")),
          opacity_(setup.properties.string("opacity")),
          time_(static_cast<std::int64_t>(setup.properties.number("time") * 1000)) {}

    void refresh() override {
        Group::refresh();
        scale_.refresh(document());
        opacity_.refresh(document());
        constexpr double kLargest = 10;
        const Transition::Look wanted{std::clamp(scale_.number(100) / 100, 0.0, kLargest),
                                      std::clamp(opacity_.number(1), 0.0, 1.0)};
        if (wanted.scale == to_.scale && wanted.opacity == to_.opacity && begun_) {
            return;
        }
        from_ = begun_ ? look_ : wanted;
        begun_ = true;
        to_ = wanted;
        start_ = document().editor().services().clock.now();
        moving_ = true;
        tick(start_);
    }

    bool ticking() const override { return moving_; }
    void tick(std::chrono::milliseconds now) override {
        const double part =
            time_.count() == 0
                ? 1
                : std::clamp(static_cast<double>((now - start_).count()) / static_cast<double>(time_.count()),
                             0.0, 1.0);
        invalidate();
        look_ = {from_.scale + (to_.scale - from_.scale) * part,
                 from_.opacity + (to_.opacity - from_.opacity) * part};
        invalidate();
        moving_ = part < 1;
    }

    void drawTree(const DrawContext& context) const override {
        if (isPlain()) {
            Group::drawTree(context);
        } else if (look_.opacity > 0 && look_.scale > 0) {
            layer_.take(*this, true);
            layer_.draw(context, area(), look_);
        }
    }

    // What cannot be seen cannot be hit.
    View* find(Point at) override { return look_.opacity > 0 && look_.scale > 0 ? Group::find(at) : nullptr; }

protected:
    Rectangle affected(const Rectangle& part) const override {
        layer_.invalidate();
        return isPlain() ? part : seen(area(), look_);
    }

private:
    bool isPlain() const { return look_.scale == 1 && look_.opacity == 1; }

    LiveText scale_;
    LiveText opacity_;
    std::chrono::milliseconds time_;
    Transition::Look from_;
    Transition::Look to_;
    Transition::Look look_;
    std::chrono::milliseconds start_{0};
    bool begun_ = false;
    bool moving_ = false;
    mutable Layer layer_; // what it holds, as long as that does not change
};

constexpr Property kCluster[] = {
    {"columns", integer, "0", "How many cells stand side by side; 0: all.", "", 0, 1000},
    {"gap", integer, "0", "Between cells, in units.", "", 0, 1000},
};

class Cluster : public View {
public:
    explicit Cluster(const ViewSetup& setup) : View(setup) {
        const auto list = setup.properties.element("views").list();
        const auto count = static_cast<std::int32_t>(list.size());
        if (count == 0) {
            return;
        }
        const std::int32_t wanted = setup.properties.integer("columns");
        const std::int32_t columns = wanted == 0 ? count : std::min(wanted, count);
        const std::int32_t rows = (count + columns - 1) / columns;
        const std::int32_t gap = setup.properties.integer("gap");
        const std::int32_t width = std::max(0, (setup.units.width - gap * (columns - 1)) / columns);
        const std::int32_t height = std::max(0, (setup.units.height - gap * (rows - 1)) / rows);
        for (std::int32_t i = 0; i < count; ++i) {
            const Rectangle cell{i % columns * (width + gap), i / columns * (height + gap), width, height};
            auto holder = std::make_unique<View>(document(), "cell", document().scale().toPixels(cell));
            if (auto view = setup.builder.build(list[static_cast<std::size_t>(i)], {0, 0, width, height})) {
                holder->add(std::move(view));
            }
            add(std::move(holder));
        }
    }
};

constexpr Property kPaged[] = {
    {"variable", variable, "", "Names the page that is shown."},
    {"pages", pages, "", "The pages: lists of views."},
    {"default", text, "", "The page for all other values of the variable."},
};

class Page : public View {
public:
    Page(Document& document, std::string name, const Rectangle& pixels)
        : View(document, "page", pixels), name_(std::move(name)) {}

    const std::string& name() const { return name_; }

private:
    std::string name_;
};

// Keeps only the page that is shown among its visible children.
class Paged : public View {
public:
    explicit Paged(const ViewSetup& setup)
        : View(setup), variable_(setup.properties.string("variable")),
          fallback_(setup.properties.string("default")) {
        for (const auto& [name, views] : setup.properties.element("pages").structure()) {
            auto page = std::make_unique<Page>(document(), std::string(name), area());
            setup.builder.addViews(*page, views, setup.units);
            pages_.push_back(page.get());
            add(std::move(page));
        }
    }

    void refresh() override {
        View::refresh();
        const std::string name = document().variables().find(variable_).value_or("");
        const auto named = [this](const std::string& wanted) {
            const auto found = std::ranges::find(pages_, wanted, &Page::name);
            return found == pages_.end() ? nullptr : *found;
        };
        const Page* const shown = named(name) != nullptr ? named(name) : named(fallback_);
        for (Page* const page : pages_) {
            page->show(page == shown);
        }
    }

private:
    std::string variable_;
    std::string fallback_;
    std::vector<Page*> pages_;
};

} // namespace

ViewType groupType() {
    return {
        "group", "Holds views that belong together: they move, show and hide as one.", {kViews}, make<Group>};
}

ViewType transformedType() {
    return {"transformed",
            "Holds views and draws them smaller, larger or fainter, as variables say.",
            {kViews, kTransformed},
            make<Transformed>};
}

ViewType clusterType() {
    return {"cluster",
            "Sets its views into cells of one size, row by row; each view's area is its cell.",
            {kViews, kCluster},
            make<Cluster>};
}

ViewType pagedType() {
    return {"paged", "Shows one of several pages, the one that a variable names.", {kPaged}, make<Paged>};
}

} // namespace Quilt
