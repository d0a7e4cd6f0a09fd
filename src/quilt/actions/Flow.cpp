// Actions that carry out other actions.
#include "notation/Quoting.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/actions/Actions.h"

#include <stdexcept>
#include <vector>

namespace Quilt {

namespace {

bool isCompound(const Stackbrace::Element& element) {
    return element.raw().starts_with('{');
}

std::string expanded(const ActionCall& call, const Stackbrace::Element& element) {
    return element.empty() ? std::string() : call.expandMetaText(element.string());
}

bool isSet(const Stackbrace::Structure& structure, std::string_view key) {
    const auto* const found = structure.find(key);
    return found != nullptr && found->boolean();
}

struct BatchElement {
    Step step;
    bool ignoreEnabled;
    bool ignoreChecked;
};

std::vector<BatchElement> readBatch(const Stackbrace::Element& params) {
    std::vector<BatchElement> elements;
    for (const auto& element : params.list()) {
        const auto structure = isCompound(element) ? element.structure() : Stackbrace::Structure();
        auto step = readStep(structure);
        if (step.empty()) {
            throw std::runtime_error("Invalid batch element");
        }
        elements.push_back(
            {std::move(step), isSet(structure, "ignoreEnabled"), isSet(structure, "ignoreChecked")});
    }
    return elements;
}

// What a case of a switch does: an action, or a new value for the variable itself.
Step readBranch(const Stackbrace::Element& branch, const std::string& variable) {
    if (!isCompound(branch)) {
        throw std::runtime_error("Invalid switch params");
    }
    const auto structure = branch.structure();
    if (const auto* const value = structure.find("value")) {
        return {"set", "{ variable: " + Stackbrace::quote(variable) +
                           ", value: " + std::string(value->raw()) + " }"};
    }
    return readStep(structure);
}

// Of cases in a list each says what the value has to be like; the keys of a structure are the values.
std::optional<Step> findCase(const ActionCall& call, const Stackbrace::Element& cases,
                             const std::string& variable, const std::string& value) {
    const auto list = Stackbrace::readList(cases);
    if (list.empty() || !isCompound(list[0])) {
        for (const auto& [key, branch] : cases.structure()) {
            if (key == value) {
                return readBranch(branch, variable);
            }
        }
        return std::nullopt;
    }
    for (const auto& branch : cases.list()) {
        const auto structure = isCompound(branch) ? branch.structure() : Stackbrace::Structure();
        const auto* const same = structure.find("sameAs");
        const auto* const other = structure.find("differsFrom");
        if (same == nullptr && other == nullptr) {
            throw std::runtime_error("Invalid switch params");
        }
        if ((same == nullptr || expanded(call, *same) == value) &&
            (other == nullptr || expanded(call, *other) != value)) {
            return readBranch(branch, variable);
        }
    }
    return std::nullopt;
}

Step chooseBranch(const ActionCall& call, const Stackbrace::Element& params) {
    const auto structure = params.structure();
    const std::string variable = expanded(call, structure["variable"]);
    if (variable.empty()) {
        throw std::runtime_error("Invalid switch params");
    }
    const std::string value = call.get(variable).value_or("");
    if (const auto found = findCase(call, structure["cases"], variable, value)) {
        return *found;
    }
    const auto* const otherwise = structure.find("default");
    return otherwise == nullptr ? Step{} : readBranch(*otherwise, variable);
}

// An empty step when a variable is to name the action and names none yet.
Step readExecute(const ActionCall& call, const Stackbrace::Element& params) {
    if (!isCompound(params)) {
        throw std::runtime_error("Invalid execute params");
    }
    const auto structure = params.structure();
    Step step = readStep(structure);
    step.action = call.expandMetaText(step.action);
    if (const auto variable = expanded(call, structure["actionVariable"]); !variable.empty()) {
        step.action = call.get(variable).value_or("");
    } else if (step.empty()) {
        throw std::runtime_error("Invalid execute params");
    }
    if (const auto variable = expanded(call, structure["paramsVariable"]); !variable.empty()) {
        step.params = call.get(variable).value_or("");
    }
    return step;
}

} // namespace

void performBatch(ActionCall& call, const Stackbrace::Element& params) {
    for (const auto& element : readBatch(params)) {
        call.perform(element.step.action, element.step.params);
    }
}

ActionState stateOfBatch(const ActionCall& call, const Stackbrace::Element& params) {
    ActionState all{true, false};
    bool first = true;
    for (const auto& element : readBatch(params)) {
        const auto state = call.state(element.step.action, element.step.params);
        all.enabled = all.enabled && (element.ignoreEnabled || state.enabled);
        if (!element.ignoreChecked) {
            all.checked = state.checked && (first || all.checked);
            first = false;
        }
    }
    return all;
}

void performSwitch(ActionCall& call, const Stackbrace::Element& params) {
    const Step step = chooseBranch(call, params);
    if (!step.empty()) {
        call.perform(step.action, step.params);
    }
}

ActionState stateOfSwitch(const ActionCall& call, const Stackbrace::Element& params) {
    const Step step = chooseBranch(call, params);
    return step.empty() ? ActionState{} : call.state(step.action, step.params);
}

void performExecute(ActionCall& call, const Stackbrace::Element& params) {
    const Step step = readExecute(call, params);
    if (!step.empty()) {
        call.perform(step.action, step.params);
    }
}

ActionState stateOfExecute(const ActionCall& call, const Stackbrace::Element& params) {
    const Step step = readExecute(call, params);
    return step.empty() ? ActionState{false, false} : call.state(step.action, step.params);
}

void performAssert(ActionCall& call, const Stackbrace::Element& params) {
    const auto structure = isCompound(params) ? params.structure() : Stackbrace::Structure();
    const Step step = readStep(structure);
    const auto* const enabled = structure.find("enabled");
    const auto* const checked = structure.find("checked");
    if (step.empty() || (enabled == nullptr && checked == nullptr)) {
        throw std::runtime_error("Invalid assert params");
    }
    const auto state = call.state(step.action, step.params);
    const auto require = [&step](const Stackbrace::Element* wanted, bool is, const char* word) {
        if (wanted == nullptr || wanted->boolean() == is) {
            return;
        }
        std::string text = "Quilt assertion failed: action " + step.action;
        if (!step.params.empty()) {
            text += " with params " + step.params;
        }
        throw std::runtime_error(text + (is ? " is not " : " is ") + word);
    };
    require(enabled, state.enabled, "enabled");
    require(checked, state.checked, "checked");
}

void performReload(ActionCall& call, const Stackbrace::Element&) {
    call.document().editor().requestReload();
}

} // namespace Quilt
