// A layout document that is shown: its size, its views, and what goes on by itself while it is. The editor
// owns the top one, `quilt` views those nested in it.
//
// Loading reports what is wrong and goes on as far as it can; a surface with a broken view is better than
// none. Only the nesting level makes it throw.
#pragma once

#include "notation/Document.h"
#include "quilt/ActionHandler.h"
#include "quilt/Autoexec.h"
#include "quilt/ErrorQueue.h"
#include "quilt/Geometry.h"
#include "quilt/Scale.h"
#include "quilt/Transition.h"
#include "quilt/Variables.h"

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tombola {
class Processor;
}

namespace Quilt {

class Editor;
class View;
class ViewFactory;

inline constexpr const char* kLoadErrorTitle = "Error parsing quilt";
inline constexpr const char* kMetaTextErrorTitle = "Error processing meta text";

class Document {
public:
    static constexpr int kDeepestLevel = 20;
    static constexpr std::size_t kMostDocuments =
        500; // open at once: those that show themselves twice double

    // `parent` is nullptr for the editor's top document, which is on level 0. Without `userScale` the
    // document is drawn at 1/1 whatever the user's scale is.
    Document(Editor& editor, std::string name, const Document* parent = nullptr, bool userScale = true);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    // `enclosing` is in units of the document. A reload keeps the variables and runs the autoexecs that are
    // for reloads, too. Throws std::runtime_error "Quilt recursion limit exceeded".
    void load(const Rectangle& enclosing, bool reload);

    // Carries out the autoexecs for this occasion, once.
    void close();

    const std::string& name() const { return name_; }
    int level() const { return level_; }
    const Rectangle& bounds() const { return bounds_; } // in units, relative to the enclosing area
    const Scale& scale() const { return scale_; }
    const std::vector<Autoexec>& autoexecs() const { return autoexecs_; }
    const Transitions& transitions() const { return transitions_; }
    const Translations& translations() const { return *translations_; }

    // The views' common parent, as large as the document. Whoever shows the document takes it.
    std::unique_ptr<View> takeRoot();

    Editor& editor() const { return editor_; }
    Variables& variables() const;
    const ViewFactory& viewFactory() const;

    // Meta-text. expand() throws what is wrong; expandMetaText() reports it and returns nothing.
    std::string expand(std::string_view text) const;
    std::string expandMetaText(std::string_view text);

    // Runs the macros and values that this document's text has defined over `text`; reports what is wrong and
    // returns nothing then.
    std::string expandMacros(std::string_view text);

    std::string translate(std::string_view text) const;

    // Carries an action out and reports its failure. `from` is the control that calls.
    void perform(std::string_view action, std::string_view params, const View* from = nullptr);
    ActionState state(std::string_view action, std::string_view params);

    void reportError(const std::string& title, const std::string& message, const std::string& detail = {});

    // For the editor, which calls them in all its documents. What is due at `now` is carried out, and what
    // waits for a variable that is another now.
    void runTimers(std::chrono::milliseconds now);
    void runWatchers();

    // Becomes nullptr with the document: for answers that come when it may be gone.
    std::shared_ptr<Document* const> handle() const { return handle_; }

private:
    struct Timer {
        std::size_t autoexec; // index
        std::chrono::milliseconds due;
    };
    struct Watcher {
        std::size_t autoexec;
        std::vector<std::optional<std::string>> values; // of the variables in `onChanged`, as they were last
    };

    void build(const Rectangle& enclosing, bool reload);
    std::unique_ptr<Stackbrace::Document> expandDocument(std::string text);
    void readDocument(const Stackbrace::Document& document, const Rectangle& enclosing, bool reload);
    void readAutoexecs(const Stackbrace::Element& list, bool reload);
    void readTranslations(const Stackbrace::Element& structure);
    void startAutoexecs();
    void run(std::size_t autoexec);

    Editor& editor_;
    std::string name_;
    const Document* parent_;
    int level_;
    bool userScale_;
    Scale scale_;
    Rectangle bounds_;
    std::unique_ptr<View> root_;
    std::unique_ptr<Tombola::Processor> macros_; // of the last load, for expandMacros()
    std::vector<Autoexec> autoexecs_;
    std::vector<Timer> timers_;
    std::vector<Watcher> watchers_;
    Transitions transitions_;
    std::shared_ptr<Translations> translations_;
    std::shared_ptr<Document*> handle_;
    bool closed_ = true;
};

} // namespace Quilt
