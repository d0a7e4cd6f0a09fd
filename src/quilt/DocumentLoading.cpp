// The stages of a document's loading: its text is obtained, expanded and parsed; then the document takes up
// what stands there.
#include "notation/Compound.h"
#include "quilt/Bounds.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/LayoutError.h"
#include "quilt/View.h"
#include "quilt/ViewBuilder.h"
#include "tombola/Processor.h"

#include <algorithm>
#include <stdexcept>

namespace Quilt {

namespace {

// Variables are not written while this lives.
class Hold {
public:
    explicit Hold(Document& document) : document_(document) { document_.variables().hold(); }
    ~Hold() {
        document_.variables().release([this](const std::exception& error) {
            document_.reportError("Error writing a variable", error.what());
        });
    }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

private:
    Document& document_;
};

void checkKeys(const Stackbrace::Structure& structure) {
    constexpr std::string_view kKeys[] = {"bounds", "views", "autoexecs", "transitions", "translations"};
    for (const auto& [key, value] : structure) {
        if (std::ranges::find(kKeys, key) == std::end(kKeys)) {
            throw LayoutError("Unknown property of document: " + std::string(key), value);
        }
    }
}

} // namespace

void Document::load(const Rectangle& enclosing, bool reload) {
    if (level_ > kDeepestLevel || editor_.documentCount() > kMostDocuments) {
        throw std::runtime_error("Quilt recursion limit exceeded");
    }
    closed_ = false;
    scale_ = userScale_ ? editor_.userScale() : Scale();
    build(enclosing, reload);
    startAutoexecs();
}

std::unique_ptr<Stackbrace::Document> Document::expandDocument(std::string text) {
    const auto& source = editor_.services().documents;
    macros_ = std::make_unique<Tombola::Processor>(
        [&source](const std::string& name) -> std::optional<std::string> {
            try {
                return source.obtain(name);
            } catch (const std::exception&) {
                return std::nullopt; // the processor says which name it could not load
            }
        });
    std::string expanded;
    const auto positions = std::make_shared<Tombola::PositionMap>();
    macros_->process(name_, std::move(text), expanded, positions.get());
    return std::make_unique<Stackbrace::Document>(std::move(expanded), name_, positions);
}

void Document::build(const Rectangle& enclosing, bool reload) {
    const char* stage = "Error obtaining quilt";
    try {
        std::string text = name_.empty() ? std::string() : editor_.services().documents.obtain(name_);
        stage = kLoadErrorTitle;
        readDocument(*expandDocument(std::move(text)), enclosing, reload);
    } catch (const std::exception& error) {
        reportError(stage, error.what(), "Document " + name_);
    }
    if (root_ == nullptr && !reload) {
        // Nothing to show, but there has to be a surface to show it on.
        bounds_ = {0, 0, enclosing.width, enclosing.height};
        root_ = std::make_unique<View>(*this, "document", scale_.toPixels(bounds_));
    }
}

void Document::readDocument(const Stackbrace::Document& document, const Rectangle& enclosing, bool reload) {
    const auto structure = document.root().structure();
    bounds_ = readBounds(structure["bounds"], enclosing);
    autoexecs_.clear();
    timers_.clear();
    watchers_.clear();
    transitions_ = {};
    *translations_ = {};
    root_ = std::make_unique<View>(*this, "document", scale_.toPixels(bounds_));
    {
        const Hold hold(*this);
        ViewBuilder(*this).addViews(*root_, structure["views"], {0, 0, bounds_.width, bounds_.height});
        readAutoexecs(structure["autoexecs"], reload);
    }
    readTranslations(structure["translations"]);
    transitions_ = readTransitions(structure["transitions"]);
    checkKeys(structure);
}

void Document::readAutoexecs(const Stackbrace::Element& list, bool reload) {
    for (const auto& element : list.list()) {
        auto autoexec = readAutoexec(element);
        if (reload && !autoexec.onReload && !autoexec.onClose) {
            continue;
        }
        if (autoexec.occasion() == Autoexec::Occasion::change) {
            Watcher watcher{autoexecs_.size(), {}};
            for (const auto& name : autoexec.onChanged) {
                watcher.values.push_back(variables().find(name));
            }
            watchers_.push_back(std::move(watcher));
        }
        autoexecs_.push_back(std::move(autoexec));
    }
}

void Document::readTranslations(const Stackbrace::Element& structure) {
    const auto entries = structure.structure();
    for (const auto& [source, target] : entries) {
        translations_->insert_or_assign(std::string(source), target.string());
    }
}

} // namespace Quilt
