#include "quilt/Document.h"

#include "metatext/MetaText.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/actions/Actions.h"
#include "tombola/Processor.h"

#include <algorithm>
#include <stdexcept>

namespace Quilt {

Document::Document(Editor& editor, std::string name, const Document* parent, bool userScale)
    : editor_(editor), name_(std::move(name)), parent_(parent),
      level_(parent == nullptr ? 0 : parent->level() + 1), userScale_(userScale),
      translations_(std::make_shared<Translations>()), handle_(std::make_shared<Document*>(this)) {
    editor_.documents_.push_back(this);
}

Document::~Document() {
    *handle_ = nullptr;
    std::erase(editor_.documents_, this);
}

Variables& Document::variables() const {
    return editor_.variables();
}

const ViewFactory& Document::viewFactory() const {
    return editor_.services().views;
}

std::unique_ptr<View> Document::takeRoot() {
    return std::move(root_);
}

void Document::close() {
    if (closed_) {
        return;
    }
    closed_ = true;
    for (std::size_t i = 0; i < autoexecs_.size(); ++i) {
        if (autoexecs_[i].occasion() == Autoexec::Occasion::close) {
            run(i);
        }
    }
}

std::string Document::translate(std::string_view text) const {
    for (const Document* document = this; document != nullptr; document = document->parent_) {
        if (const auto found = document->translations_->find(text); found != document->translations_->end()) {
            return found->second;
        }
    }
    const auto* const provider = variables().provider();
    auto translated = provider == nullptr ? std::nullopt : provider->translate(text);
    return translated ? *std::move(translated) : std::string(text);
}

void Document::reportError(const std::string& title, const std::string& message, const std::string& detail) {
    editor_.errors().add({title, message, detail, translations_});
}

std::string Document::expand(std::string_view text) const {
    return Quilt::expandMetaText(text, {[this](const std::string& name) { return variables().get(name); },
                                        [this](const std::string& source) { return translate(source); }});
}

std::string Document::expandMacros(std::string_view text) {
    if (macros_ == nullptr) {
        return std::string(text);
    }
    return Quilt::expandMacros(text, *macros_, [this](const std::string& title, const std::string& message) {
        reportError(title, message);
    });
}

std::string Document::expandMetaText(std::string_view text) {
    try {
        return expand(text);
    } catch (const std::exception& error) {
        reportError(kMetaTextErrorTitle, error.what());
        return {};
    }
}

void Document::perform(std::string_view action, std::string_view params, const View* from) {
    try {
        ActionCall(*this, from).perform(action, params);
    } catch (const std::exception& error) {
        reportError("Error performing action " + std::string(action), error.what(),
                    params.empty() ? std::string() : "Parameters: " + std::string(params));
    }
}

ActionState Document::state(std::string_view action, std::string_view params) {
    return ActionCall(*this, nullptr).state(action, params);
}

void Document::run(std::size_t autoexec) {
    // A copy: the action may load the document anew.
    const Autoexec running = autoexecs_[autoexec];
    perform(running.action, running.params);
}

void Document::startAutoexecs() {
    const auto now = editor_.services().clock.now();
    for (std::size_t i = 0; i < autoexecs_.size(); ++i) {
        if (autoexecs_[i].occasion() == Autoexec::Occasion::time) {
            timers_.push_back({i, now + autoexecs_[i].delay.value_or(std::chrono::milliseconds(0))});
        }
    }
    for (std::size_t i = 0; i < autoexecs_.size(); ++i) {
        if (autoexecs_[i].occasion() == Autoexec::Occasion::load) {
            run(i);
        }
    }
}

void Document::runTimers(std::chrono::milliseconds now) {
    std::vector<std::size_t> due;
    for (Timer& timer : timers_) {
        if (timer.due > now) {
            continue;
        }
        due.push_back(timer.autoexec);
        if (const auto repeat = autoexecs_[timer.autoexec].repeat) {
            // Late calls are not made up for, but the rhythm stays.
            timer.due = *repeat > now - timer.due ? timer.due + *repeat : now + *repeat;
        } else {
            timer.due = std::chrono::milliseconds::max();
        }
    }
    std::erase_if(timers_, [](const Timer& timer) { return timer.due == std::chrono::milliseconds::max(); });
    for (const std::size_t autoexec : due) {
        run(autoexec);
    }
}

void Document::runWatchers() {
    std::vector<std::size_t> changed;
    for (Watcher& watcher : watchers_) {
        std::vector<std::optional<std::string>> values;
        for (const auto& name : autoexecs_[watcher.autoexec].onChanged) {
            values.push_back(variables().find(name));
        }
        if (values != watcher.values) {
            watcher.values = std::move(values);
            changed.push_back(watcher.autoexec);
        }
    }
    for (const std::size_t autoexec : changed) {
        run(autoexec);
    }
}

} // namespace Quilt
