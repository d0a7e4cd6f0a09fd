// Buttons, seen and unseen.
#include "quilt/Document.h"
#include "quilt/drawing/Painting.h"
#include "quilt/views/Control.h"
#include "quilt/views/Label.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <array>
#include <exception>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kTrigger[] = {
    {"trigger", choice, "release",
     "Whether the action comes with the press or with the release over the control.", "press release"},
};

constexpr Property kButton[] = {
    {"image", image, "", "What the button looks like, in all states that `images` has nothing for."},
    {"images", stateImages, "", "Images for the states.", kStates},
    {"backgrounds", stateColors, "", "Backgrounds for the states.", kStates},
    {"colors", stateColors, "", "Colors of the text for the states.", kStates},
    {"repeat", number, "0", "Seconds after which the action comes again while the button is held; 0: never.",
     "", 0, 60},
};

constexpr Property kClick[] = {
    {"doubleAction", action, "", "What a double click does."},
    {"doubleParams", params, "", "The parameters of `doubleAction`."},
};

// Calls its action when it is clicked, and knows the state of that.
class Clickable : public Control {
public:
    explicit Clickable(const ViewSetup& setup)
        : Control(setup), action_(setup.properties.string("action")), params_(setup.properties.raw("params")),
          onPress_(setup.properties.string("trigger") == "press") {}

    void refresh() override {
        Control::refresh();
        if (action_.empty()) {
            return;
        }
        ActionState state;
        try {
            state = document().state(action_, params_);
            failed_ = false;
        } catch (const std::exception& error) {
            if (!std::exchange(failed_, true)) {
                document().reportError("Error querying action " + action_, error.what());
            }
        }
        if (state.enabled != state_.enabled || state.checked != state_.checked) {
            state_ = state;
            invalidate();
        }
    }

    void pressed(const MouseEvent& event) override {
        if (event.button != MouseButton::left) {
            Control::pressed(event);
            return;
        }
        if (!state_.enabled) {
            return;
        }
        setHeld(true, true);
        if (onPress_) {
            act(event);
        }
    }
    void dragged(const MouseEvent& event) override {
        if (held_) {
            setHeld(true, area().contains(event.at));
        }
    }
    void released(const MouseEvent& event) override {
        const bool wanted = held_ && area().contains(event.at) && !onPress_;
        setHeld(false, false);
        if (wanted) {
            act(event);
        }
    }
    void cancelled() override { setHeld(false, false); }
    void hovered(bool inside) override {
        hovered_ = inside;
        invalidate();
    }

    bool key(const KeyEvent& event) override {
        if (event.key != Key::enter || !state_.enabled || action_.empty()) {
            return false;
        }
        act({});
        return true;
    }

protected:
    bool enabled() const override { return state_.enabled; }
    bool isChecked() const { return state_.checked; }
    bool isPressed() const { return held_ && inside_; }
    bool isHovered() const { return hovered_; }
    virtual void act(const MouseEvent& event) {
        static_cast<void>(event);
        perform(action_, params_);
    }

private:
    void setHeld(bool held, bool inside) {
        if (held != held_ || inside != inside_) {
            held_ = held;
            inside_ = inside;
            invalidate();
        }
    }

    std::string action_;
    std::string params_;
    ActionState state_;
    bool onPress_;
    bool held_ = false;
    bool inside_ = false;
    bool hovered_ = false;
    bool failed_ = false;
};

class Button : public Clickable {
public:
    explicit Button(const ViewSetup& setup)
        : Clickable(setup), image_(setup.properties, "image"), images_(setup.properties, "images"),
          backgrounds_(setup.properties, "backgrounds"), colors_(setup.properties, "colors"),
          label_(setup, "sans-serif"), align_(setup.properties.align("align")),
          box_(setup.properties, document()),
          repeat_(static_cast<std::int64_t>(setup.properties.number("repeat") * 1000)) {}

    void prepare() override {
        image_.load(document());
        images_.load(document());
        backgrounds_.load(document());
        colors_.load(document());
        box_.load(document());
        label_.load(document());
        for (std::size_t i = 0; i < kAllStates.size(); ++i) {
            if (const auto* const color = colors_.find(kAllStates[i]); color != nullptr && color->get()) {
                fonts_[i] = label_.inColour(document(), *color->get());
            }
        }
    }

    void refresh() override {
        Clickable::refresh();
        if (label_.refresh(document())) {
            invalidate();
        }
    }

    void draw(const DrawContext& context) const override {
        // What has no look of its own for being disabled is seen through.
        constexpr unsigned kFaint = 110;
        std::optional<Colour> background;
        if (const auto* const found = pick(backgrounds_)) {
            background = found->get();
        }
        box_.draw(context, area(), background);
        const Images::Image* image = image_.get();
        bool own = false;
        if (const auto* const found = pick(images_)) {
            image = found->get();
            own = found == images_.find("disabled");
        }
        if (image != nullptr) {
            drawImage(context, area(), *image, {.align = align_, .opacity = enabled() || own ? 255 : kFaint});
        }
        Images::TextFont* font = label_.font();
        own = false;
        for (std::size_t i = 0; i < kAllStates.size(); ++i) {
            if (applies(i) && fonts_[i].get() != nullptr) {
                font = fonts_[i].get();
                own = kAllStates[i] == "disabled";
                break;
            }
        }
        if (font != nullptr) {
            label_.draw(context, area(), *font, enabled() || own ? 255 : kFaint);
        }
        drawFocus(context, box_.radius());
    }

    void pressed(const MouseEvent& event) override {
        Clickable::pressed(event);
        nextRepeat_.reset();
    }
    bool ticking() const override { return repeat_.count() > 0 && isPressed(); }
    void tick(std::chrono::milliseconds now) override {
        if (!nextRepeat_) {
            nextRepeat_ = now + repeat_;
        } else if (now >= *nextRepeat_) {
            nextRepeat_ = now + repeat_;
            act({});
        }
    }

private:
    // The strongest first.
    static constexpr std::array<std::string_view, 5> kAllStates = {"disabled", "pressed", "checked",
                                                                   "hovered", "normal"};

    bool applies(std::size_t state) const {
        const bool now[] = {!enabled(), isPressed(), isChecked(), isHovered() && enabled(), true};
        return now[state];
    }

    // What there is for the strongest state that has something; nullptr: for none.
    template <typename Asset>
    const Asset* pick(const StateAssets<Asset>& assets) const {
        const Asset* found = nullptr;
        for (std::size_t i = 0; i < kAllStates.size() && found == nullptr; ++i) {
            found = applies(i) ? assets.find(kAllStates[i]) : nullptr;
        }
        return found;
    }

    ImageAsset image_;
    StateAssets<ImageAsset> images_;
    StateAssets<ColourAsset> backgrounds_;
    StateAssets<ColourAsset> colors_;
    Label label_;
    std::array<FontAsset, 5> fonts_;
    Align align_;
    Box box_;
    std::chrono::milliseconds repeat_;
    std::optional<std::chrono::milliseconds> nextRepeat_;
};

class Click : public Clickable {
public:
    explicit Click(const ViewSetup& setup)
        : Clickable(setup), doubleAction_(setup.properties.string("doubleAction")),
          doubleParams_(setup.properties.raw("doubleParams")) {}

    void pressed(const MouseEvent& event) override {
        if (event.button == MouseButton::left && event.clicks == 2 && !doubleAction_.empty()) {
            perform(doubleAction_, doubleParams_);
        } else {
            Clickable::pressed(event);
        }
    }

private:
    std::string doubleAction_;
    std::string doubleParams_;
};

} // namespace

ViewType buttonType() {
    return {"button",
            "Does something when it is clicked, and shows whether that can be done and is the case.",
            {kAction, kMenu, kTrigger, kButton, kText, kBox, kFocus},
            make<Button>};
}

ViewType clickType() {
    return {"click",
            "A place to click at: nothing is to be seen of it.",
            {kAction, kClick, kMenu, kTrigger},
            make<Click>};
}

} // namespace Quilt
