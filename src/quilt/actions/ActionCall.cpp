#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/actions/Actions.h"

#include <algorithm>
#include <stdexcept>

namespace Quilt {

namespace {

constexpr BuiltInAction kActions[] = {
    {"alert", true, performAlert, nullptr},         {"assert", true, performAssert, nullptr},
    {"assign", false, performAssign, nullptr},      {"batch", true, performBatch, stateOfBatch},
    {"edit", true, performEdit, nullptr},           {"execute", true, performExecute, stateOfExecute},
    {"launch", false, performLaunch, nullptr},      {"popup", true, performPopup, nullptr},
    {"reload", false, performReload, nullptr},      {"set", false, performSet, stateOfSet},
    {"switch", true, performSwitch, stateOfSwitch},
};

const BuiltInAction* findBuiltIn(std::string_view name) {
    const auto* const found = std::ranges::find(kActions, name, &BuiltInAction::name);
    return found == std::end(kActions) ? nullptr : found;
}

class Deeper {
public:
    explicit Deeper(int& depth) : depth_(depth) {
        if (depth_ >= ActionCall::kDeepestCall) {
            throw std::runtime_error("Action recursion limit exceeded");
        }
        ++depth_;
    }
    ~Deeper() { --depth_; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;

private:
    int& depth_;
};

} // namespace

std::span<const BuiltInAction> builtInActions() {
    return kActions;
}

ActionCall::ActionCall(Document& document, const View* from) : document_(document), from_(from) {
    if (from != nullptr) {
        anchor_ = from->area().movedBy(from->origin());
    }
}

std::optional<std::string> ActionCall::get(std::string_view name) const {
    return document_.variables().find(name);
}

void ActionCall::set(std::string_view name, std::string_view value) {
    document_.variables().set(name, value);
}

std::string ActionCall::expandMetaText(std::string_view text) const {
    return document_.expand(text);
}

std::string ActionCall::translate(std::string_view text) const {
    return document_.translate(text);
}

Desktop& ActionCall::desktop() {
    return document_.editor().services().desktop;
}

void ActionCall::perform(std::string_view action, std::string_view params) {
    const Deeper deeper(depth_);
    const BuiltInAction* const builtIn = findBuiltIn(action);
    if (builtIn != nullptr) {
        const Stackbrace::Document text(builtIn->compound ? std::string(params) : expandMetaText(params));
        builtIn->perform(*this, text.root());
    } else if (auto* const handler = document_.editor().services().actions) {
        handler->perform(action, expandMetaText(params), *this);
    } else {
        throw std::runtime_error("Unrecognized action: " + std::string(action));
    }
}

ActionState ActionCall::state(std::string_view action, std::string_view params) const {
    const Deeper deeper(depth_);
    if (const BuiltInAction* const builtIn = findBuiltIn(action)) {
        if (builtIn->state == nullptr) {
            return {};
        }
        const Stackbrace::Document text(builtIn->compound ? std::string(params) : expandMetaText(params));
        return builtIn->state(*this, text.root());
    }
    const auto* const handler = document_.editor().services().actions;
    return handler == nullptr ? ActionState{} : handler->state(action, expandMetaText(params), *this);
}

Step readStep(const Stackbrace::Structure& structure) {
    const auto action = structure["action"];
    return {action.empty() ? std::string() : action.string(), std::string(structure["params"].raw())};
}

LaterCall::LaterCall(const ActionCall& call) : document_(call.document().handle()) {}

void LaterCall::set(const std::string& variable, const std::string& value) const {
    if (document() == nullptr || variable.empty()) {
        return;
    }
    try {
        document()->variables().set(variable, value);
    } catch (const std::exception& error) {
        document()->reportError("Error writing a variable", error.what());
    }
}

void LaterCall::perform(const Step& step) const {
    if (document() != nullptr && !step.empty()) {
        document()->perform(step.action, step.params);
    }
}

void LaterCall::done() const {
    if (document() != nullptr) {
        document()->editor().settle();
    }
}

} // namespace Quilt
