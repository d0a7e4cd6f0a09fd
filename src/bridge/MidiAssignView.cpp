#include "bridge/MidiAssignView.h"

#include "bridge/MidiLearn.h"
#include "bridge/NumberText.h"

#include "drawing/Canvas.h"
#include "images/ImageLibrary.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/LayoutError.h"
#include "quilt/Unicode.h"
#include "quilt/View.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

namespace Bridge {

namespace {

using enum Quilt::PropertyKind;

constexpr const char* kStateNames = "unassigned assigned assigning";

constexpr Quilt::Property kRows[] = {
    {"variable", variable, "", "The parameter's variable, or midiConfig.programKeys.baseNoteNumber.", "", 0, 0, true},
    {"unassignable", boolean, "true", "Whether the right button lets go of the controller."},
    {"range", params, "{ 0, 1 }", "The parameter's values at the controller's two ends."},
    {"learning", variable, "", "A variable that says whether the control learns: true or false."},
    {"assignment", variable, "", "A variable that says the number of the controller; empty for none."},
    {"blinkInterval", number, "0.25", "Seconds between on and off while the control learns.", "", 0.01, 60},
    {"image", image, "", "Drawn above the background."},
    {"text", text, "", "Written above the background."},
    {"display", condition, "true", "Whether the indicator is to be seen."},
    {"font", font, "{ ovsfont: \"sans-serif\" }", "Of the text."},
    {"offset", offset, "", "Moves the text."},
    {"align", align, "center middle", "Where the text stands in the bounds."},
    {"backgrounds", stateColors, "", "What the states look like.", kStateNames},
    {"rounded", number, "0", "Radius of the corners, in units.", "", 0, 1000},
    {"frame", color, "", "A line within the edge of the bounds."},
    {"orientation", choice, "vertical", "Which way dragging changes the controller's number.", "vertical horizontal"},
    {"fine", number, "0.25", "How much slower that goes with the shift key.", "", 0.0001, 1},
};

constexpr double kUnitsANumber = 4; // of dragging

std::optional<std::pair<float, float>> readRange(const Stackbrace::Element& element) {
    try {
        const auto list = element.list();
        if (list.size() == 2) {
            const auto from = numberOf(list[0].string());
            const auto to = numberOf(list[1].string());
            if (from && to && *from >= 0 && *from <= 1 && *to >= 0 && *to <= 1) {
                return std::pair(*from, *to);
            }
        }
    } catch (const std::exception&) { // not even a list
    }
    return std::nullopt;
}

Drawing::Path boxOf(const Quilt::DrawContext& context, const Quilt::Rectangle& area, double inset, double radius) {
    Drawing::Path path;
    path.addRoundedRect({context.origin.x + inset, context.origin.y + inset, area.width - 2 * inset,
                         area.height - 2 * inset},
                        radius, radius);
    return path;
}

class MidiAssignView final : public Quilt::View {
public:
    MidiAssignView(const Quilt::ViewSetup& setup, MidiLearn& learn)
        : View(setup), learn_(learn), text_(setup.properties.string("text")),
          display_(setup.properties.string("display")), learning_(setup.properties.string("learning")),
          assignment_(setup.properties.string("assignment")),
          unassignable_(setup.properties.boolean("unassignable")),
          blinkInterval_(static_cast<long>(1000 * setup.properties.number("blinkInterval"))),
          horizontal_(setup.properties.string("orientation") == "horizontal"),
          fine_(setup.properties.number("fine")), scale_(document().scale().factor()),
          radius_(setup.properties.number("rounded") * scale_), align_(setup.properties.align("align")),
          offset_(setup.properties.offset("offset")) {
        const std::string name = setup.properties.string("variable");
        const auto target = learnTarget(name);
        if (!target) {
            setup.properties.fail("variable", "Nothing that MIDI could move: " + name);
        }
        target_ = *target;
        readAppearance(setup.properties);
        readControllerRange(setup.properties);
    }

    void refresh() override {
        View::refresh();
        const AssignState state = learn_.state(target_);
        const bool changed = state != state_ || text_.refresh(document()) || display_.refresh(document());
        state_ = state;
        if (state_ == AssignState::assigning && !blinkStart_) {
            blinkOn_ = true;
        }
        if (state_ != AssignState::assigning) {
            blinkStart_.reset();
        }
        if (changed) {
            invalidate();
        }
    }

    void settled() override {
        tell(learning_, state_ == AssignState::assigning ? "true" : "false", toldLearning_);
        const auto number = learn_.numberOf(target_);
        tell(assignment_, number ? std::to_string(*number) : std::string(), toldAssignment_);
    }

    void draw(const Quilt::DrawContext& context) const override {
        if (!display_.boolean().value_or(true)) {
            return;
        }
        const AssignState shown =
            state_ == AssignState::assigning && !blinkOn_ ? AssignState::unassigned : state_;
        const auto area = this->area();
        context.canvas.fill(boxOf(context, area, 0, radius_),
                            {backgrounds_[static_cast<std::size_t>(shown)]}, Drawing::FillRule::nonZero, {});
        if (frame_ != Drawing::kTransparent) {
            context.canvas.stroke(boxOf(context, area, scale_ / 2, radius_),
                                  {.paint = {frame_}, .width = scale_}, {});
        }
        const Drawing::IntRect clip{context.origin.x, context.origin.y, area.width, area.height};
        if (image_) {
            image_->draw(context.canvas.target(), clip, context.origin.x + (area.width - image_->width()) / 2,
                         context.origin.y + (area.height - image_->height()) / 2);
        }
        if (font_ && !text_.value().empty()) {
            const std::u16string wide = Quilt::toUtf16(text_.value());
            const double x = context.origin.x + align_.x * (area.width - font_->width(wide)) + offset_.x * scale_;
            const double height = font_->ascent() + font_->descent();
            const double y = context.origin.y + align_.y * (area.height - height) + offset_.y * scale_;
            font_->draw(context.canvas.target(), clip, x, y + font_->ascent(), wide);
        }
    }

    bool hit(Quilt::Point) const override { return true; }

    void pressed(const Quilt::MouseEvent& event) override {
        if (event.button == Quilt::MouseButton::right) {
            if (unassignable_) {
                learn_.unassign(target_);
                document().editor().requestUpdate();
            }
            return;
        }
        press_ = event.at;
        dragFrom_ = learn_.numberOf(target_);
        dragging_ = false;
    }

    void dragged(const Quilt::MouseEvent& event) override {
        if (!press_ || !dragFrom_) {
            return;
        }
        const int way = horizontal_ ? event.at.x - press_->x : press_->y - event.at.y;
        const double numbers = way / (kUnitsANumber * scale_) * (event.modifiers.shift ? fine_ : 1.0);
        dragging_ = dragging_ || std::abs(numbers) >= 1;
        if (dragging_) {
            const int number = *dragFrom_ + static_cast<int>(std::lround(numbers));
            learn_.assign(target_, number < 0 ? 0 : number > 127 ? 127 : number);
            document().editor().requestUpdate();
        }
    }

    void released(const Quilt::MouseEvent& event) override {
        if (press_ && !dragging_ && area().contains(event.at)) {
            learn_.toggle(target_);
            document().editor().requestUpdate();
        }
        press_.reset();
    }

    void cancelled() override {
        if (dragging_ && dragFrom_) {
            learn_.assign(target_, *dragFrom_);
        }
        press_.reset();
        learn_.cancel();
        document().editor().requestUpdate();
    }

    bool key(const Quilt::KeyEvent& event) override {
        if (event.key == Quilt::Key::escape && state_ == AssignState::assigning) {
            learn_.cancel();
            document().editor().requestUpdate();
            return true;
        }
        return false;
    }
    bool focusable() const override { return state_ == AssignState::assigning; }

    bool ticking() const override { return state_ == AssignState::assigning; }
    void tick(std::chrono::milliseconds now) override {
        if (!blinkStart_) {
            blinkStart_ = now;
        }
        const bool on = (now - *blinkStart_).count() / blinkInterval_ % 2 == 0;
        if (on != blinkOn_) {
            blinkOn_ = on;
            invalidate();
        }
    }

private:
    void readAppearance(const Quilt::Properties& properties) {
        constexpr std::array<std::string_view, 3> kStates = {"unassigned", "assigned", "assigning"};
        const auto colours = properties.element("backgrounds");
        if (!colours.empty()) {
            const auto structure = colours.structure();
            for (std::size_t i = 0; i < kStates.size(); ++i) {
                if (const auto* colour = structure.find(kStates[i])) {
                    backgrounds_[i] = Drawing::parseColour(colour->string());
                }
            }
        }
        if (const std::string frame = properties.string("frame"); !frame.empty()) {
            frame_ = Drawing::parseColour(frame);
        }
        Images::ImageLibrary& images = document().editor().services().images;
        if (properties.has("image")) {
            image_ = images.image(Images::readImageSpecification(properties.element("image")), scale_);
        }
        if (!text_.source().empty()) {
            font_ = properties.has("font")
                        ? images.font(Images::readFontSpecification(properties.element("font")), scale_)
                        : images.font(Images::OutlineFontSpecification{.name = "sans-serif"}, scale_);
        }
    }

    void readControllerRange(const Quilt::Properties& properties) {
        if (!properties.has("range")) {
            return;
        }
        const auto range = readRange(properties.element("range"));
        if (!range) {
            throw Quilt::LayoutError("Invalid midiAssign range: " + properties.raw("range"),
                                     properties.position());
        }
        if (target_.parameter) {
            learn_.setControllerRange(*target_.parameter, range->first, range->second);
        }
    }

    void tell(const std::string& name, const std::string& value, std::optional<std::string>& told) {
        if (!name.empty() && told != value) {
            told = value;
            document().variables().set(name, value);
        }
    }

    MidiLearn& learn_;
    LearnTarget target_;
    Quilt::LiveText text_;
    Quilt::LiveText display_;
    std::string learning_;
    std::string assignment_;
    std::optional<std::string> toldLearning_;
    std::optional<std::string> toldAssignment_;
    bool unassignable_;
    long blinkInterval_; // milliseconds
    bool horizontal_;
    double fine_;
    double scale_;  // pixels a unit
    double radius_; // pixels
    Quilt::Align align_;
    Quilt::Point offset_;
    std::array<Drawing::Colour, 3> backgrounds_{}; // by state
    Drawing::Colour frame_ = Drawing::kTransparent;
    std::shared_ptr<const Images::Image> image_;
    std::unique_ptr<Images::TextFont> font_;
    AssignState state_ = AssignState::unassigned;
    std::optional<std::chrono::milliseconds> blinkStart_;
    bool blinkOn_ = true;
    std::optional<Quilt::Point> press_;
    std::optional<int> dragFrom_; // the number at the press; none: nothing to drag
    bool dragging_ = false;
};

} // namespace

Quilt::ViewType midiAssignType(MidiLearn& learn) {
    return {"midiAssign", "Shows which MIDI controller moves a parameter; a click learns one.", {kRows},
            [&learn](const Quilt::ViewSetup& setup) { return std::make_unique<MidiAssignView>(setup, learn); }};
}

} // namespace Bridge
