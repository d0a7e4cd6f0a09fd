// A document within a document, named by a variable.
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

#include <stdexcept>

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kQuilt[] = {
    {"layoutVariable", variable, "", "Names the document that is shown; while it is empty there is none.", "", 0, 0,
     true},
    {"uiScaling", boolean, "true", "Whether the document is drawn at the user's scale, else at 1/1."},
    {"modal", boolean, "false",
     "Whether the document, while it is shown, takes all of the mouse and the keys; escape then empties the variable."},
};

class QuiltView : public View {
public:
    explicit QuiltView(const ViewSetup& setup)
        : View(setup), variable_(setup.properties.string("layoutVariable")), units_(setup.units),
          userScale_(setup.properties.boolean("uiScaling")) {}

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

private:
    Editor& editor() const { return View::document().editor(); }

    void swap() {
        shown_ = wanted_;
        if (nested_ != nullptr) {
            nested_->close();
            invalidate();
            clearChildren();
            nested_.reset();
        }
        if (!shown_.empty()) {
            open();
        }
    }

    void open() {
        auto nested = std::make_unique<Document>(editor(), shown_, &View::document(), userScale_);
        try {
            nested->load(enclosing(), editor().reloading());
        } catch (const std::exception& error) {
            View::document().reportError("Error obtaining quilt", error.what());
            return;
        }
        nested_ = std::move(nested);
        add(nested_->takeRoot());
        invalidate();
        editor().requestUpdate();
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
    std::unique_ptr<Document> nested_;
};

} // namespace

ViewType quiltType() {
    return {"quilt",
            "Shows another document above the views before it. Its transitions animate how it comes and goes.",
            {kQuilt},
            make<QuiltView>};
}

} // namespace Quilt
