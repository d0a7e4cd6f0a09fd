#include "quilt/Editor.h"

#include "images/ImageLibrary.h"
#include "quilt/Document.h"
#include "quilt/Properties.h"
#include "quilt/TextField.h"
#include "quilt/View.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Quilt {

namespace {

template <typename Call>
void inTree(View& view, const Call& call) {
    call(view);
    // A view may have taken others for its children in the call.
    for (std::size_t i = 0; view.visible() && i < view.children().size(); ++i) {
        inTree(*view.children()[i], call);
    }
}

} // namespace

Editor::Editor(const Services& services)
    : services_(services), variables_(services.variables),
      errors_([this](const std::string& line) { services_.host.log(line); }), fonts_(services.images),
      interaction_(*this) {
    variables_.onWritten([this](std::string_view name) {
        // Even to the value that it has: caches are emptied that way, too.
        if (name == "uiScale") {
            requestReload();
        }
    });
}

Editor::~Editor() {
    close();
}

Scale Editor::userScale() const {
    try {
        if (const auto text = variables_.find("uiScale")) {
            const auto scale = Scale::fromText(*text);
            if (scale.factor() >= kSmallestScale && scale.factor() <= kLargestScale) {
                return scale;
            }
        }
    } catch (const std::invalid_argument&) {
        // A scale that nobody can draw must not keep the editor from coming up.
    }
    return {};
}

void Editor::open(const std::string& name, const Rectangle& area, bool reload) {
    close();
    name_ = name;
    area_ = area;
    document_ = std::make_unique<Document>(*this, name);
    load(reload);
    settle();
    showErrors();
}

void Editor::load(bool reload) {
    reloadRequested_ = false;
    reloading_ = reload;
    interaction_.cancel();
    clearCaches();
    document_->load(area_, reload);
    if (auto root = document_->takeRoot()) {
        root_ = std::move(root);
        // The surface is as large as the document, wherever that stands in its area.
        root_->bounds_ = root_->area();
        services_.host.resized(root_->bounds().width, root_->bounds().height);
        invalidate(root_->bounds());
        placeField();
    }
    requestUpdate();
}

// Pictures are read anew when somebody asks for the same thing again: then they may be others.
void Editor::clearCaches() {
    fonts_.clear();
    const Scale scale = userScale();
    if (std::exchange(loadedScale_, scale) == scale) {
        services_.images.clear();
    } else {
        services_.images.clearScaled();
    }
}

void Editor::close() {
    if (document_ == nullptr) {
        return;
    }
    interaction_.cancel();
    textEdit_.reset();
    field_.reset();
    // Nested ones first: they may want to leave something to those around them.
    const auto open = documents_;
    for (auto document = open.rbegin(); document != open.rend(); ++document) {
        (*document)->close();
    }
    root_.reset();
    document_.reset();
    reloadRequested_ = false;
}

template <typename Call>
void Editor::inAllDocuments(Call call) {
    // What is called may close documents and open new ones.
    const auto open = documents_;
    for (Document* const document : open) {
        if (std::ranges::find(documents_, document) != documents_.end()) {
            call(*document);
        }
    }
}

Variables::Failed Editor::failedWrite() {
    return [this](const std::exception& error) {
        errors_.add({"Error writing a variable", error.what(), {}, nullptr});
    };
}

void Editor::settle() {
    if (settling_ || handling_ > 0 || document_ == nullptr) {
        return;
    }
    settling_ = true;
    // Watchers that keep waking each other go on with the next tick, not for ever here.
    constexpr int kMostRounds = 8;
    std::size_t most = documents_.size();
    for (int round = 0; round < kMostRounds; ++round) {
        if (reloadRequested_) {
            load(true);
        }
        if (!updateRequested_ && variables_.changeCount() == seenChanges_) {
            break;
        }
        update();
        if (documents_.size() > most) { // each may hold the next
            most = documents_.size();
            round = -1;
        }
    }
    reloading_ = false;
    settling_ = false;
}

void Editor::update() {
    if (root_ == nullptr) {
        return; // what an action of the first load has changed is seen once there is something to show
    }
    seenChanges_ = variables_.changeCount();
    variables_.beginUpdate(!std::exchange(updateRequested_, false));
    try {
        inTree(*root_, [](View& view) { view.refresh(); });
    } catch (const std::exception& error) {
        errors_.add({"Error updating views", error.what(), {}, nullptr});
    }
    variables_.endUpdate(failedWrite());
    inTree(*root_, [](View& view) { view.settled(); });
    inAllDocuments([](Document& document) { document.runWatchers(); });
    interaction_.refresh();
}

void Editor::tick() {
    if (document_ == nullptr || root_ == nullptr) {
        return;
    }
    const auto now = services_.clock.now();
    inAllDocuments([now](Document& document) { document.runTimers(now); });
    settle();
    inTree(*root_, [now](View& view) {
        if (view.ticking()) {
            view.tick(now);
        }
    });
    settle();
    showErrors();
}

void Editor::showErrors() {
    while (!errorShown_) {
        const auto error = errors_.take();
        if (!error) {
            return;
        }
        try {
            show(*error);
        } catch (const std::exception&) {
            errorShown_ = false;
            services_.host.log("Exception while handling error");
        }
    }
}

void Editor::show(const ErrorQueue::Error& error) {
    if (services_.host.takeError(error.title, error.message)) {
        return;
    }
    const bool verbose = wholeBoolean(variables_.find("verboseErrors").value_or("false")).value_or(false);
    std::string text = error.message.empty() ? "Unexpected error" : error.message;
    const auto* const own = error.translations.get();
    if (const auto found = own == nullptr ? Translations::const_iterator{} : own->find(text);
        own != nullptr && found != own->end()) {
        text = found->second;
    } else if (services_.variables != nullptr) {
        text = services_.variables->translate(text).value_or(text);
    }
    text += ".";
    services_.host.log("Error: " + error.title + " " + text);
    if (verbose && !error.detail.empty()) {
        text += "\n\n" + error.detail;
    }
    errorShown_ = true;
    services_.desktop.showMessage({.kind = MessageKind::error, .text = error.title + ":\n\n" + text},
                                  [this, alive = std::weak_ptr(alive_)](MessageButton) {
                                      if (!alive.expired()) {
                                          errorShown_ = false; // the next one comes with the next tick
                                      }
                                  });
}

void Editor::invalidate(const Rectangle& part) {
    if (root_ != nullptr) {
        const Rectangle dirty = intersection(part, root_->bounds());
        if (!dirty.empty()) {
            services_.host.invalidate(dirty);
        }
    }
}

} // namespace Quilt
