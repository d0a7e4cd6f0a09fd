// A document within a document, named by a variable.
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/drawing/Layer.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kQuilt[] = {
    {"layoutVariable", variable, "", "Names the document that is shown; while it is empty there is none."},
    {"uiScaling", boolean, "true", "Whether the document is drawn at the user's scale, else at 1/1."},
    {"modal", boolean, "false",
     "Whether the document, while it is shown, takes all of the mouse and the keys; escape then empties the "
     "variable."},
};

// A transition that is on.
struct Movement {
    const Transition* transition = nullptr; // nullptr: none
    std::chrono::milliseconds start{0};

    bool on() const { return transition != nullptr; }
    bool over(std::chrono::milliseconds now) const { return transition->over(now - start); }
    Transition::Look look(std::chrono::milliseconds now) const { return transition->look(now - start); }
};

// What has gone stays as a picture while it moves away: its document has been closed by then.
struct Leaving {
    Layer picture;
    Rectangle at;
    Transition transition;
    Movement movement;
    Transition::Look look;
};

class QuiltView : public View {
public:
    explicit QuiltView(const ViewSetup& setup)
        : View(setup), variable_(setup.properties.string("layoutVariable")), units_(setup.units),
          userScale_(setup.properties.boolean("uiScaling")), modal_(setup.properties.boolean("modal")) {}

    ~QuiltView() override { clearChildren(); } // before their document

    void refresh() override {
        View::refresh();
        wanted_ = View::document().variables().find(variable_).value_or("");
    }

    // Documents come and go here and not in an update: their autoexecs write variables.
    void settled() override {
        if (wanted_ != shown_) {
            swap();
        }
    }

    bool modal() const override { return modal_ && nested_ != nullptr; }
    bool hit(Point) const override { return modal(); }
    bool key(const KeyEvent& event) override {
        if (event.key != Key::escape || !modal()) {
            return false;
        }
        View::document().variables().set(variable_, "");
        return true;
    }

    bool ticking() const override { return entering_.on() || leaving_ != nullptr; }
    void tick(std::chrono::milliseconds now) override {
        invalidate();
        if (entering_.on()) {
            look_ = entering_.look(now);
            if (entering_.over(now)) {
                endEntering();
            }
        }
        if (leaving_ != nullptr) {
            leaving_->look = leaving_->movement.look(now);
            if (leaving_->movement.over(now)) {
                leaving_.reset();
            }
        }
        invalidate();
    }

    void drawTree(const DrawContext& context) const override {
        if (leaving_ != nullptr) {
            leaving_->picture.draw(context, leaving_->at, leaving_->look);
        }
        if (!entering_.on()) {
            View::drawTree(context);
            return;
        }
        const View& root = *children().front();
        layer_.take(root, false);
        layer_.draw(context, root.bounds(), look_);
    }

protected:
    Rectangle affected(const Rectangle& part) const override {
        layer_.invalidate();
        return ticking() ? seen(area(), widest()) : part;
    }

private:
    Editor& editor() const { return View::document().editor(); }
    std::chrono::milliseconds now() const { return editor().services().clock.now(); }

    // So that nothing of a transition stays behind, whatever moment it is at.
    Transition::Look widest() const {
        Transition::Look look;
        if (entering_.on()) {
            look.scale = std::max(look.scale, entering_.transition->scale);
        }
        if (leaving_ != nullptr) {
            look.scale = std::max(look.scale, leaving_->transition.scale);
        }
        return look;
    }

    void endEntering() {
        entering_ = {};
        look_ = {};
        layer_.clear();
    }

    // How far behind `now` a movement begins that turns another one round.
    static std::chrono::milliseconds lead(const Transition& transition, const Movement& turned,
                                          std::chrono::milliseconds now) {
        if (transition.restart || !turned.on() || turned.over(now)) {
            return std::chrono::milliseconds(0);
        }
        const double done = static_cast<double>((now - turned.start).count()) /
                            static_cast<double>(turned.transition->time.count());
        return std::chrono::milliseconds(
            std::lround((1 - done) * static_cast<double>(transition.time.count())));
    }

    void swap() {
        const bool swapping = nested_ != nullptr && !wanted_.empty();
        shown_ = wanted_;
        if (nested_ != nullptr) {
            leave(swapping);
        }
        if (!shown_.empty()) {
            open(swapping);
        }
    }

    void leave(bool swapping) {
        editor().interaction().cancel(this);
        const auto& transitions = nested_->transitions();
        const Transition& transition = swapping ? transitions.swapOut : transitions.close;
        if (transition.time.count() > 0 && !children().empty()) {
            auto leaving = std::make_unique<Leaving>();
            View& root = *children().front();
            root.prepareTree();
            leaving->picture.take(root, false);
            leaving->at = root.bounds();
            leaving->transition = transition;
            leaving->movement = {&leaving->transition, now() - lead(transition, entering_, now())};
            leaving->look = leaving->movement.look(now());
            leaving_ = std::move(leaving);
        }
        endEntering();
        nested_->close();
        clearChildren();
        nested_.reset();
        invalidate();
    }

    void open(bool swapping) {
        auto nested = std::make_unique<Document>(editor(), shown_, &View::document(), userScale_);
        try {
            nested->load(enclosing(), editor().reloading());
        } catch (const std::exception& error) {
            View::document().reportError("Error obtaining quilt", error.what());
            return;
        }
        nested_ = std::move(nested);
        if (auto root = nested_->takeRoot()) {
            add(std::move(root));
            enter(swapping);
        }
        invalidate();
        editor().requestUpdate();
    }

    // Turns round what is on its way out. What takes its own place on a reload has been there all the time.
    void enter(bool swapping) {
        const Transition& transition = swapping ? nested_->transitions().swapIn : nested_->transitions().open;
        if (transition.time.count() == 0 || editor().reloading()) {
            return;
        }
        const Movement before = leaving_ != nullptr && !swapping ? leaving_->movement : Movement();
        entering_ = {&transition, now() - lead(transition, before, now())};
        look_ = entering_.look(now());
    }

    // In units of the nested document, which may be drawn at another scale.
    Rectangle enclosing() const {
        if (userScale_) {
            return {0, 0, units_.width, units_.height};
        }
        return {0, 0, bounds().width, bounds().height};
    }

    std::string variable_;
    std::string wanted_;
    std::string shown_;
    Rectangle units_;
    bool userScale_;
    bool modal_;
    std::unique_ptr<Document> nested_;
    Movement entering_;
    Transition::Look look_;
    std::unique_ptr<Leaving> leaving_;
    mutable Layer layer_; // of what is entering
};

} // namespace

ViewType quiltType() {
    return {
        "quilt",
        "Shows another document above the views before it. Its transitions animate how it comes and goes.",
        {kQuilt},
        make<QuiltView>};
}

} // namespace Quilt
