// One editor: a top document with all that is nested in it, the variables they share, and the way of events
// and time to them. The window calls it; it needs none, so that layouts can be loaded and drawn anywhere.
//
//   Editor editor(services);
//   editor.open("MURMELON_MAIN", {0, 0, 470, 320});
//   ... editor.tick() some 30 times a second, input as it comes, editor.draw() for what the host was told to
//   be out of date ...
#pragma once

#include "drawing/Surface.h"
#include "quilt/ActionHandler.h"
#include "quilt/Clock.h"
#include "quilt/Desktop.h"
#include "quilt/DocumentSource.h"
#include "quilt/EditorHost.h"
#include "quilt/ErrorQueue.h"
#include "quilt/Geometry.h"
#include "quilt/Input.h"
#include "quilt/Interaction.h"
#include "quilt/Scale.h"
#include "quilt/TextEdit.h"
#include "quilt/VariableProvider.h"
#include "quilt/Variables.h"
#include "quilt/drawing/FontCache.h"

#include <memory>
#include <string>
#include <vector>

namespace Quilt {

class Document;
class TextField;
class View;
class ViewFactory;

class Editor {
public:
    // All of these outlive the editor.
    struct Services {
        const DocumentSource& documents;
        const ViewFactory& views;
        Images::ImageLibrary& images;
        Desktop& desktop;
        EditorHost& host;
        const Clock& clock;
        VariableProvider* variables = nullptr;
        ActionHandler* actions = nullptr;
    };

    explicit Editor(const Services& services);
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    // `area` is what encloses the document, in units.
    void open(const std::string& name, const Rectangle& area, bool reload = false);
    void close();

    // At the next tick, or when the event that is being handled is done with.
    void requestReload() { reloadRequested_ = true; }

    // Views look at the variables again at the next occasion, changed or not: new ones have come.
    void requestUpdate() { updateRequested_ = true; }

    // Whether the views that are being made take the place of others of the same document.
    bool reloading() const { return reloading_; }

    // Carries out what an event or an action has brought about: changed variables, nested documents that come
    // and go, a reload.
    void settle();

    // Lets time go on: timers, changed variables, moving views, waiting errors.
    void tick();

    // Has the images and fonts of all views loaded now and not before they are first drawn: what cannot be
    // had is reported.
    void prepare();

    // Draws `part` of the surface, which is opaque then; nothing else of it is touched.
    void draw(const Drawing::SurfaceView& surface, const Rectangle& part);

    // Input, in the surface's pixels. Two presses of a double click come as one with `clicks` 1 and one
    // with 2.
    void mousePressed(const MouseEvent& event);
    void mouseReleased(const MouseEvent& event);
    void mouseMoved(const MouseEvent& event);
    void mouseLeft();
    void captureLost(); // somebody else has the mouse: what it held is let go as if nothing had been done

    // False: nobody here has a use for it, and the window's host may have one.
    bool wheel(const WheelEvent& event);
    bool key(const KeyEvent& event);

    const Interaction& interaction() const { return interaction_; }
    Interaction& interaction() { return interaction_; }
    FontCache& fonts() { return fonts_; }

    // Whether the letters of a TextEdit are being typed.
    const TextField* textField() const { return field_.get(); }

    Document* document() const { return document_.get(); }
    std::size_t documentCount() const { return documents_.size(); } // it and all within it
    View* root() const { return root_.get(); }
    Variables& variables() { return variables_; }
    const Services& services() const { return services_; }
    ErrorQueue& errors() { return errors_; }

    static constexpr double kSmallestScale = 0.125;
    static constexpr double kLargestScale = 8;

    // Of the variable `uiScale`; 1/1 when it says nothing of use.
    Scale userScale() const;

    void invalidate(const Rectangle& part);

    // Puts a field over the surface, in place of one that is there.
    void editText(TextEdit edit);
    void typeInto(std::string_view text); // the field, in place of all that is there
    void endTextEdit(std::optional<std::string> typed);
    const TextEdit* textEdit() const { return textEdit_ ? &*textEdit_ : nullptr; }

private:
    friend class Document; // enters and leaves itself

    template <typename Event>
    auto handle(const Event& event);
    void load(bool reload);
    void placeField();
    void clearCaches();
    void update();
    void showErrors();
    void show(const ErrorQueue::Error& error);
    template <typename Call>
    void inAllDocuments(Call call);
    Variables::Failed failedWrite();

    Services services_;
    Variables variables_;
    ErrorQueue errors_;
    std::string name_;
    Rectangle area_;
    FontCache fonts_;
    Interaction interaction_;
    std::vector<Document*> documents_; // all that are alive, parents before what is nested in them
    std::unique_ptr<Document> document_;
    std::unique_ptr<View> root_; // goes before its document
    std::optional<TextEdit> textEdit_;
    std::unique_ptr<TextField> field_; // of textEdit_
    bool fieldPressed_ = false;
    std::optional<Scale> loadedScale_; // of the last load
    std::uint64_t seenChanges_ = 0;
    bool reloadRequested_ = false;
    bool updateRequested_ = false;
    bool reloading_ = false;
    bool settling_ = false;
    int handling_ = 0; // events: views stay until they are done
    bool errorShown_ = false;
    std::shared_ptr<bool> alive_ =
        std::make_shared<bool>(true); // for answers that come when the editor may be gone
};

} // namespace Quilt
