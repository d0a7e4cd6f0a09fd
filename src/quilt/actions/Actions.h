// Carrying out an action that a document names: the framework's own, or one of the program's action handler.
//
// The parameters come as the raw text of a Stackbrace value. Meta tags in it are expanded before it is read,
// so that numbers and whole values can come from variables; a variable within quotes is escaped to stay
// there. Actions that contain others expand piece by piece, when each is its turn.
#pragma once

#include "notation/Compound.h"
#include "quilt/ActionHandler.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Quilt {

class Document;
class View;

class ActionCall final : public ActionContext {
public:
    // Actions that carry out others can be told to carry out themselves.
    static constexpr int kDeepestCall = 20;

    ActionCall(Document& document, const View* from);

    std::optional<std::string> get(std::string_view name) const override;
    void set(std::string_view name, std::string_view value) override;
    std::string expandMetaText(std::string_view text) const override;
    std::string translate(std::string_view text) const override;
    Desktop& desktop() override;
    std::optional<Rectangle> anchor() const override { return anchor_; }

    // Both throw what is wrong.
    void perform(std::string_view action, std::string_view params) override;
    ActionState state(std::string_view action, std::string_view params) const;

    Document& document() const { return document_; }
    const View* from() const { return from_; }

private:
    Document& document_;
    const View* from_; // only good until the call returns
    std::optional<Rectangle> anchor_;
    mutable int depth_ = 0;
};

struct BuiltInAction {
    std::string_view name;
    bool compound; // contains actions, and expands its own texts
    void (*perform)(ActionCall& call, const Stackbrace::Element& params);
    ActionState (*state)(const ActionCall& call,
                         const Stackbrace::Element& params); // nullptr: always enabled
};

std::span<const BuiltInAction> builtInActions();

// An action within the parameters of another.
struct Step {
    std::string action;
    std::string params; // raw

    bool empty() const { return action.empty(); }
};

// `action` and `params` of a structure; an empty step when it has no action.
Step readStep(const Stackbrace::Structure& structure);

// Carried out later, when somebody has answered and the document may be gone: then nothing happens.
class LaterCall {
public:
    explicit LaterCall(const ActionCall& call);

    // nullptr when the document is gone.
    Document* document() const { return *document_; }
    void set(const std::string& variable, const std::string& value) const; // none when `variable` is empty
    void perform(const Step& step) const;
    void done() const; // after all of it

private:
    std::shared_ptr<Document* const> document_;
};

void performBatch(ActionCall& call, const Stackbrace::Element& params);
void performSwitch(ActionCall& call, const Stackbrace::Element& params);
void performExecute(ActionCall& call, const Stackbrace::Element& params);
void performAssert(ActionCall& call, const Stackbrace::Element& params);
void performReload(ActionCall& call, const Stackbrace::Element& params);
ActionState stateOfBatch(const ActionCall& call, const Stackbrace::Element& params);
ActionState stateOfSwitch(const ActionCall& call, const Stackbrace::Element& params);
ActionState stateOfExecute(const ActionCall& call, const Stackbrace::Element& params);

void performSet(ActionCall& call, const Stackbrace::Element& params);
void performAssign(ActionCall& call, const Stackbrace::Element& params);
ActionState stateOfSet(const ActionCall& call, const Stackbrace::Element& params);

void performAlert(ActionCall& call, const Stackbrace::Element& params);
void performPopup(ActionCall& call, const Stackbrace::Element& params);
void performEdit(ActionCall& call, const Stackbrace::Element& params);
void performLaunch(ActionCall& call, const Stackbrace::Element& params);

} // namespace Quilt
