#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/Unicode.h"
#include "quilt/drawing/Painting.h"
#include "quilt/views/Label.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kCaption[] = {
    {"wrap", boolean, "false",
     "Whether lines that are too long are broken between words, else cut with an ellipsis."},
};

constexpr Property kBubble[] = {
    {"delay", number, "0.6", "Seconds that the mouse has to rest before the bubble comes.", "", 0, 60},
};

constexpr Property kConsole[] = {
    {"text", text, "", "What is written: lines, the last ones in sight."},
    {"font", font, "", "The font; without one the framework's monospace."},
    {"color", color, "", "Of the text, in place of the font's own."},
};

class Caption : public View {
public:
    explicit Caption(const ViewSetup& setup)
        : View(setup), box_(setup.properties, document()), label_(setup, "sans-serif"),
          wrap_(setup.properties.boolean("wrap")) {}

    void prepare() override {
        box_.load(document());
        label_.load(document());
    }
    void refresh() override {
        View::refresh();
        if (label_.refresh(document())) {
            invalidate();
        }
    }
    void draw(const DrawContext& context) const override {
        box_.draw(context, area());
        if (label_.font() != nullptr) {
            label_.draw(context, area(), *label_.font(), 255, wrap_);
        }
    }

private:
    Box box_;
    Label label_;
    bool wrap_;
};

// Comes when the mouse has rested on something with a hint, at once while that is being dragged, and goes
// when the mouse does.
class Bubble : public View {
public:
    explicit Bubble(const ViewSetup& setup)
        : View(setup), own_(!setup.properties.string("text").empty()), box_(setup.properties, document()),
          label_(setup, "sans-serif"),
          delay_(static_cast<std::int64_t>(setup.properties.number("delay") * 1000)) {}

    void prepare() override {
        box_.load(document());
        label_.load(document());
    }

    void refresh() override {
        View::refresh();
        if (own_ && label_.refresh(document())) {
            invalidate(shown_);
        }
    }

    bool ticking() const override { return true; }
    void tick(std::chrono::milliseconds now) override {
        const Interaction& interaction = document().editor().interaction();
        const View* const about = interaction.hinted();
        const bool due = about != nullptr && !interaction.hintMuted() && label_.font() != nullptr && (own_ || !about->hint().empty()) &&
                         (interaction.pressed() == about || now - interaction.restingSince() >= delay_ ||
                          (!shown_.empty() && about == about_));
        if (!due) {
            place({});
            return;
        }
        about_ = about;
        if (!own_ && hint_ != about->hint()) {
            hint_ = about->hint();
            label_.setText(hint_);
            invalidate(shown_);
        }
        place(beside(*about, interaction.mouse()));
    }

    void draw(const DrawContext& context) const override {
        if (!shown_.empty() && label_.font() != nullptr) {
            box_.draw(context, shown_);
            label_.draw(context, shown_, *label_.font());
        }
    }

private:
    // Below what it is about, or above where there is no room; for what is large, at the mouse.
    Rectangle beside(const View& about, std::optional<Point> mouse) const {
        const auto pixels = [this](double units) {
            return static_cast<std::int32_t>(std::lround(pixelsOf(document(), units)));
        };
        Images::TextFont& font = *label_.font();
        const std::int32_t width = std::min(
            area().width, static_cast<std::int32_t>(std::ceil(font.width(label_.text()))) + 2 * pixels(7));
        const std::int32_t height =
            static_cast<std::int32_t>(std::ceil(font.ascent() + font.descent())) + 2 * pixels(3);
        Rectangle target = about.area().movedBy(about.origin()).movedBy({-origin().x, -origin().y});
        const std::int32_t large = pixels(120);
        if (mouse && (target.width > large || target.height > large)) {
            const Point at{mouse->x - origin().x, mouse->y - origin().y};
            target = {at.x, at.y - pixels(4), 1, pixels(20)};
        }
        const std::int32_t gap = pixels(3);
        const bool below = target.bottom() + gap + height <= area().height;
        return {std::clamp(target.left + (target.width - width) / 2, 0, std::max(0, area().width - width)),
                below ? target.bottom() + gap : std::max(0, target.top - gap - height), width, height};
    }

    void place(const Rectangle& at) {
        if (at != shown_) {
            invalidate(shown_);
            shown_ = at;
            invalidate(shown_);
        }
    }

    bool own_; // a text of its own
    Box box_;
    Label label_;
    std::chrono::milliseconds delay_;
    std::string hint_;
    const View* about_ = nullptr; // only to compare
    Rectangle shown_;             // empty: not there
};

class Console : public View {
public:
    explicit Console(const ViewSetup& setup)
        : View(setup), box_(setup.properties, document()), label_(setup, "monospace") {}

    bool hit(Point) const override { return true; }
    void prepare() override {
        box_.load(document());
        label_.load(document());
        breakLines();
    }
    void refresh() override {
        View::refresh();
        if (label_.refresh(document())) {
            breakLines();
            invalidate();
        }
    }
    bool wheel(const WheelEvent& event) override {
        constexpr double kLines = 3; // a notch
        const double before = std::exchange(back_, std::clamp(back_ + kLines * event.steps, 0.0, mostBack()));
        if (back_ != before) {
            invalidate();
        }
        return true;
    }
    void draw(const DrawContext& context) const override {
        box_.draw(context, area());
        Images::TextFont* const font = label_.font();
        if (font == nullptr) {
            return;
        }
        const Rectangle inside = this->inside();
        const Drawing::IntRect clip = clipOf(context, inside);
        double bottom = context.origin.y + inside.bottom() + std::floor(back_) * font->lineHeight();
        if (static_cast<double>(lines_.size()) * font->lineHeight() < inside.height) {
            // Few lines begin at the top.
            bottom = context.origin.y + inside.top + static_cast<double>(lines_.size()) * font->lineHeight();
        }
        for (auto line = lines_.rbegin(); line != lines_.rend() && bottom > clip.y; ++line) {
            const double top = bottom - font->lineHeight();
            if (top < clip.y + clip.height && !clip.isEmpty()) {
                font->draw(context.canvas.target(), clip, context.origin.x + inside.left,
                           std::round(top + font->ascent()), *line);
            }
            bottom = top;
        }
    }

private:
    Rectangle inside() const {
        const auto padding = static_cast<std::int32_t>(std::lround(pixelsOf(document(), 4)));
        return {padding, padding, std::max(0, area().width - 2 * padding),
                std::max(0, area().height - 2 * padding)};
    }
    void breakLines() {
        lines_.clear();
        if (label_.font() != nullptr) {
            lines_ = linesOf(*label_.font(), label_.text(), inside().width, true);
        }
        back_ = std::min(back_, mostBack());
    }
    double mostBack() const {
        if (label_.font() == nullptr) {
            return 0;
        }
        const double seen = std::floor(inside().height / label_.font()->lineHeight());
        return std::max(0.0, static_cast<double>(lines_.size()) - seen);
    }

    Box box_;
    Label label_;
    std::vector<std::u16string> lines_;
    double back_ = 0; // lines below the last one that is seen
};

} // namespace

ViewType captionType() {
    return {"caption", "A text.", {kText, kCaption, kBox}, make<Caption>};
}

ViewType bubbleType() {
    return {
        "bubble",
        "A note beside the mouse while it rests over a view with a hint, until a click. Without a text it shows the hint.",
        {kText, kBubble, kBox},
        make<Bubble>};
}

ViewType consoleType() {
    return {"console", "Lines of text that scroll with the wheel.", {kConsole, kBox}, make<Console>};
}

} // namespace Quilt
